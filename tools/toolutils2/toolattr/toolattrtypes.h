#pragma once
// Small records shared by the attribute interfaces: value kinds, edit hints, choices,
// ranges, command descriptors and edit context queries.

#include <cstdint>

#include "core/text/utlstring.h"

// What GetAttrType answers; the property domain picks its row editors by it.
enum ToolAttrType_t : int
{
	TOOLATTR_TYPE_BOOL = 0,
	TOOLATTR_TYPE_INT = 1, // also enumerations and handles stored as integers
	TOOLATTR_TYPE_UINT = 2,
	TOOLATTR_TYPE_FLOAT = 3,
	TOOLATTR_TYPE_VECTOR3 = 4,
	TOOLATTR_TYPE_VECTOR2 = 5,
	TOOLATTR_TYPE_VECTOR4 = 6,
	TOOLATTR_TYPE_ANGLE = 7,
	TOOLATTR_TYPE_COLOR = 8,
	TOOLATTR_TYPE_COLOR_ALPHA = 9,
	TOOLATTR_TYPE_STRING = 10,
	TOOLATTR_TYPE_FLAGS = 11,
	TOOLATTR_TYPE_ARRAY = 12,
	TOOLATTR_TYPE_TABLE = 13,
	TOOLATTR_TYPE_MAP = 14,
	TOOLATTR_TYPE_KV3 = 15,
	TOOLATTR_TYPE_STRUCTURED = 17,
};

enum ToolAttrEditHint_t : int
{
	TOOLATTR_EDIT_HINT_NONE = 0,
	TOOLATTR_EDIT_HINT_RANGE = 1,
	TOOLATTR_EDIT_HINT_CHOICES = 2,
	TOOLATTR_EDIT_HINT_SUGGESTIONS = 3,
	TOOLATTR_EDIT_HINT_GRADIENT = 4,
	TOOLATTR_EDIT_HINT_TEXT_BLOCK = 5,
	TOOLATTR_EDIT_HINT_SOUND = 6,
	TOOLATTR_EDIT_HINT_DATA_FILE = 7,
	TOOLATTR_EDIT_HINT_RESOURCE = 8,
};

// GetOverrideState answers.
enum ToolAttrOverrideState_t : int
{
	TOOLATTR_OVERRIDE_NONE = 0,
	TOOLATTR_OVERRIDE_OVERRIDING = 1,
	TOOLATTR_OVERRIDE_INHERITING = 2,
	TOOLATTR_OVERRIDE_INHERITING_FIXED = 3,
};

// RunCommand answers.
enum ToolAttrCommandResult_t : int
{
	TOOLATTR_COMMAND_NOT_HANDLED = 0,
	TOOLATTR_COMMAND_DONE = 1,
	TOOLATTR_COMMAND_FAILED = 2,
};

struct ToolAttrGenericChoice_t
{
	CUtlString m_Value;
	CUtlString m_FriendlyName;
	CUtlString m_Description;
	int64_t m_nValue = 0;
};

template <typename T> struct ToolAttrChoice_t
{
	T m_Value;
	CUtlString m_FriendlyName;
	CUtlString m_Description;
};

template <typename T> struct ToolAttrRange_t
{
	T m_Min;
	T m_Max;
	bool m_bBiased = false;
	uint32_t m_nFlags = 0; // carried on to the row record
};

struct ToolAttrCustomCommand_t
{
	CUtlString m_Name; // "_CustomCommand%d"
	CUtlString m_Label;
	CUtlString m_Tooltip;
	CUtlString m_Icon;
	int m_nZone = 3;          // 0 none, 1 left, 2 inline, 3 right
	int m_nApplicableTo = 0;  // 0 any, 1 array members, 2 array parents, 3 not array members
	CUtlString m_BindableTarget;
	CUtlString m_BindableCommand;
};

// A question an editor asks the document through FillEditContext.
class CToolEditContextQuery_Base
{
public:
	virtual ~CToolEditContextQuery_Base() = default;
};

class CToolEditContextQuery_String : public CToolEditContextQuery_Base
{
public:
	enum Kind_t : int
	{
		KIND_NONE = 0,
		KIND_KEY_NAME = 1, // the value names another attribute
		KIND_CODE = 2,     // the value is a code string
	};
	explicit CToolEditContextQuery_String( const char *pszKey );

	CUtlString m_Key;
	Kind_t m_eKind = KIND_NONE;
	CUtlString m_Source;
	CUtlString m_Value;
	uint32_t m_nKeyHash = 0;      // of m_Key, for answerers that compare hashes
	uint32_t m_nValueKeyHash = 0; // of m_Value when it names another attribute (KIND_KEY_NAME)
};
