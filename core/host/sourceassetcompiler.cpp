#include "core/host/sourceassetcompiler.h"

#include "core/containers/utlbuffer.h"
#include "core/kv3/kv3serialize.h"

bool CSourceAssetCompiler::Compile( const CUtlBuffer &source, const char *pResourceName, std::unique_ptr<CResourceData> *pResult, CUtlString *pError )
{
	if ( m_nType != RESOURCE_TYPE_PARTICLE_SYSTEM )
	{
		*pResult = std::make_unique<CBinaryResourceData>( source.Base(), source.TellPut() );
		return true;
	}
	auto pData = std::make_unique<CKV3ResourceData>();
	CUtlBuffer reader( source.Base(), source.TellPut() );
	CUtlString error;
	if ( !LoadKV3( &pData->GetKV3(), &error, &reader, KV3_FORMAT_TFXS, pResourceName ) )
	{
		if ( pError )
			pError->Format( "%s: %s", pResourceName ? pResourceName : "", error.Get() );
		return false;
	}
	*pResult = std::move( pData );
	return true;
}
