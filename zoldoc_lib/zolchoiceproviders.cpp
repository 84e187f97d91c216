#include "zoldoc_lib/zolchoiceproviders.h"

#include <cstdint>

#include "core/text/strtools.h"
#include "tools/toolutils2/fgd/gamedataclass.h"
#include "tools/toolutils2/toolattr/itoolattrnotifyroot.h"
#include "tools/toolutils2/toolattr/toolattrhandle.h"
#include "tools/toolutils2/toolattr/toolattrhost.h"
#include "zoldoc_lib/particlegamedata.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolnode.h"
#include "zoldoc_lib/zolvariableconfiguration.h"

namespace
{
constexpr int PARTICLE_ATTRIBUTE_COUNT = 49;
constexpr uint64_t VECTOR_ATTRIBUTES = 0x10e0140628045ull;
constexpr uint64_t NON_SCALAR_EXTRA_ATTRIBUTES = 0x3833000000ull;
constexpr uint64_t ROTATION_ATTRIBUTES = 0x101030ull;
constexpr uint64_t ALPHA_ATTRIBUTES = 0x810080ull;
constexpr int VECTOR_LIST_TAIL_ATTRIBUTE = 19;

void AddChoice( CUtlVector<ToolAttrGenericChoice_t> *pChoices, const char *pValue, const char *pLabel, int64_t nValue = 0 )
{
	ToolAttrGenericChoice_t &choice = pChoices->Element( pChoices->AddToTail() );
	choice.m_Value.Set( pValue );
	choice.m_FriendlyName.Set( pLabel );
	choice.m_nValue = nValue;
}

void AddAttribute( CUtlVector<ToolAttrGenericChoice_t> *pChoices, const CZolDoc *pDoc, int nAttribute )
{
	const char *pLabel = pDoc->GetAttributeLabel( nAttribute );
	if ( !pLabel || !*pLabel )
		return;
	char szValue[ 16 ];
	V_snprintf( szValue, sizeof( szValue ), "%d", nAttribute );
	AddChoice( pChoices, szValue, pLabel, nAttribute );
}

// Attributes whose bit is (bInMask) or isn't set in the mask.
void AddAttributes( CUtlVector<ToolAttrGenericChoice_t> *pChoices, const CZolDoc *pDoc, uint64_t nMask, bool bInMask )
{
	for ( int i = 0; i < PARTICLE_ATTRIBUTE_COUNT; ++i )
	{
		if ( ( ( nMask >> i ) & 1 ) == uint64_t( bInMask ) )
			AddAttribute( pChoices, pDoc, i );
	}
}

// The edited table must be KV3 data with a class: a table of the class description
// (tagged as such) or a document node (tagged with its own class). Any other context
// counts as absent.
const CZolDoc *FindDocument( HToolAttrTableInstance handle )
{
	static const uint32_t s_nKV3DataTag = ToolAttrTypeTag( "CBaseKV3DataWithFGDClass" );
	const CBaseZolNode *pNode = dynamic_cast<const CBaseZolNode *>( handle.m_pNotifyRoot );
	if ( !pNode )
		return nullptr;
	if ( handle.m_nTypeTag != s_nKV3DataTag && handle.m_nTypeTag != ToolAttrTypeTag( pNode->GetClassName() ) )
		return nullptr;
	return pNode->GetDoc();
}

constexpr const char *s_ChoiceNames[] = { "particlefield", "particlefield_scalar", "particlefield_vector", "particlefield_rotation",
	"particlefield_alpha", "particlefield_size_cull_bloat", "particlefield_domain", "vector_component", "sound_channel" };
} // namespace

bool GetParticleAttributeChoices( const char *pName, const CZolDoc *pDoc, CUtlVector<ToolAttrGenericChoice_t> *pChoices )
{
	if ( !V_strcmp( pName, "particlefield_size_cull_bloat" ) )
	{
		AddChoice( pChoices, "0", "None", 0 );
		AddChoice( pChoices, "1", "1.5x", 1 );
		AddChoice( pChoices, "2", "2x", 2 );
		AddChoice( pChoices, "3", "4x", 3 );
		return true;
	}
	if ( !V_strcmp( pName, "particlefield_domain" ) )
	{
		AddChoice( pChoices, "", "(none)" );
		for ( const CGameDataClass *pDomain : GetParticleDomainClasses() )
			AddChoice( pChoices, pDomain->GetName(), pDomain->m_FriendlyName.Get() );
		return true;
	}
	if ( !V_strcmp( pName, "vector_component" ) )
	{
		AddChoice( pChoices, "-1", "Disabled", -1 );
		AddChoice( pChoices, "0", "X Component", 0 );
		AddChoice( pChoices, "1", "Y Component", 1 );
		AddChoice( pChoices, "2", "Z Component", 2 );
		return true;
	}
	if ( !V_strcmp( pName, "sound_channel" ) )
	{
		static const char *const s_Channels[] = { "CHAN_REPLACE", "CHAN_AUTO", "CHAN_WEAPON", "CHAN_VOICE", "CHAN_ITEM", "CHAN_BODY", "CHAN_STREAM",
			"CHAN_STATIC", "CHAN_VOICE_BASE" };
		for ( int i = 0; i < int( sizeof( s_Channels ) / sizeof( s_Channels[ 0 ] ) ); ++i )
		{
			char szValue[ 16 ];
			V_snprintf( szValue, sizeof( szValue ), "%d", i );
			AddChoice( pChoices, szValue, s_Channels[ i ], i );
		}
		return true;
	}

	const bool bAll = !V_strcmp( pName, "particlefield" );
	const bool bScalar = !V_strcmp( pName, "particlefield_scalar" );
	const bool bVector = !V_strcmp( pName, "particlefield_vector" );
	const bool bRotation = !V_strcmp( pName, "particlefield_rotation" );
	const bool bAlpha = !V_strcmp( pName, "particlefield_alpha" );
	if ( !bAll && !bScalar && !bVector && !bRotation && !bAlpha )
		return false;
	if ( !pDoc )
		return true;
	if ( bAll )
		AddAttributes( pChoices, pDoc, 0, false );
	else if ( bScalar )
		AddAttributes( pChoices, pDoc, VECTOR_ATTRIBUTES | NON_SCALAR_EXTRA_ATTRIBUTES, false );
	else if ( bVector )
	{
		AddAttributes( pChoices, pDoc, VECTOR_ATTRIBUTES, true );
		AddAttribute( pChoices, pDoc, VECTOR_LIST_TAIL_ATTRIBUTE );
	}
	else if ( bRotation )
		AddAttributes( pChoices, pDoc, ROTATION_ATTRIBUTES, true );
	else
		AddAttributes( pChoices, pDoc, ALPHA_ATTRIBUTES, true );
	return true;
}

void RegisterParticleChoiceProviders( CToolAttrHost *pHost )
{
	RegisterZolVariableChoiceProviders( pHost );
	for ( const char *pName : s_ChoiceNames )
	{
		pHost->RegisterChoiceProvider( pName, [ pName ]( HToolAttrTableInstance handle, const IBaseToolAttr *, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) {
			GetParticleAttributeChoices( pName, FindDocument( handle ), pChoices );
		} );
	}
}
