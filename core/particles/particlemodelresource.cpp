#include "core/particles/particlemodelresource.h"

#include <mutex>
#include <unordered_map>

#include "core/containers/utlbuffer.h"
#include "core/host/resourceload.h"
#include "core/host/iresourcesystem.h"

bool CParticleModelCompiler::Compile( const CUtlBuffer &source, const char *pResourceName, std::unique_ptr<CResourceData> *pResult, CUtlString *pError )
{
	auto pModel = std::make_shared<CParticleModel>();
	CUtlString error;
	if ( !pModel->LoadFromText( reinterpret_cast<const char *>( source.Base() ), source.TellPut(), pResourceName, &error ) )
	{
		if ( pError )
			*pError = error;
		return false;
	}
	*pResult = std::make_unique<CParticleModelResourceData>( std::move( pModel ) );
	return true;
}

namespace
{
// Models read from plain source bytes, by binding, so that each version of the bytes is
// parsed once however many collections ask. The entry knows its bytes by their owner, which
// a newer version (or a binding made later at the same address) never shares.
struct ParsedModel_t
{
	std::weak_ptr<const CResourceData> m_pSource;
	ParticleModelPtr_t m_pModel;
	CUtlString m_Error;
};

bool IsSameData( const std::weak_ptr<const CResourceData> &a, const std::shared_ptr<const CResourceData> &b )
{
	return !a.owner_before( b ) && !b.owner_before( a );
}

ParticleModelPtr_t ModelFromBinding( CResourceBinding *pBinding, CUtlString *pError )
{
	std::shared_ptr<const CResourceData> pData = pBinding->GetData();
	if ( auto pModelData = std::dynamic_pointer_cast<const CParticleModelResourceData>( pData ) )
		return pModelData->GetModel();
	auto pBytes = std::dynamic_pointer_cast<const CBinaryResourceData>( pData );
	if ( !pBytes )
	{
		pError->Format( "%s is not a model", pBinding->GetName() );
		return nullptr;
	}
	static std::mutex s_Mutex;
	static std::unordered_map<const CResourceBinding *, ParsedModel_t> s_Parsed;
	std::lock_guard lock( s_Mutex );
	ParsedModel_t &parsed = s_Parsed[ pBinding ];
	if ( !IsSameData( parsed.m_pSource, pData ) )
	{
		parsed.m_pSource = pData;
		parsed.m_Error.Clear();
		auto pModel = std::make_shared<CParticleModel>();
		const std::vector<uint8_t> &bytes = pBytes->GetBytes();
		if ( pModel->LoadFromText( reinterpret_cast<const char *>( bytes.data() ), bytes.size(), pBinding->GetName(), &parsed.m_Error ) )
			parsed.m_pModel = std::move( pModel );
		else
			parsed.m_pModel = nullptr;
	}
	if ( !parsed.m_pModel )
		*pError = parsed.m_Error;
	return parsed.m_pModel;
}
} // namespace

ParticleModelPtr_t FindParticleModel( const char *pResourceName, CUtlString *pError )
{
	CUtlString error;
	if ( !pError )
		pError = &error;
	CResourceBinding *pBinding = FindLoadedResource( pResourceName, "model", pError );
	if ( !pBinding )
		return nullptr;
	return ModelFromBinding( pBinding, pError );
}
