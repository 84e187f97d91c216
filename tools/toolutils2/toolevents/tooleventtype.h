#pragma once
// An event type: its name and an id made once on first use, the MurmurHash2 of the
// lower-cased name (seed 0x31415926). Event payload structures name themselves with
// DECLARE_TOOL_EVENT so every dispatcher agrees on the id without a registry.

#include <cstdint>
#include <cstring>

#include "core/kv3/kv3membername.h"

struct ToolEventType_t
{
	const char *m_pName;
	uint32_t m_nId;
};

inline ToolEventType_t MakeToolEventType( const char *pName )
{
	return { pName, MurmurHash2LowerCase( pName, strlen( pName ), KV3_MEMBER_NAME_SEED ) };
}

#define DECLARE_TOOL_EVENT( EventStruct )                                          \
	static const ToolEventType_t &EventType()                                      \
	{                                                                              \
		static const ToolEventType_t s_Type = MakeToolEventType( #EventStruct );   \
		return s_Type;                                                             \
	}
