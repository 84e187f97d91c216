#include "tools/toolutils2/widgets/propertyeditor/attributeeditorbase.h"

CQAttributeEditor_Base::CQAttributeEditor_Base( QWidget *pParent ) : CQPoolableWidget( pParent )
{
	qRegisterMetaType<PropEdSpecificAttr_t>( "PropEdSpecificAttr_t" );
	qRegisterMetaType<PropEdModifyType_t>( "PropEdModifyType_t" );
}

CQAttributeEditor_Base::~CQAttributeEditor_Base()
{
	// Child fields lose focus as they go, and would finish their edits into a half-gone
	// editor.
	for ( const QMetaObject::Connection &connection : m_Connections )
		disconnect( connection );
}

void CQAttributeEditor_Base::DisconnectAndClear()
{
	for ( const QMetaObject::Connection &connection : m_Connections )
		disconnect( connection );
	m_Connections.clear();
	m_bInitialized = false;
	m_pHost = nullptr;
	m_Targets.RemoveAll();
	m_Info = ZolPropertyRowInfo();
	CPropertyEditorEditSlots::Initialize( nullptr );
}

void CQAttributeEditor_Base::Initialize( const PropertyEditorInit_t &init )
{
	if ( m_bInitialized )
		DisconnectAndClear();
	m_pHost = init.m_pHost;
	m_Targets = init.m_Targets;
	m_Info = init.m_Info;
	CPropertyEditorEditSlots::Initialize( init.m_pHost );
	ConnectSignals();
	MarkInitialized();
}

void CQAttributeEditor_Base::NotifyAttributeModified( PropEdModifyType_t eModifyType )
{
	for ( const PropEdSpecificAttr_t &target : m_Targets )
		emit OnAttributeModified( target, eModifyType );
}
