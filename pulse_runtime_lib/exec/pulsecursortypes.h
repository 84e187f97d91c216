#pragma once
// Small types shared by cursors, cells, instances and the Pulse service.

#include <cstdint>

#include "core/schema/schemadeclare.h"
#include "pulse_runtime_lib/graph/pulsegraphtypes.h"

enum class PulseCursorExecResult_t : int32_t
{
	Succeeded = 0,
	Canceled = 1,
	Failed = 2,
	OngoingNotify = 3,
};

enum class PulseCursorCancelPriority_t : int32_t
{
	None = 0,
	CancelOnSucceeded = 1,
	SoftCancel = 2,
	HardCancel = 3,
};
SCHEMA_ENUM_BEGIN( PulseCursorCancelPriority_t )
	SCHEMA_ENUMERATOR( None, { "MPropertyFriendlyName", "Keep running normally." } )
	SCHEMA_ENUMERATOR( CancelOnSucceeded, { "MPropertyFriendlyName", "Kill after current node." },
					   { "MPropertyDescription", "Do not stop the current yielding node, but do not continue to the next node afterwards." } )
	SCHEMA_ENUMERATOR( SoftCancel, { "MPropertyFriendlyName", "Kill elegantly." },
					   { "MPropertyDescription", "Request elegant wind-down of any associated work (e.g. tcs interrupt)." } )
	SCHEMA_ENUMERATOR( HardCancel, { "MPropertyFriendlyName", "Kill immediately." }, { "MPropertyDescription", "Stop without any wind-down." } )
SCHEMA_ENUM_END()

// A yielded cursor named from outside. It resolves only while its instance exists, a
// cursor of that id is yielded there, and the token still matches: each yield and each
// completion takes a fresh token, so a stale handle resolves to nothing.
struct PulseCursorHandle
{
	PulseGraphInstanceID_t m_nInstance = PULSE_INVALID_INSTANCE_ID;
	PulseCursorID_t m_nCursor = -1;
	PulseCursorYieldToken_t m_nToken = -1;

	bool IsEmpty() const { return m_nInstance == PULSE_INVALID_INSTANCE_ID; }
	bool operator==( const PulseCursorHandle & ) const = default;
};
static_assert( sizeof( PulseCursorHandle ) == 12 );
