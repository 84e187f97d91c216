#pragma once
// The bind targets of one widget, kept as a child object of the widget so that they go
// when it goes. The manager finds it through the widget's dynamic property
// "CQInputBindManager_BindableWidgetInfo".

#include <QObject>

#include "tools/toolutils2/inputbind/bindtargetset.h"

class CQInputBindManager;

constexpr const char *BINDABLE_WIDGET_INFO_PROPERTY = "CQInputBindManager_BindableWidgetInfo";

class CQBindableWidgetInfo final : public QObject
{
	Q_OBJECT

public:
	CQBindableWidgetInfo( QObject *pOwner, CQInputBindManager *pManager );
	// Unlinks every target from the manager.
	~CQBindableWidgetInfo() override;

	// The info of a widget (or any object), or null when it has none.
	static CQBindableWidgetInfo *FromObject( const QObject *pObject );

	CBindTargetSet &GetTargets() { return m_Targets; }
	const CBindTargetSet &GetTargets() const { return m_Targets; }
	CQInputBindManager *GetManager() const { return m_pManager; }

private:
	CBindTargetSet m_Targets;
	CQInputBindManager *m_pManager;
	// The owner as it was when alive: by the time children go, it is half destroyed.
	void *m_pOwner;
};
