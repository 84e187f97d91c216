#pragma once
// The records a property edit domain hands the property panel: the address of a
// property, one row's look and buttons, and the editor a row asks for.

#include <cstdint>

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/toolattr/toolattrhandle.h"

class IBaseToolAttr;

// Where a property lives: the table instance that holds it and its attribute. A target
// for a whole table has no attribute.
struct ZolPropertyTarget
{
	HToolAttrTableInstance m_hTable;
	IBaseToolAttr *m_pAttr = nullptr;
};

// Array indices from a property down to one of its elements; empty means the property.
using ZolPropertyPath = CUtlVector<int32_t>;

// Property types of GetPropertyType.
enum ZolPropertyType_t : int32_t
{
	ZOL_PROPERTY_TYPE_NONE = 0,
	ZOL_PROPERTY_TYPE_INT = 1,
	ZOL_PROPERTY_TYPE_FLOAT = 2,
	ZOL_PROPERTY_TYPE_BOOL = 3,
	ZOL_PROPERTY_TYPE_STRING = 4,
	ZOL_PROPERTY_TYPE_COLOR = 6,
	ZOL_PROPERTY_TYPE_COLOR_ALPHA = 7,
	ZOL_PROPERTY_TYPE_VECTOR2 = 8,
	ZOL_PROPERTY_TYPE_VECTOR3 = 9,
	ZOL_PROPERTY_TYPE_VECTOR4 = 10,
	ZOL_PROPERTY_TYPE_ANGLE = 15,
	ZOL_PROPERTY_TYPE_KIND_16 = 18,
	ZOL_PROPERTY_TYPE_TABLE = 19,
	ZOL_PROPERTY_TYPE_MAP = 20,
	ZOL_PROPERTY_TYPE_FLAGS = 21,
	ZOL_PROPERTY_TYPE_KIND_18 = 22,
};

// A button of a row; a custom command of an attribute arrives in the same form.
struct ZolPropertyRowButton
{
	CUtlString m_Command; // what RunButtonCommand gets; empty for a pure marker
	CUtlString m_Tooltip;
	CUtlString m_Icon;
	CUtlString m_HoverIcon;
	bool m_bClickable = false;
	bool m_bDisplayOnly = false;
	bool m_bStaysActive = false; // not made display-only in a read-only domain
	int32_t m_nZone = 0;         // "button_zone": 2 for the domain's own buttons
	int32_t m_nApplicableKind = 0; // "applicable_to": 3 for the removal of a spurious value
};

// One row as the panel draws it, filled by GetPropertyInfo.
struct ZolPropertyRowInfo
{
	int32_t m_nType = ZOL_PROPERTY_TYPE_NONE;
	int32_t m_nHint = 0; // 1 numeric range, 2 fixed choices, 3 suggestions
	CUtlVector<bool> m_ArrayDimensions; // per array level on the way down: true when fixed in size
	union
	{
		int32_t m_nRangeMin;
		float m_flRangeMin;
	};
	union
	{
		int32_t m_nRangeMax;
		float m_flRangeMax;
	};
	uint32_t m_nRangeStep = 0;
	bool m_bRangeFlag = false;
	bool m_bRangeIsFloat = false; // which members of the range unions hold the values
	bool m_bImportant = false;
	int32_t m_nSortPriority = 0;
	CUtlString m_Name;
	CUtlString m_FriendlyName;
	uint8_t m_RowColor[ 4 ] = {}; // red, green, blue, alpha; all zero: the panel's own
	CUtlString m_EditorSpec;
	bool m_bHidden = false;
	bool m_bDiffersFromDefault = false;
	bool m_bAutoExpand = false;
	bool m_bExtraFlag = false;
	bool m_bReadOnly = false;
	bool m_bSuppressed = false;
	CUtlString m_Group;
	CUtlVector<ZolPropertyRowButton> m_Buttons;
	CUtlString m_HelpContext;
	CUtlString m_HelpId;
	bool m_bRowFlag = false;
	bool m_bRequired = false;
	bool m_bRequiredAndEmpty = false;
	int32_t m_nFlattenMode = 0; // 1 merged into the parent row by metadata, 2 a table that flattens itself
	int32_t m_nFlattenStretchFactor = 0;
	bool m_bFlattenLabel = false;

	ZolPropertyRowInfo() : m_nRangeMin( 0 ), m_nRangeMax( 0 ) {}
	// The button with that command, or null.
	const ZolPropertyRowButton *FindButton( const char *pCommand ) const;
};

// The editor a row asks for, "Name( argument )": the attribute's editor name, replaced by
// a non-empty editor text, else derived from the edit hint.
struct ZolEditorSpec
{
	static CUtlString ForAttribute( const IBaseToolAttr *pAttr );
};
