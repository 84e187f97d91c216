#pragma once
// Where a variable's value comes from in one configuration: the file record, with links
// back to the variable that owns it, so that its "Value" attribute knows the variable's
// type. The links are made anew after every load and undo copy.

#include "core/mathlib/qangle.h"
#include "core/mathlib/vector.h"
#include "core/particles/particlesystemdefinitionrecords.h"
#include "tools/toolutils2/toolattr/toolattrhandle.h"

class CToolAttrHost;
class CZolEditableType;
class CZolVariableNode;
class IToolAttr_Table;

class CZolVariableConfiguration : public ParticleNamedValueConfiguration_t
{
public:
	void Link( CZolVariableNode *pNode, const CZolEditableType *pValueType )
	{
		m_pNode = pNode;
		m_pValueType = pValueType;
	}
	CZolVariableNode *GetNode() const { return m_pNode; }
	const CZolEditableType *GetValueType() const { return m_pValueType; }
	// The value in the variable's type; the type's default while none is stored.
	void GetValue( KeyValues3 *pOut ) const;
	// Stores the value converted to the variable's type.
	void SetValue( const KeyValues3 &value );

	// The handle the attributes of this record take; the owning node hears the edits.
	HToolAttrTableInstance GetTableInstance();
	// The record's attributes: those of the file record, with "Value" typed by the
	// variable's type (a float, a vector, a transform, a model name, ...).
	static IToolAttr_Table *GetAttributeTable();

private:
	CZolVariableNode *m_pNode = nullptr;
	const CZolEditableType *m_pValueType = nullptr;
};

// A transform variable's value as its editors see it: a position and angles.
struct ZolTransformValue_t
{
	Vector m_vPosition;
	QAngle m_Angles;
	bool operator==( const ZolTransformValue_t &other ) const { return m_vPosition == other.m_vPosition && m_Angles == other.m_Angles; }
};

// The named lists of a variable configuration's fields ("particle_variable_configuration",
// "particle_variable_attachment", "particle_variable_domain"), answered by the context of
// the variable being edited.
void RegisterZolVariableChoiceProviders( CToolAttrHost *pHost );
