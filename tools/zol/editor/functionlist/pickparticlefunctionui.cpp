#include "tools/zol/editor/functionlist/pickparticlefunctionui.h"

#include <QApplication>

#include "core/host/gameinfo.h"
#include "core/logging/logging.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolfunctionoffers.h"
#include "zoldoc_lib/zolfunctionpresets.h"

namespace
{
constexpr const char *s_TypeIcons[] = {
	"game:tools/images/zol/func_operator.png",
	"game:tools/images/zol/func_emitter.png",
	"game:tools/images/zol/func_initializer.png",
	"game:tools/images/zol/func_operator.png",
	"game:tools/images/zol/func_forcegenerator.png",
	"game:tools/images/zol/func_constraint.png",
	"game:tools/images/zol/func_renderer.png",
};

const char *GameName()
{
	const CGameInfo *pGameInfo = GetGameInfo();
	return pGameInfo ? pGameInfo->GetGameName() : "";
}
} // namespace

CQPickParticleFunctionUI::CQPickParticleFunctionUI( CZolDoc *pDoc, QWidget *pParent ) : CQRichItemListPicker( pParent ), m_pDoc( pDoc )
{
	SetScope( "particles" );
}

const char *CQPickParticleFunctionUI::GetFunctionTypeIconPath( ParticleFunctionType_t eType )
{
	return eType >= 0 && eType < PARTICLE_FUNCTION_CLASS_LIST_COUNT ? s_TypeIcons[ eType ] : "";
}

void CQPickParticleFunctionUI::Populate( ParticleFunctionType_t eType )
{
	const bool bAll = eType == PARTICLE_FUNCTION_ROOT;
	const int nVersion = m_pDoc ? m_pDoc->GetBehaviorVersion() : 0;
	const CZolRootNode *pRoot = m_pDoc ? m_pDoc->GetRoot() : nullptr;

	// Every list's offers first: the presets come ahead of all classes.
	CUtlVector<ZolFunctionOffer_t> offers[ PARTICLE_FUNCTION_CLASS_LIST_COUNT ];
	for ( int nType = 0; nType < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nType )
	{
		if ( bAll || nType == eType )
			GetParticleFunctionOffers( pRoot, ParticleFunctionType_t( nType ), nVersion, GameName(), &offers[ nType ] );
	}

	auto addPick = [ this ]( const ZolFunctionOffer_t &offer, int nType, const char *pGroup ) {
		Pick_t &pick = m_Picks.Element( m_Picks.AddToTail() );
		pick.m_SecondText = offer.m_ClassName;
		pick.m_nType = nType;
		pick.m_pPreset = offer.m_pPreset;
		int nChoice;
		if ( offer.m_pPreset )
		{
			pick.m_FirstText = offer.m_Description;
			nChoice = AddChoice( offer.m_FriendlyName, offer.m_Description, pGroup );
		}
		else
		{
			pick.m_FirstText = offer.m_FriendlyName;
			CUtlString key;
			key.Format( "Element.%s", offer.m_ClassName.Get() );
			nChoice = AddChoiceWithHelpKey( key, pGroup );
			// A limited class shows why; its name is no longer the help's title.
			if ( offer.m_Text != offer.m_FriendlyName )
				SetName( nChoice, offer.m_Text );
		}
		SetSecondText( nChoice, offer.m_ClassName );
		SetDisabled( nChoice, !offer.m_bEnabled );
		SetUserData( nChoice, m_Picks.Count() - 1 );
		SetIcon( nChoice, QIcon( GetFunctionTypeIconPath( ParticleFunctionType_t( nType ) ) ) );
	};

	for ( int nType = 0; nType < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nType )
	{
		for ( const ZolFunctionOffer_t &offer : offers[ nType ] )
		{
			if ( offer.m_pPreset )
				addPick( offer, nType, bAll ? "Presets" : nullptr );
		}
	}
	for ( int nType = 0; nType < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nType )
	{
		for ( const ZolFunctionOffer_t &offer : offers[ nType ] )
		{
			if ( !offer.m_pPreset )
				addPick( offer, nType, bAll ? CZolDoc::GetFunctionTypeName( nType ) : nullptr );
		}
	}
}

int CQPickParticleFunctionUI::exec()
{
	m_pAddedNode = nullptr;
	m_Refusal.Clear();
	if ( CQRichItemListPicker::exec() != QDialog::Accepted || !HasSelection() || !m_pDoc )
		return 0;
	const int nPick = GetSelectedUserData().toInt();
	if ( nPick < 0 || nPick >= m_Picks.Count() )
		return 0;
	if ( !IsSelectedChoiceEnabled() )
	{
		// The choice says why ("...: Only one allowed"); nothing reaches the document.
		m_Refusal.Set( GetChoiceName( GetSelectedChoice() ).toUtf8().constData() );
		Log_Msg( LOG_ZOL, "Not added: %s\n", m_Refusal.Get() );
		QApplication::beep();
		return 0;
	}
	const Pick_t &pick = m_Picks[ nPick ];
	CZolDoc::FunctionInitialiser_t fnInitialise;
	if ( pick.m_pPreset )
		fnInitialise = pick.m_pPreset->m_fnInitialise;
	m_pAddedNode = m_pDoc->AddFunction( pick.m_FirstText, pick.m_SecondText, ParticleFunctionType_t( pick.m_nType ), fnInitialise );
	return m_pAddedNode ? 1 : 0;
}
