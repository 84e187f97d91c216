#include "tools/zol/cli/simdump.h"

#include <cerrno>
#include <cmath>
#include <cstring>

#include "core/particles/sim/particlecollection.h"

namespace
{
void WriteNumber( FILE *pFile, double flValue )
{
	if ( std::isfinite( flValue ) )
		fprintf( pFile, "%.9g", flValue );
	else
		fputs( "null", pFile );
}

void WriteVector( FILE *pFile, const float *pComponents[ 3 ], int i )
{
	fputc( '[', pFile );
	for ( int k = 0; k < 3; ++k )
	{
		if ( k )
			fputc( ',', pFile );
		WriteNumber( pFile, pComponents[ k ] ? double( pComponents[ k ][ i ] ) : 0.0 );
	}
	fputc( ']', pFile );
}

// Text as a JSON string: quotes, backslashes and control characters escaped.
void WriteString( FILE *pFile, const char *pText )
{
	fputc( '"', pFile );
	for ( const unsigned char *p = reinterpret_cast<const unsigned char *>( pText ? pText : "" ); *p; ++p )
	{
		if ( *p == '"' || *p == '\\' )
			fprintf( pFile, "\\%c", *p );
		else if ( *p < 0x20 )
			fprintf( pFile, "\\u%04x", *p );
		else
			fputc( *p, pFile );
	}
	fputc( '"', pFile );
}
} // namespace

CSimDumpWriter::~CSimDumpWriter()
{
	if ( m_pFile )
		fclose( m_pFile );
}

bool CSimDumpWriter::Open( const char *pPath, CUtlString *pError )
{
	m_pFile = fopen( pPath, "w" );
	if ( !m_pFile )
	{
		pError->Format( "cannot write the dump %s: %s", pPath, strerror( errno ) );
		return false;
	}
	m_Path = pPath;
	return true;
}

bool CSimDumpWriter::WriteStep( int nFrame, double flSeconds, const IParticleCollection &root, CUtlString *pError )
{
	WriteCollection( nFrame, flSeconds, root, CUtlString( "0" ) );
	if ( ferror( m_pFile ) )
	{
		pError->Format( "cannot write the dump %s: %s", m_Path.Get(), strerror( errno ) );
		return false;
	}
	return true;
}

void CSimDumpWriter::WriteCollection( int nFrame, double flSeconds, const IParticleCollection &collection, const CUtlString &path )
{
	const CParticleCollection &c = static_cast<const CParticleCollection &>( collection );
	fprintf( m_pFile, "{\"frame\":%d,\"t\":", nFrame );
	WriteNumber( m_pFile, flSeconds );
	fprintf( m_pFile, ",\"path\":\"%s\",\"system\":", path.Get() );
	WriteString( m_pFile, c.GetDefinition()->m_Name.Get() );
	fputs( ",\"time\":", m_pFile );
	WriteNumber( m_pFile, c.GetTimeExact() );
	fprintf( m_pFile, ",\"started\":%s,\"finished\":%s,\"count\":%d,\"particles\":[", c.HasStarted() ? "true" : "false", c.IsFinished() ? "true" : "false", c.Count() );

	const float *pPosition[ 3 ], *pPrevious[ 3 ], *pColor[ 3 ];
	for ( int k = 0; k < 3; ++k )
	{
		pPosition[ k ] = c.Stream( PARTICLE_ATTRIBUTE_POSITION, k );
		pPrevious[ k ] = c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, k );
		pColor[ k ] = c.Stream( PARTICLE_ATTRIBUTE_COLOR, k );
	}
	const float *pID = c.Stream( PARTICLE_ATTRIBUTE_PARTICLE_ID );
	const float *pCreated = c.Stream( PARTICLE_ATTRIBUTE_CREATION_TIME );
	const float *pLife = c.Stream( PARTICLE_ATTRIBUTE_LIFE_DURATION );
	const float *pRadius = c.Stream( PARTICLE_ATTRIBUTE_RADIUS );
	const float *pAlpha = c.Stream( PARTICLE_ATTRIBUTE_ALPHA );
	const double flInvDt = c.GetPreviousDt() > 0.0f ? 1.0 / double( c.GetPreviousDt() ) : 0.0;
	auto fnField = [ this ]( const char *pName, const float *pValues, int i ) {
		fprintf( m_pFile, ",\"%s\":", pName );
		WriteNumber( m_pFile, pValues ? double( pValues[ i ] ) : 0.0 );
	};
	for ( int i = 0; i < c.Count(); ++i )
	{
		fprintf( m_pFile, "%s{\"id\":%u", i ? "," : "", pID ? unsigned( pID[ i ] ) : unsigned( i ) );
		fnField( "created", pCreated, i );
		fnField( "life", pLife, i );
		fputs( ",\"pos\":", m_pFile );
		WriteVector( m_pFile, pPosition, i );
		fputs( ",\"vel\":[", m_pFile );
		for ( int k = 0; k < 3; ++k )
		{
			if ( k )
				fputc( ',', m_pFile );
			WriteNumber( m_pFile, pPosition[ k ] && pPrevious[ k ] ? ( double( pPosition[ k ][ i ] ) - double( pPrevious[ k ][ i ] ) ) * flInvDt : 0.0 );
		}
		fputc( ']', m_pFile );
		fnField( "radius", pRadius, i );
		fnField( "alpha", pAlpha, i );
		fputs( ",\"color\":", m_pFile );
		WriteVector( m_pFile, pColor, i );
		fputc( '}', m_pFile );
	}
	fputs( "]}\n", m_pFile );

	int nChild = 0;
	for ( const IParticleCollection *pChild = collection.GetFirstChild(); pChild; pChild = pChild->GetNextSibling(), ++nChild )
	{
		CUtlString childPath;
		childPath.Format( "%s/%d", path.Get(), nChild );
		WriteCollection( nFrame, flSeconds, *pChild, childPath );
	}
}

bool CSimDumpWriter::Close( CUtlString *pError )
{
	bool bOk = !ferror( m_pFile );
	bOk = fclose( m_pFile ) == 0 && bOk;
	m_pFile = nullptr;
	if ( !bOk )
		pError->Format( "cannot write the dump %s: %s", m_Path.Get(), strerror( errno ) );
	return bOk;
}
