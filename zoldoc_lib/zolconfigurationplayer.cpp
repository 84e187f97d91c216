#include "zoldoc_lib/zolconfigurationplayer.h"

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transfercontext.h"
#include "core/particles/particlemodelresource.h"
#include "core/particles/sim/particledefinitionusage.h"
#include "core/text/strtools.h"
#include "zoldoc_lib/zolcollectionpreviewtarget.h"
#include "zoldoc_lib/zolconfigurationreader.h"
#include "zoldoc_lib/zolcontrolpointstate.h"

const KeyValues3 *FindZolConfiguration( const KeyValues3 &definition, const char *pName )
{
	const KeyValues3 *pConfigurations = definition.IsTable() ? definition.FindMember( "m_controlPointConfigurations" ) : nullptr;
	for ( int i = 0; pConfigurations && pConfigurations->IsArray() && i < pConfigurations->GetArrayElementCount(); ++i )
	{
		const KeyValues3 *pConfig = pConfigurations->GetArrayElement( i );
		if ( pConfig->IsTable() && !V_stricmp_fast( pConfig->GetMemberString( "m_name" ), pName ) )
			return pConfig;
	}
	return nullptr;
}

const char *GetZolConfigurationPreviewModel( const KeyValues3 &configuration )
{
	const KeyValues3 *pPreviewState = configuration.IsTable() ? configuration.FindMember( "m_previewState" ) : nullptr;
	return pPreviewState && pPreviewState->IsTable() ? pPreviewState->GetMemberString( "m_previewModel" ) : "";
}

namespace
{
// Every entity of a headless run is the configuration's preview model; the declared
// values come from the definition's variables.
class CPlaybackHost final : public IZolControlPointStateHost
{
public:
	CPlaybackHost( const KeyValues3 &definition, const char *pPreviewModel ) : m_Definition( definition ), m_PreviewModel( pPreviewModel ) {}

	void OnControlPointStateChanged( const ParticleParamID_t & ) override {}
	void OnNamedValueStateChanged( const ParticleParamID_t & ) override {}
	void OnEditModeChanged( const ParticleParamID_t & ) override {}
	const char *GetEntityModel( int ) const override { return m_PreviewModel.Get(); }
	const char *GetPreviewModel() const override { return m_PreviewModel.Get(); }
	void GetWearableModels( CUtlVector<CUtlString> * ) const override {}
	bool GetDeclaredValue( const ParticleParamID_t &key, KeyValues3 *pValue ) const override
	{
		const KeyValues3 *pLocals = m_Definition.FindMember( "m_NamedValueLocals" );
		for ( int i = 0; pLocals && pLocals->IsArray() && i < pLocals->GetArrayElementCount(); ++i )
		{
			const KeyValues3 *pLocal = pLocals->GetArrayElement( i );
			if ( !pLocal->IsTable() || ParticleParamID_t::Named( pLocal->GetMemberString( "m_Name" ) ) != key )
				continue;
			const KeyValues3 *pConfig = pLocal->FindMember( "m_DefaultConfig" );
			const KeyValues3 *pStored = pConfig && pConfig->IsTable() ? pConfig->FindMember( "m_ConfigValue" ) : nullptr;
			if ( !pStored )
				return false;
			*pValue = *pStored;
			return true;
		}
		return false;
	}

private:
	const KeyValues3 &m_Definition;
	CUtlString m_PreviewModel;
};
} // namespace

void GetZolConfigurationNames( const KeyValues3 &definition, CUtlVector<CUtlString> *pNames )
{
	pNames->RemoveAll();
	const KeyValues3 *pConfigurations = definition.IsTable() ? definition.FindMember( "m_controlPointConfigurations" ) : nullptr;
	for ( int i = 0; pConfigurations && pConfigurations->IsArray() && i < pConfigurations->GetArrayElementCount(); ++i )
	{
		const KeyValues3 *pConfig = pConfigurations->GetArrayElement( i );
		if ( pConfig->IsTable() )
			pNames->AddToTail( CUtlString( pConfig->GetMemberString( "m_name" ) ) );
	}
}

bool PlayZolConfiguration( const KeyValues3 &definition, const char *pName, const CParticleDefinitionUsage &usage, IParticleCollection *pCollection,
	CUtlString *pError, CUtlString *pWarning )
{
	const KeyValues3 *pFound = FindZolConfiguration( definition, pName ? pName : "" );
	if ( !pFound )
	{
		if ( pError )
		{
			CUtlVector<CUtlString> names;
			GetZolConfigurationNames( definition, &names );
			CUtlString strNames;
			for ( const CUtlString &name : names )
			{
				if ( !strNames.IsEmpty() )
					strNames.Append( ", " );
				strNames.Append( name.Get() );
			}
			if ( names.IsEmpty() )
				pError->Format( "no configuration '%s': the definition has none", pName ? pName : "" );
			else
				pError->Format( "no configuration '%s' (there are: %s)", pName ? pName : "", strNames.Get() );
		}
		return false;
	}
	KeyValues3 configuration;
	CKV3TransferLoadContext context;
	ReadControlPointConfiguration( pFound, &configuration, &context );
	const char *pModel = GetZolConfigurationPreviewModel( configuration );

	CZolCollectionPreviewTarget target( pCollection );
	if ( *pModel )
	{
		CUtlString modelError;
		ParticleModelPtr_t pModelData = FindParticleModel( pModel, &modelError );
		if ( pModelData )
			target.SetSceneModel( pModel, pModelData );
		else if ( pWarning )
			pWarning->Format( "preview model '%s': %s", pModel, modelError.Get() );
	}
	CPlaybackHost host( definition, pModel );
	CZolControlPointState state( &host );
	state.RebuildKnownControlPoints( usage );
	state.ApplyDrivers( configuration );
	state.ApplyToPreview( &target );
	return true;
}
