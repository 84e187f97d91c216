#pragma once
// A named command that a bind target publishes. A command is not one function: each
// stage of a gesture (press, drag, repeat, held, click, release, ...) has its own
// handler, so a key, a mouse drag and a menu entry all run through the same object.

#include <cstdint>

#include "core/text/utlstring.h"

class IBindTarget;

enum BindStage_t : int
{
	BIND_STAGE_PRESS = 0,      // the gesture begins
	BIND_STAGE_DRAG_START = 1, // the mouse moved past the drag threshold
	BIND_STAGE_DRAG = 2,       // each mouse move while dragging
	BIND_STAGE_REPEAT = 3,     // keyboard auto-repeat
	BIND_STAGE_HELD = 4,       // still down a while after the press
	BIND_STAGE_CLICK = 5,      // a plain key at once; otherwise on release without a drag
	BIND_STAGE_RELEASE = 6,    // the gesture ended
	BIND_STAGE_CANCELLED = 7,  // another gesture took over
	BIND_STAGE_COUNT = 8
};

enum BindCommandFlags_t : uint32_t
{
	BIND_FLAG_CAPTURE_MOUSE = 1u << 0, // capture the mouse while the gesture runs
	BIND_FLAG_HIDE_CURSOR = 1u << 1,   // blank cursor meanwhile
	BIND_FLAG_CAPTURE_MODE_1 = 1u << 2, // cursor pinned back after every frame
	BIND_FLAG_CAPTURE_MODE_2 = 1u << 3, // cursor put back where it was at the end
	BIND_FLAG_NOT_A_DRAG = 1u << 4,     // has a drag handler but doesn't count as a drag
	// Any of these makes a gesture wait for its release before it clicks.
	BIND_FLAGS_WAIT_FOR_RELEASE = BIND_FLAG_CAPTURE_MOUSE | BIND_FLAG_HIDE_CURSOR | BIND_FLAG_CAPTURE_MODE_1,
};

// Tokens are the KV3 member key hash of the lower-cased text, so a name in a file and a
// name in code meet without a string compare.
uint32_t BindToken( const char *pName );

class CBindableCommand
{
public:
	CBindableCommand( const char *pName );
	virtual ~CBindableCommand() = default;

	// Runs the stage's handler on the target; nothing when it has none.
	virtual void Invoke( IBindTarget *pTarget, BindStage_t eStage ) const = 0;
	virtual bool HasHandler( BindStage_t eStage ) const = 0;

	const char *GetName() const { return m_strName.Get(); }
	uint32_t GetToken() const { return m_nToken; }
	uint32_t GetRequiredModifiers() const { return m_nRequiredModifiers; }
	int32_t GetModifierId() const { return m_nModifierId; }
	uint32_t GetFlags() const { return m_nFlags; }

	bool IsModifierCommand() const { return m_nModifierId != -1; }
	bool CapturesMouse() const { return ( m_nFlags & BIND_FLAG_CAPTURE_MOUSE ) != 0; }
	// A drag command runs stage 2 and hasn't opted out of counting as one.
	bool IsDragCommand() const { return HasHandler( BIND_STAGE_DRAG ) && !( m_nFlags & BIND_FLAG_NOT_A_DRAG ); }

	CBindableCommand &SetRequiredModifiers( uint32_t nMask ) { m_nRequiredModifiers = nMask; return *this; }
	CBindableCommand &SetModifierId( int32_t nId ) { m_nModifierId = nId; return *this; }
	CBindableCommand &SetFlags( uint32_t nFlags ) { m_nFlags = nFlags; return *this; }

protected:
	CUtlString m_strName;
	uint32_t m_nToken = 0;
	uint32_t m_nRequiredModifiers = 0;
	int32_t m_nModifierId = -1;
	uint32_t m_nFlags = 0;
};
