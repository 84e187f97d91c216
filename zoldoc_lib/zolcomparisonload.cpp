#include "zoldoc_lib/zolcomparisonload.h"

#include <vector>

#include "core/containers/utlbuffer.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/platform/platformfile.h"
#include "core/text/strtools.h"
#include "core/text/utlstring.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolfunctioncatalogue.h"

namespace
{
// Reads the file once (it may be a pipe) and the class its root table names; false, with
// the editor's words, when it can't be read or parsed.
bool ReadRootClass( const char *pPath, CUtlBuffer *pBuffer, CUtlString *pClass, CUtlString *pError )
{
	CUtlString reason;
	if ( !Plat_ReadWholeFile( pPath, pBuffer, &reason, PLAT_MAX_READ_FILE_BYTES, PLAT_READ_ALLOW_PIPE ) )
	{
		pError->Format( "Failed to read file: %s", reason.Get() );
		return false;
	}
	KeyValues3 tree;
	if ( !LoadKV3( &tree, pError, pBuffer, KV3_FORMAT_TFXS, pPath ) )
		return false;
	pBuffer->SeekGet( 0 );
	pClass->Set( tree.IsTable() ? tree.GetMemberString( "_class", "" ) : "" );
	return true;
}
} // namespace

bool LoadDefinitionsToCompare( const char *const *ppPaths, int nCount, CZolDoc *const *ppDocs, int *pFileVersions, CUtlString *pError )
{
	std::vector<CUtlBuffer> buffers( static_cast<size_t>( nCount ) );
	CUtlString firstClass;
	for ( int i = 0; i < nCount; ++i )
	{
		CUtlString rootClass, error;
		if ( !ReadRootClass( ppPaths[ i ], &buffers[ size_t( i ) ], &rootClass, &error ) )
		{
			pError->Format( "%s: %s", ppPaths[ i ], error.Get() );
			return false;
		}
		if ( i == 0 )
		{
			firstClass = rootClass;
		}
		else if ( rootClass != firstClass )
		{
			pError->Format( "%s and %s have different root classes ('%s' and '%s'); only particle system definitions compare", ppPaths[ 0 ],
							ppPaths[ i ], firstClass.Get(), rootClass.Get() );
			return false;
		}
	}
	for ( int i = 0; i < nCount; ++i )
	{
		CUtlString error;
		ppDocs[ i ]->SetKeepsUnknownFunctions( true );
		if ( !ppDocs[ i ]->LoadFromBuffer( &buffers[ size_t( i ) ], ppPaths[ i ], &error ) )
		{
			pError->Format( "%s: %s", ppPaths[ i ], error.Get() );
			return false;
		}
		pFileVersions[ i ] = ppDocs[ i ]->GetBehaviorVersion();
	}
	return true;
}

void BringDefinitionToVersion( CZolDoc *pDoc, int nVersion )
{
	if ( !pDoc->GetRoot() )
		return;
	BringRootToVersion( pDoc->GetRoot(), nVersion, true );
	pDoc->RebuildAttributeLabels();
}
