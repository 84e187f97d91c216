#include "tools/zol/cli/clidefinition.h"

#include <filesystem>
#include <string>

#include "core/platform/platformfile.h"
#include "tools/zol/cli/cliargs.h"

ParticleDefinitionPtr_t ZolCliCompileDefinition( const char *pFile, CUtlString *pError, CUtlString *pWarnings )
{
	auto fnRead = []( const char *pPath, CUtlBuffer *pBuffer, CUtlString *pReason ) { return Plat_ReadWholeFile( pPath, pBuffer, pReason ); };
	const std::string contentRoot = ZolCliContentRootFor( pFile );
	CParticleDefinitionFileCompiler compiler( contentRoot.c_str(), fnRead );
	const std::string gameRoot = ZolCliGameRootFor( pFile );
	if ( !gameRoot.empty() )
		compiler.AddRoot( gameRoot.c_str() );
	// The file as the user named it, relative to the working directory.
	std::error_code error;
	const std::string path = std::filesystem::absolute( pFile, error ).lexically_normal().string();
	ParticleDefinitionPtr_t pDefinition = compiler.Compile( path.c_str(), pError, pFile );
	if ( pWarnings )
		*pWarnings = compiler.GetWarnings();
	return pDefinition;
}
