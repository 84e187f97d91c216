#pragma once
// A function's reference to a variable of its particle system of any type: the variable's
// name and the type it had when it was chosen. With no name, the type is invalid.

#include "core/schema/schemadeclare.h"
#include "core/text/utlstring.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltypetransfer.h"

class CParticleVariableRef
{
	SCHEMA_CLASS( CParticleVariableRef, { "MPropertyCustomEditor", "ParticleVariableRef()" } )

	// In files the plain name.
	SCHEMA_FIELD( CUtlString, m_variableName, {} )
	SCHEMA_FIELD( CPulseValueFullType, m_variableType, {} )

	bool IsEmpty() const { return m_variableName.IsEmpty(); }
};
