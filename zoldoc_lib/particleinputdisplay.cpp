#include "zoldoc_lib/particleinputdisplay.h"

#include "core/kv3/keyvalues3.h"
#include "core/text/bufferstring.h"
#include "core/text/utlstring.h"

// Until the inputs can load themselves, an input shows its kind: the type name of a
// table, the number of a literal.
bool GetParticleInputDisplayString( const KeyValues3 *pInput, const char *, CBufferString *pOut, CUtlString *pError )
{
	pOut->Clear();
	if ( !pInput || pInput->IsNull() )
		return true;
	if ( pInput->IsNumber() )
	{
		pOut->Format( "%g", pInput->GetDouble() );
		return true;
	}
	if ( pInput->IsTable() )
	{
		pOut->Set( pInput->GetMemberString( "m_nType" ) );
		return true;
	}
	if ( pError )
		pError->Format( "Class data is a '%s', not a table\n", pInput->GetTypeAsString() );
	return false;
}
