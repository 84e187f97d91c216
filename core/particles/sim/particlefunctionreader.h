#pragma once
// Reads one function's fields from its KV3 table during compile, and notes what the
// function reads and writes as it goes: attributes named by fields, control points and
// the inputs it holds.

#include "core/mathlib/vector.h"
#include "core/particles/sim/particleinputs.h"
#include "core/particles/sim/particlesimfunction.h"
#include "core/text/utlstring.h"

class KeyValues3;

class CParticleFunctionReader
{
public:
	CParticleFunctionReader( const KeyValues3 *pTable, CParticleSimFunction *pFunction, ParticleInputCompileContext_t *pContext, const char *pWhere );

	float Float( const char *pName, float flDefault ) const;
	int Int( const char *pName, int nDefault ) const;
	bool Bool( const char *pName, bool bDefault ) const;
	Vector Vec( const char *pName, const Vector &vDefault ) const;
	// A colour field as 0 .. 1 per channel; the fourth channel goes to pAlpha if given.
	Vector Color( const char *pName, const Vector &vDefault, float *pAlpha = nullptr ) const;
	const char *String( const char *pName, const char *pDefault = "" ) const;
	// An enumeration field: a member's name from pNames (values from 0 on) or a number.
	int Enum( const char *pName, const char *const *pNames, int nNames, int nDefault ) const;

	// The "m_model" of the first element of an array of model entries.
	void FirstModelOfList( const char *pName, CUtlString *pModel ) const;

	// Attribute fields; out-of-range numbers fail the compile.
	int OutputAttribute( const char *pName, int nDefault );
	int InputAttribute( const char *pName, int nDefault );

	void FloatInput( const char *pName, CSimFloatInput *pInput, bool bPerParticle );
	void VecInput( const char *pName, CSimVecInput *pInput, bool bPerParticle );
	void TransformInput( const char *pName, CSimTransformInput *pInput );
	void ModelInput( const char *pName, CSimModelInput *pInput );

	void Writes( int nAttribute );
	void Reads( int nAttribute );
	void ReadsInitial( int nAttribute );
	void ReadsControlPoint( int nControlPoint, int nUsageKind );
	void WritesControlPoint( int nControlPoint, int nUsageKind, int nComponent = -1 );

	bool HasFailed() const { return m_bFailed; }
	const CUtlString &GetError() const { return m_Error; }
	void Fail( const char *pFormat, ... ) __attribute__( ( format( printf, 2, 3 ) ) );

private:
	const KeyValues3 *Find( const char *pName ) const;
	// The uses an input added from nFirstUse on name the input's field and class.
	void NoteUsageSource( int nFirstUse, const char *pField, ParticleUsageSource_t eSource );

	const KeyValues3 *m_pTable;
	CParticleSimFunction *m_pFunction;
	ParticleInputCompileContext_t *m_pContext;
	CUtlString m_Where;
	CUtlString m_Error;
	bool m_bFailed = false;

public:
	// Attributes read through inputs and fields; the compile adds them to the function.
	uint64_t m_nReadMask = 0;
	uint64_t m_nReadInitialMask = 0;
};
