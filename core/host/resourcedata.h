#pragma once
// What a resource holds once compiled: a base that each compiler derives its own
// result from. Readers ask the binding for the data and cast to the type they know.
// Data is immutable once published; a reload publishes a new object.

#include <cstdint>
#include <vector>

#include "core/kv3/keyvalues3.h"

class CResourceData
{
public:
	virtual ~CResourceData() = default;
};

// The source bytes as they are: the data of types without a compiler of their own.
class CBinaryResourceData final : public CResourceData
{
public:
	CBinaryResourceData( const void *pData, size_t nSize ) : m_Bytes( (const uint8_t *)pData, (const uint8_t *)pData + nSize ) {}
	const std::vector<uint8_t> &GetBytes() const { return m_Bytes; }

private:
	std::vector<uint8_t> m_Bytes;
};

// A KV3 tree: the data of KV3 text types that have no compiler of their own.
class CKV3ResourceData final : public CResourceData
{
public:
	KeyValues3 &GetKV3() { return m_KV3; }
	const KeyValues3 &GetKV3() const { return m_KV3; }

private:
	KeyValues3 m_KV3;
};
