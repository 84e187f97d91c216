#pragma once
// The matching and gesture engine behind the input bind manager, free of widgets: it is
// fed input codes, a key state, the focus chain (as sets of targets), a clock and mouse
// deltas, and it runs the stages of bound commands.
//
// Bindings reachable through the focus chain are prepared into match states when the
// chain changes, so a key event walks only those (token compares, no strings). The
// longest matching sequence wins; of the winners, at most one drag command and one
// other command start per event.

#include <cstdint>
#include <memory>
#include <vector>

#include "core/logging/logginglistener.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/inputbind/bindablecommand.h"
#include "tools/toolutils2/inputbind/bindtarget.h"
#include "tools/toolutils2/inputbind/inputbindinglist.h"
#include "tools/toolutils2/inputbind/inputcodes.h"

class CBindTargetDescriptorBase;
class CBindTargetSet;

// The channel of the engine's trace ("EXEC-BEGIN: ...", detailed) and warnings.
LoggingChannelID_t LOG_INPUTBIND();

enum InputEventKind_t : int
{
	INPUT_EVENT_PRESS = 0,
	INPUT_EVENT_REPEAT = 1,
	INPUT_EVENT_DOUBLE_CLICK = 2,
	INPUT_EVENT_RELEASE = 3,
};

enum InputEventFlags_t : unsigned
{
	INPUT_EVENT_TRACK_ACTIVE = 1u << 0, // the active code list follows the event
	INPUT_EVENT_FROM_WIDGET = 1u << 1,
};

// How far a gesture has come.
enum BindGestureState_t : int
{
	BIND_GESTURE_CANCELLED = 0,   // another gesture started dragging
	BIND_GESTURE_BEFORE_DRAG = 1, // a drag command under the threshold
	BIND_GESTURE_ENDED = 3,
	BIND_GESTURE_ACTIVE = 5,
	BIND_GESTURE_RUNNING = 6,
	BIND_GESTURE_HELD = 7,
};

constexpr int BIND_DRAG_THRESHOLD_PIXELS = 5;
constexpr double BIND_HELD_DELAY_SECONDS = 0.2;
constexpr int BIND_MAX_INPUT_RECURSION = 16;

// One widget of the focus chain: its targets, and whether it is shown.
struct BindChainLink_t
{
	void *m_pWidget = nullptr;
	CBindTargetSet *m_pTargets = nullptr;
	bool m_bVisible = true;
};

// One running gesture.
struct BindGesture_t
{
	int m_nBinding = -1; // index into the binding list; -1 when started from code
	const CBindableCommand *m_pCommand = nullptr;
	IBindTarget *m_pTarget = nullptr;
	void *m_pWidget = nullptr;
	const CBindTargetDescriptorBase *m_pDescriptor = nullptr;
	int m_nDistance = 0; // pixels moved
	bool m_bWaitsForRelease = false;
	bool m_bDragPending = false;
	double m_flHeldTime = -1.0; // when held runs; negative for none
	InputCode_t m_nCode = INPUT_CODE_NONE;
	BindGestureState_t m_eState = BIND_GESTURE_ACTIVE;
	bool m_bSuppressed = false;
	bool m_bDragged = false; // stage 2 ran

	bool IsRunning() const { return m_eState != BIND_GESTURE_ENDED && m_eState != BIND_GESTURE_CANCELLED; }
};

// What the engine asks of the widget side.
class IInputBindEngineHost
{
public:
	// From the focus widget up through its parents, the widgets that have targets, then
	// the global set last.
	virtual void BuildFocusChain( std::vector<BindChainLink_t> *pChain ) = 0;
	// The physical state of a key or button now.
	virtual bool IsCodePhysicallyDown( InputCode_t nCode ) = 0;
	// The first capture begins / the last one ends (cursor position and override cursor).
	virtual void OnMouseCaptureStart( void *pWidget, uint32_t nFlags ) = 0;
	virtual void OnMouseCaptureStop( void *pWidget, uint32_t nFlags ) = 0;
	// Capture mode 1: put the cursor back to where the capture began.
	virtual void PinCapturedCursor() = 0;
	// Bindings were added: texts of menus and buttons follow.
	virtual void OnBindingsChanged() = 0;

protected:
	~IInputBindEngineHost() = default;
};

// Watches the engine's trace (the input debugger): each input event as it arrives, then
// each trace line it produces, without the newline. Lines are only formatted while a
// listener is set or the channel logs detailed messages.
class IInputBindTraceListener
{
public:
	virtual void OnInputCode( InputCode_t nCode, int nKind ) = 0;
	virtual void OnTraceLine( const char *pLine ) = 0;

protected:
	~IInputBindTraceListener() = default;
};

class CInputBindEngine final : public IBindTargetDestructionListener
{
public:
	explicit CInputBindEngine( IInputBindEngineHost *pHost );
	~CInputBindEngine();
	CInputBindEngine( const CInputBindEngine & ) = delete;
	CInputBindEngine &operator=( const CInputBindEngine & ) = delete;

	// Reads a binding file through the file system ("GAME") and adds its bindings. A file
	// that can't be read or parsed tells the user through the prompt layer, keeps the
	// bindings loaded before and answers false.
	bool LoadBindings( const char *pPath, const char *pPathID = "GAME" );
	const CInputBindingList &GetBindingList() const { return m_Bindings; }
	CInputBindingList &GetBindingList() { return m_Bindings; }

	// The key state the matcher reads for held codes.
	void SetKeyState( InputCode_t nCode, bool bDown );
	bool IsKeyDown( InputCode_t nCode ) const;
	// Reads the physical state of every code from the host.
	void ForceRescanOfActiveKeys();

	// One input event; kinds are InputEventKind_t.
	void HandleInputCode( InputCode_t nCode, int nKind, unsigned nFlags );

	// The focus chain changed: the match states are rebuilt before the next input, or at
	// once when no input is being handled.
	void MarkDirty();
	void UpdateActiveBindings();
	bool IsDirty() const { return m_bDirty; }
	bool IsHandlingInput() const { return m_nDepth > 0; }

	// The first frame step: mouse moves since the last tick, drags, then OnInputFrame of
	// the targets of visible widgets.
	void RunMouseFrame( float flDeltaX, float flDeltaY );
	// The second frame step: ended gestures go, held ones run stage 4.
	void RunPostFrame();

	// Starts a gesture of the command on the target as if a binding had fired (menus,
	// buttons). False when the target is not in the chain or has no such command.
	bool InvokeCommand( IBindTarget *pTarget, uint32_t nCommandToken );
	// Ends the target's gestures and forgets it.
	void UnregisterTarget( IBindTarget *pTarget );
	// A widget went away or was hidden: gestures on it end without stages.
	void ForgetWidget( void *pWidget );

	// Text of the first binding of the target's command ("Ctrl+S"); empty when unbound.
	void GetBindingText( IBindTarget *pTarget, uint32_t nCommandToken, CUtlString *pText ) const;

	// Gestures that started and weren't yet removed by the second frame step.
	int GetGestureCount() const { return int( m_Gestures.size() ); }
	const BindGesture_t &GetGesture( int nIndex ) const { return *m_Gestures[ size_t( nIndex ) ]; }
	int GetRunningGestureCount() const;
	int GetCaptureDepth() const { return int( m_CaptureStack.size() ); }
	const std::vector<BindChainLink_t> &GetFocusChain() const { return m_Chain; }

	// One listener at a time; null removes it.
	void SetTraceListener( IInputBindTraceListener *pListener ) { m_pTraceListener = pListener; }
	IInputBindTraceListener *GetTraceListener() const { return m_pTraceListener; }

	// IBindTargetDestructionListener
	void OnBindTargetDestroyed( IBindTarget *pTarget ) override;

private:
	struct MatchState_t
	{
		int m_nBinding;
		const CBindableCommand *m_pCommand;
		IBindTarget *m_pTarget;
		int m_nLink; // into m_Chain
		const CBindTargetDescriptorBase *m_pDescriptor;
	};
	struct ActiveCode_t
	{
		InputCode_t m_nCode;
		int m_nKind;
	};

	void RebuildNow();
	void RebuildMatchStates();
	bool MatchesCode( const InputBinding_t &binding, InputCode_t nCode ) const;
	bool IsBindingRunning( int nBinding, const IBindTarget *pTarget ) const;
	BindGesture_t *FindGesture( const CBindableCommand *pCommand, const IBindTarget *pTarget );
	bool IsTargetInChain( const IBindTarget *pTarget ) const;
	BindGesture_t *StartGesture( const MatchState_t &match, InputCode_t nCode, const char *pTraceEvent );
	void BeginGesture( BindGesture_t &gesture );
	void EndGesture( BindGesture_t &gesture, bool bRunStages );
	void EndGesturesOfCode( InputCode_t nCode );
	void StartModifiersOfCode( InputCode_t nCode );
	void RunStage( const BindGesture_t &gesture, BindStage_t eStage );
	bool AnyDragging( const BindGesture_t *pExcept ) const;
	void BeginCapture( const BindGesture_t &gesture );
	void EndCapture( const BindGesture_t &gesture );
	void DescribeGesture( const BindGesture_t &gesture, CUtlString *pText ) const;
	// Logs "<event>: <context>.<command>" on the detailed level.
	void Trace( const char *pEvent, const BindGesture_t &gesture ) const;
	// Logs a trace line on the detailed level and hands it to the trace listener.
	void TraceLine( const char *pFormat, ... ) const __attribute__( ( format( printf, 2, 3 ) ) );
	bool IsTracing() const;

	IInputBindEngineHost *m_pHost;
	IInputBindTraceListener *m_pTraceListener = nullptr;
	CInputBindingList m_Bindings;
	bool m_KeyState[ INPUT_CODE_COUNT ] = {};
	std::vector<ActiveCode_t> m_ActiveCodes;
	std::vector<BindChainLink_t> m_Chain;
	std::vector<MatchState_t> m_MatchStates;
	// Owned one by one: handlers may start gestures while one is referenced.
	std::vector<std::unique_ptr<BindGesture_t>> m_Gestures;
	std::vector<void *> m_CaptureStack;
	uint32_t m_nCaptureFlags = 0; // flags of the command that began the outermost capture
	bool m_bDirty = true;
	int m_nDepth = 0;
	// Counts rebuilds, so the matching loop can tell that a gesture rebuilt the chain.
	int m_nRebuildCount = 0;
};
