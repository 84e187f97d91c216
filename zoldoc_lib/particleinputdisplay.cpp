#include "zoldoc_lib/particleinputdisplay.h"

#include "core/kv3/keyvalues3.h"
#include "core/particles/particlefunctionclasses.h"
#include "core/schema/schemaclassinfo.h"
#include "core/schema/schemasystemtypescope.h"
#include "core/text/bufferstring.h"
#include "core/text/utlstring.h"
#include "particleslib/particleinputclasses.h"

bool GetParticleInputDisplayString( const char *pszFunctionClass, const char *pszField, const KeyValues3 *pInput, const char *pDomain,
									CBufferString *pOut, CUtlString *pError )
{
	pOut->Clear();
	if ( !pInput || pInput->IsNull() )
		return true;
	const CSchemaClassInfo *pClass = ParticleTypeScope()->FindDeclaredClass( pszFunctionClass );
	const CSchemaClassField *pField = pClass ? pClass->FindField( pszField ) : nullptr;
	const char *pszInputClass = pField ? pField->GetNamedClass() : nullptr;
	if ( pszInputClass )
		return GetParticleInputDisplayString( pszInputClass, pInput, pDomain, pOut, pError );

	// A field of no declared input class shows its raw value.
	if ( pInput->IsNumber() )
		pOut->Format( "%g", pInput->GetDouble() );
	else if ( pInput->IsTable() )
		pOut->Set( pInput->GetMemberString( "m_nType" ) );
	return true;
}
