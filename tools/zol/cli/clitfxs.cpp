#include "tools/zol/cli/clitfxs.h"

#include <cstring>

#include "core/particles/hostparticlesystemmgr.h"
#include "core/particles/iparticlesystemmgr.h"
#include "tools/zol/cli/cliargs.h"
#include "zoldoc_lib/particlegamedata.h"

void ConnectParticleHostForDefinition( const char *pFirstFile )
{
	SetParticleSystemMgr( HostParticleSystemMgr() );
	SetParticleGameRoot( ZolCliGameRootFor( pFirstFile ).c_str() );
}

void PrintFileLines( FILE *pOut, const char *pFile, const char *pText )
{
	const char *pLine = pText;
	while ( pLine && *pLine )
	{
		const char *pEnd = strchr( pLine, '\n' );
		size_t nLength = pEnd ? size_t( pEnd - pLine ) : strlen( pLine );
		if ( nLength && pFile )
			fprintf( pOut, "%s: %.*s\n", pFile, int( nLength ), pLine );
		else if ( nLength )
			fprintf( pOut, "%.*s\n", int( nLength ), pLine );
		pLine = pEnd ? pEnd + 1 : nullptr;
	}
}
