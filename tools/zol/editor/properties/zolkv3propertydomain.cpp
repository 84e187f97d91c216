#include "tools/zol/editor/properties/zolkv3propertydomain.h"

#include <QComboBox>
#include <QSignalBlocker>

#include <cstring>

#include "core/host/ipropertyeditorsystem.h"
#include "core/kv3/keyvalues3.h"
#include "core/particles/particlefunctiontype.h"
#include "core/text/bufferstring.h"
#include "tools/toolutils2/toolattr/ibasetoolattr.h"
#include "tools/zol/editor/zolsession.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolevents.h"
#include "zoldoc_lib/zolnode.h"

namespace
{
// The key whose edit context is the list of options of a cube map bake.
constexpr uint32_t CUBEMAP_OPTIONS_KEY_HASH = 0x9b63d93d;
constexpr const char *CONFIGURATIONS_KEY = "m_controlPointConfigurations";

// The root keeps its lists and configurations as nodes of their own: the function list
// edits them, not a row.
bool IsRootListKey( const char *pName )
{
	if ( !std::strcmp( pName, CONFIGURATIONS_KEY ) )
		return true;
	for ( int nType = 0; nType < PARTICLE_FUNCTION_LIST_COUNT; ++nType )
	{
		if ( !std::strcmp( pName, GetParticleFunctionListKey( nType ) ) )
			return true;
	}
	return false;
}
} // namespace

CZolKV3PropertyDomain::CZolKV3PropertyDomain() : CToolAttrPropertyDomain( this ), CZolNamedValueContext( nullptr, nullptr )
{
	if ( IPropertyEditorSystem *pSystem = GetPropertyEditorSystem() )
		pSystem->RegisterPropertyDomain( this );
}

CZolKV3PropertyDomain::~CZolKV3PropertyDomain()
{
	if ( IPropertyEditorSystem *pSystem = GetPropertyEditorSystem() )
		pSystem->RemovePropertyDomain( this );
}

void CZolKV3PropertyDomain::SetSession( CZolSession *pSession )
{
	m_pSession = pSession;
	SetSource( pSession, pSession ? pSession->GetControlPointState() : nullptr );
	ClearNamedValueCache();
}

void CZolKV3PropertyDomain::FillVariableCombo( QComboBox *pCombo, const CPulseValueFullType &type )
{
	const QSignalBlocker blocker( pCombo );
	pCombo->clear();
	pCombo->setEditable( false );
	CUtlVector<ToolAttrGenericChoice_t> choices;
	GetCompatibleVariables( type, &choices );
	for ( const ToolAttrGenericChoice_t &choice : choices )
	{
		pCombo->addItem( QString::fromUtf8( choice.m_Value.Get() ) );
		pCombo->setItemData( pCombo->count() - 1, QString::fromUtf8( choice.m_Description.Get() ), Qt::ToolTipRole );
	}
}

bool CZolKV3PropertyDomain::SelectVariableInCombo( QComboBox *pCombo, const char *pName )
{
	const QSignalBlocker blocker( pCombo );
	int nIndex = pCombo->findText( QString::fromUtf8( pName ? pName : "" ) );
	pCombo->setCurrentIndex( nIndex );
	return nIndex >= 0;
}

bool CZolKV3PropertyDomain::IsFieldHidden( IBaseToolAttr *pAttr ) const
{
	if ( !m_pSession || !m_pSession->GetDoc() || !pAttr )
		return false;
	int nVersion = m_pSession->GetDoc()->GetBehaviorVersion();
	const KeyValues3 *pMeta = pAttr->GetMetadata();
	if ( pMeta->HasMember( "particle_min_version" ) && nVersion < pMeta->GetMemberInt64( "particle_min_version" ) )
		return true;
	if ( pMeta->HasMember( "particle_max_version" ) && nVersion > pMeta->GetMemberInt64( "particle_max_version" ) )
		return true;
	return false;
}

bool CZolKV3PropertyDomain::GetTargetDisplayName( const ZolPropertyTarget &target, CUtlString *pOut )
{
	CBaseZolNode *pNode = dynamic_cast<CBaseZolNode *>( target.m_hTable.m_pNotifyRoot );
	if ( !pNode || !target.m_hTable.IsValid() || pNode->IsFunctionNode() )
		return CToolAttrPropertyDomain::GetTargetDisplayName( target, pOut );
	if ( pNode->IsRootNode() )
	{
		pOut->Set( "Base Properties" );
		return true;
	}
	CBufferString name, value, hint;
	pNode->GetDisplayStrings( &name, &value, &hint );
	pOut->Format( "%s %s", pNode->IsChildNode() ? "Child" : "Variable", name.Get() );
	return true;
}

bool CZolKV3PropertyDomain::IsPropertyFiltered( IBaseToolAttr *pAttr, HToolAttrTableInstance handle )
{
	if ( IsFieldHidden( pAttr ) )
		return true;
	CBaseZolNode *pNode = dynamic_cast<CBaseZolNode *>( handle.m_pNotifyRoot );
	return pNode && pNode->IsRootNode() && handle.m_pTable == static_cast<IToolAttr_Table *>( pNode ) && IsRootListKey( pAttr->GetName() );
}

void CZolKV3PropertyDomain::FillEditContext( const ZolPropertyTarget &property, CToolEditContextQuery_Base *pQuery )
{
	auto *pString = dynamic_cast<CToolEditContextQuery_String *>( pQuery );
	if ( pString && pString->m_nKeyHash == CUBEMAP_OPTIONS_KEY_HASH )
	{
		pString->m_eKind = CToolEditContextQuery_String::KIND_CODE;
		pString->m_Source = "tools code";
		pString->m_Value = "-loadingscreen.timg -cubemap -env_light_probe";
		return;
	}
	CToolAttrPropertyDomain::FillEditContext( property, pQuery );
}

void CZolKV3PropertyDomain::OnBeforeChange( const ZolPropertyBeforeChange_t &record )
{
	CZolDoc *pDoc = m_pSession ? m_pSession->GetDoc() : nullptr;
	if ( !pDoc )
		return;
	// Past its first step a drag continues the step it opened.
	if ( record.m_eModifyType > PROPED_MODIFY_BEGIN )
	{
		pDoc->NotifyModified();
		return;
	}
	CUtlString name;
	name.Format( "Set %s", ZolPropertyListLabel( record.m_pProperties, record.m_nCount ).Get() );
	pDoc->BeginEdit( name.Get(), true );
}

void CZolKV3PropertyDomain::OnAfterChange( const ZolPropertyAfterChange_t & )
{
	if ( CZolDoc *pDoc = m_pSession ? m_pSession->GetDoc() : nullptr )
		pDoc->SendEvent( ZolEvent_FunctionListChanged_t() );
}

void CZolKV3PropertyDomain::OnPropertyRebuild( HToolAttrTableInstance, IBaseToolAttr * )
{
	// The panel reads the rebuild flag after the edit and makes its rows anew.
}
