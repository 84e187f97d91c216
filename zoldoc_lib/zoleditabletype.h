#pragma once
// A variable's value type as its editors see it: a Pulse full type with a text form, a
// friendly name and the list of types an artist may give a particle variable.

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"

class CZolEditableType
{
public:
	CZolEditableType() = default;
	explicit CZolEditableType( const CPulseValueFullType &type ) : m_Type( type ) {}

	const CPulseValueFullType &Get() const { return m_Type; }
	void Set( const CPulseValueFullType &type ) { m_Type = type; }
	bool IsValid() const { return m_Type.IsValid(); }

	// "PVAL_FLOAT", "PVAL_RESOURCE:tmsh".
	CUtlString GetText() const { return m_Type.ToString(); }
	// False, leaving the type alone, for text that names no type.
	bool SetText( const char *pText );
	// What a type picker shows: "Float", "Vector", ...
	CUtlString GetFriendlyName() const;

	bool operator==( const CZolEditableType &other ) const { return m_Type == other.m_Type; }

private:
	CPulseValueFullType m_Type;
};

// The types a new variable may take: float, vector, transform and particle entity handle.
void GetZolNewVariableTypes( CUtlVector<CPulseValueFullType> *pTypes );
// The types a variable may be changed to: those, and a model (PVAL_RESOURCE:tmsh).
void GetZolVariableTypes( CUtlVector<CPulseValueFullType> *pTypes );
