#pragma once
// Helpers shared by the particle input tests.

#include <gtest/gtest.h>

#include <string>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/text/bufferstring.h"
#include "core/text/utlstring.h"

// Parses the body of a generic KV3 text (without its header line).
inline KeyValues3 ParseKV3Body( const char *pBody )
{
	static const char s_Header[] = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n";
	std::string text = std::string( s_Header ) + pBody;
	KeyValues3 kv;
	CUtlString error;
	EXPECT_TRUE( LoadKV3FromText( &kv, &error, text.data(), text.size(), KV3_FORMAT_GENERIC ) ) << error.Get() << "\n" << pBody;
	return kv;
}

template <typename Input> std::string DisplayText( const Input &input, const char *pszDomain = "" )
{
	CBufferString text;
	BuildDisplayString( input, &text, pszDomain );
	return text.Get();
}
