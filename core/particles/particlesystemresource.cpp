#include "core/particles/particlesystemresource.h"

#include "core/containers/utlbuffer.h"
#include "core/host/ifilesystem.h"
#include "core/host/iresourcesystem.h"
#include "core/host/resourceload.h"

// Children come from their files through the host's file system, found inside the content
// roots, then the game roots.
static bool ReadChildFile( const char *pPath, CUtlBuffer *pBuffer, CUtlString *pError )
{
	IFileSystem *pFileSystem = GetFileSystem();
	if ( !pFileSystem )
	{
		pError->Format( "Unable to read '%s': no file system", pPath );
		return false;
	}
	return pFileSystem->ReadFile( pPath, nullptr, pBuffer, pError );
}

bool CParticleAssetCompiler::Compile( const CUtlBuffer &source, const char *pResourceName, std::unique_ptr<CResourceData> *pResult, CUtlString *pError )
{
	// The definition compiler reads from its own get position; the source stays untouched.
	CUtlBuffer text;
	text.Put( source.Base(), source.TellPut() );

	CParticleDefinitionFileCompiler children( "", &ReadChildFile );
	if ( IFileSystem *pFileSystem = GetFileSystem() )
	{
		CUtlVector<CUtlString> roots;
		pFileSystem->GetSearchPaths( PATH_ID_CONTENT, &roots );
		pFileSystem->GetSearchPaths( PATH_ID_GAME, &roots );
		for ( const CUtlString &root : roots )
			children.AddRoot( root.Get() );
	}
	ParticleChildResolver_t fnResolveChild = [ &children ]( const char *pPath, CUtlString *pChildError ) { return children.CompileChild( pPath, pChildError ); };
	CUtlString strError;
	ParticleDefinitionPtr_t pDefinition = CompileParticleDefinition( &text, pResourceName, fnResolveChild, &strError );
	if ( !pDefinition )
	{
		if ( pError )
			*pError = strError;
		return false;
	}
	*pResult = std::make_unique<CParticleSystemResourceData>( std::move( pDefinition ) );
	return true;
}

ParticleDefinitionPtr_t FindParticleSystemDefinition( const char *pResourceName, CUtlString *pError )
{
	CUtlString error;
	if ( !pError )
		pError = &error;
	CResourceBinding *pBinding = FindLoadedResource( pResourceName, "particle system", pError );
	if ( !pBinding )
		return nullptr;
	auto pData = pBinding->GetDataAs<CParticleSystemResourceData>();
	if ( !pData || !pData->GetDefinition() )
	{
		pError->Format( "%s is not a compiled particle system", pResourceName );
		return nullptr;
	}
	return pData->GetDefinition();
}
