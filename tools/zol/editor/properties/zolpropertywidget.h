#pragma once
// The "Properties" dock: the property panel that the property editor system makes, on
// the selection of the shown session's document. It follows the document: a new
// selection, an undo, a switched function or an edit shows the selection again, which
// reads values again when the selected nodes stay and makes rows anew when they changed.

#include <QWidget>

#include "core/containers/utlvector.h"
#include "tools/toolutils2/toolevents/tooleventmapregistrationhelper.h"
#include "zoldoc_lib/zolevents.h"

class CQPropertyPanel;
class CZolKV3PropertyDomain;
class CZolSession;
class QSplitter;

class CQZolPropertyWidget : public QWidget
{
	Q_OBJECT

public:
	CQZolPropertyWidget( CZolKV3PropertyDomain *pDomain, QWidget *pParent = nullptr );
	~CQZolPropertyWidget() override;

	// Attaches to the session's document and shows its selection; null shows nothing.
	void SetSession( CZolSession *pSession );
	CZolSession *GetSession() const { return m_pSession; }
	CQPropertyPanel *GetPanel() const { return m_pPanel; }
	CZolKV3PropertyDomain *GetDomain() const { return m_pDomain; }
	// Hands the panel the selected nodes; bForce makes the rows anew even for the same nodes.
	void ShowSelection( bool bForce = false );

	// Room for a label and an editor side by side.
	QSize sizeHint() const override { return QSize( 360, 500 ); }

signals:
	// An edit through the panel was written: the property's name and the modify type.
	void AttributeModified( const QString &name, int nModifyType );

private:
	void OnSelectionChanged( const ZolEvent_SelectionChanged_t & );
	void OnDocumentReplaced( const ZolEvent_DocumentReplaced_t & );
	void OnFunctionEnableDisableChanged( const ZolEvent_FunctionEnableDisableChanged_t & );
	void OnFunctionListChanged( const ZolEvent_FunctionListChanged_t & );
	void OnPropertyDomainTopologyChanged( const ZolEvent_PropertyDomainTopologyChanged_t & );

	CToolEventMapRegistrationHelper<CQZolPropertyWidget> m_EventMap;
	QSplitter *m_pSplitter = nullptr;
	CQPropertyPanel *m_pPanel = nullptr;
	CZolKV3PropertyDomain *m_pDomain;
	CZolSession *m_pSession = nullptr;
};
