#pragma once
// The one input bind manager of the process. No widget handles keys or buttons itself:
// widgets register bind targets here, the manager filters their Qt input events into
// input codes for the bind engine, which runs the commands that the bindings of the
// focus chain reach. Menus and buttons run commands through CQBindableCommandAction.

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <vector>

#include "core/text/utlstring.h"
#include "tools/toolutils2/baseeditorapp/toolframelistener.h"
#include "tools/toolutils2/inputbind/inputbindengine.h"

class CGlobalHotkeyCommands;
class CQBindableCommandAction;
class CQBindableWidgetInfo;
class QWidget;

class CQInputBindManager final : public QObject, public IToolFrameListener, public IInputBindEngineHost, public IBindTargetDestructionListener
{
	Q_OBJECT

public:
	// The manager; made at first use, which also loads the global bindings.
	static CQInputBindManager *Get();

	// Reads a binding file ("GAME" path id) and adds its bindings; false on failure, after
	// telling the user.
	bool LoadBindings( const char *pPath );
	// The same for a file that no earlier call loaded; true at once when one did, so a
	// tool started again in one process doesn't add its bindings twice.
	bool LoadBindingsOnce( const char *pPath );
	// Links the target to the widget; a second link of the same pair does nothing.
	void RegisterTarget( QWidget *pWidget, IBindTarget *pTarget );
	// Ends the target's gestures and unlinks it from every widget.
	void UnregisterTarget( IBindTarget *pTarget );
	// Sequence text of the first binding of the command ("Ctrl+S"); empty when unbound.
	QString GetBindingText( QWidget *pWidget, IBindTarget *pTarget, uint32_t nCommandToken ) const;
	// The command's help text, or the label followed by " [sequence]" when bound.
	QString GetCommandText( QWidget *pWidget, IBindTarget *pTarget, uint32_t nCommandToken, const char *pLabel ) const;
	void ForceRescanOfActiveKeys();
	// Starts the command's gesture as if a binding had fired.
	bool InvokeCommand( IBindTarget *pTarget, uint32_t nCommandToken );

	CInputBindEngine &GetEngine() { return m_Engine; }
	// Where the last mouse event of a registered widget put the pointer, in pWidget's
	// coordinates; false before the first one.
	bool GetPointerPosition( const QWidget *pWidget, QPoint *pPos ) const;
	// The info at the end of every focus chain, "GlobalTopLevel".
	CQBindableWidgetInfo *GetGlobalInfo() const { return m_pGlobalInfo; }

	// Actions whose texts follow the bindings after each load.
	void AddAction( CQBindableCommandAction *pAction );
	void RemoveAction( CQBindableCommandAction *pAction );

	bool eventFilter( QObject *pWatched, QEvent *pEvent ) override;

	// IToolFrameListener: mouse moves, drags, held keys.
	void OnToolFrame() override;

	// IInputBindEngineHost
	void BuildFocusChain( std::vector<BindChainLink_t> *pChain ) override;
	bool IsCodePhysicallyDown( InputCode_t nCode ) override;
	void OnMouseCaptureStart( void *pWidget, uint32_t nFlags ) override;
	void OnMouseCaptureStop( void *pWidget, uint32_t nFlags ) override;
	void PinCapturedCursor() override;
	void OnBindingsChanged() override;

	// IBindTargetDestructionListener: a dying target leaves every widget.
	void OnBindTargetDestroyed( IBindTarget *pTarget ) override;

	// Widget infos report their birth and death, so dying targets can be unlinked.
	void AddWidgetInfo( CQBindableWidgetInfo *pInfo );
	void RemoveWidgetInfo( CQBindableWidgetInfo *pInfo, void *pOwner );

private slots:
	void OnFocusChanged( QWidget *pOld, QWidget *pNew );

private:
	CQInputBindManager();
	~CQInputBindManager() override;

	bool AcceptsEventFor( QWidget *pWidget ) const;
	// A key or button that a bindable child ignored reaches its parents too; it counts
	// once, for the first of them.
	bool IsFirstBindableReceiver( QWidget *pWidget, QEvent *pEvent ) const;
	void OnChainEvent();

	CInputBindEngine m_Engine;
	CQBindableWidgetInfo *m_pGlobalInfo = nullptr;
	CGlobalHotkeyCommands *m_pGlobalHotkeys = nullptr;
	std::vector<CQBindableCommandAction *> m_Actions;
	std::vector<CQBindableWidgetInfo *> m_Infos;

	bool m_PhysicalKeyState[ INPUT_CODE_COUNT ] = {};
	bool m_bMouseMoved = false;
	QPoint m_LastCursorPos;
	QPoint m_LastEventGlobalPos;
	bool m_bHasLastEventPos = false;
	bool m_bHasLastCursorPos = false;
	QPoint m_CaptureCursorPos;
	bool m_bOverrideCursorSet = false;
	QPointer<QWidget> m_pCapturedWidget;
};
