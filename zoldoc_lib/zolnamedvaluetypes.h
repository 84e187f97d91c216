#pragma once
// Which variables a request of a type may use, and the domain values a variable of a type
// may be bound to.

#include "core/containers/utlvector.h"
#include "tools/toolutils2/toolattr/toolattrtypes.h"

class CPulseValueFullType;
class CZolDoc;

// Whether a variable of nVariableType (a PulseValueType_t; -1 fits any valid request) may
// serve a request of nRequestedType; a request of no type fits everything.
bool DoesZolVariableTypeFit( int nRequestedType, int nVariableType );

// An entry with an empty value and label, then each declaration of the document's variable
// domain ("m_NamedValueDomain") whose type fits: its internal path as value, its UI path as
// label.
void GetZolDomainValues( const CZolDoc &doc, const CPulseValueFullType &type, CUtlVector<ToolAttrGenericChoice_t> *pChoices );
