#pragma once
// Which object, seen through which attribute table. Passed by value everywhere and never
// owning anything: attributes are shared by all instances, so everything per-instance
// travels in the handle.

#include <cstdint>

class IToolAttrNotifyRoot;
class IToolAttr_Table;

// The type tag of a class: MurmurHash2 (seed 0x31415926) of its name in lower case.
uint32_t ToolAttrTypeTag( const char *pszClassName );

struct HToolAttrTableInstance
{
	bool IsValid() const { return m_pInstance != nullptr && m_pTable != nullptr; }

	IToolAttrNotifyRoot *m_pNotifyRoot = nullptr; // told of changes; may be null
	const char *m_pszClassName = nullptr;         // for diagnostics only
	uint32_t m_nTypeTag = 0;
	void *m_pInstance = nullptr;
	IToolAttr_Table *m_pTable = nullptr;
};
