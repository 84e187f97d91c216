#pragma once
// The node types of a document: one static record per class with its names and its
// factory, registered at start-up, so a file's "_class" finds the class that loads it.

#include <vector>

class CPulseDocNode;

enum PulseDocNodeCategory_t : int
{
	PULSE_NODE_CATEGORY_OTHER = 0,
	PULSE_NODE_CATEGORY_FLOW = 1,
	PULSE_NODE_CATEGORY_VALUE = 2,
	PULSE_NODE_CATEGORY_CONNECTION = 3,
	PULSE_NODE_CATEGORY_DEFINITION = 4,
};

struct PulseDocNodeTypeInfo_t
{
	const char *m_pClassName;    // "CPulseDoc_Step_DebugLog": the "_class" of the file
	const char *m_pTypeName;     // "Step_DebugLog"
	const char *m_pFriendlyName; // "Debug Log"
	const char *m_pDescription;
	PulseDocNodeCategory_t m_eCategory;
	bool m_bTakesName; // the node's m_Name means something (a method, a variable)
	CPulseDocNode *( *m_pfnCreate )();
};

class CPulseDocNodeTypeRegistrar
{
public:
	explicit CPulseDocNodeTypeRegistrar( const PulseDocNodeTypeInfo_t *pInfo );
};

// Exact in case, as "_class" is written. Null when this build doesn't know the class.
const PulseDocNodeTypeInfo_t *PulseDoc_FindNodeType( const char *pClassName );
CPulseDocNode *PulseDoc_CreateNode( const char *pClassName );
// Every registered type, in registration order.
const std::vector<const PulseDocNodeTypeInfo_t *> &PulseDoc_GetNodeTypes();

// In a concrete node class: its record.
#define PULSE_DOC_NODE_TYPE()                                                                                              \
	static const PulseDocNodeTypeInfo_t s_TypeInfo;                                                                        \
	const PulseDocNodeTypeInfo_t &GetNodeTypeInfo() const override { return s_TypeInfo; }

// In the class's source file: the record and its registration.
#define PULSE_DOC_DEFINE_NODE_TYPE( className, typeName, friendlyName, description, category, takesName )                   \
	const PulseDocNodeTypeInfo_t className::s_TypeInfo = { #className, typeName, friendlyName, description, category, takesName, \
														   []() -> CPulseDocNode * { return new className; } };            \
	static const CPulseDocNodeTypeRegistrar s_Registrar_##className( &className::s_TypeInfo );
