#pragma once
// "Input Debugger": the trace of the input bind manager while the window is shown. Each
// input event is a line ("MOUSE_LEFT PRESS"), followed by the trace lines it caused
// ("- Add Active Code: ...", "EXEC-BEGIN: ..."); beside it the focus chain, one line per
// target from the focus widget outwards, and the key state table.

#include <QWidget>

#include "tools/toolutils2/inputbind/inputbindengine.h"

class CQInputBindManager;
class CQInputKeyStateVisualizer;
class QPlainTextEdit;

class CQInputDebugger final : public QWidget, public IInputBindTraceListener
{
	Q_OBJECT

public:
	// strToolName names the tool in the title: "Input Debugger [Zol]".
	CQInputDebugger( CQInputBindManager *pManager, const QString &strToolName, QWidget *pParent = nullptr );
	~CQInputDebugger() override;

	// The focus chain as it is now: "<context> [W = <widget>, C = <class>, Instance = <id>,
	// Mode = <modifiers>]" per target, "[NoWidget]" first when nothing has the focus.
	static QStringList DescribeFocusChain( CQInputBindManager *pManager );

	QPlainTextEdit *GetTraceView() const { return m_pTrace; }
	QPlainTextEdit *GetChainView() const { return m_pChain; }
	CQInputKeyStateVisualizer *GetKeyStateVisualizer() const { return m_pKeyState; }
	// The trace as shown, one entry per line.
	QStringList GetTraceLines() const;

	// IInputBindTraceListener
	void OnInputCode( InputCode_t nCode, int nKind ) override;
	void OnTraceLine( const char *pLine ) override;

public slots:
	void ClearTrace();
	void RefreshState();

protected:
	// Listens only while shown: a closed debugger costs the engine nothing.
	void showEvent( QShowEvent *pEvent ) override;
	void hideEvent( QHideEvent *pEvent ) override;

private:
	void StopListening();

	CQInputBindManager *m_pManager;
	QPlainTextEdit *m_pTrace = nullptr;
	QPlainTextEdit *m_pChain = nullptr;
	CQInputKeyStateVisualizer *m_pKeyState = nullptr;
	bool m_bRefreshQueued = false;
	QMetaObject::Connection m_FocusConnection;
};
