#include "pulsedoc_lib/nodes/pulsedocvalue.h"

CPulseValueFullType CPulseDoc_BaseValue::GetResultType() const
{
	std::vector<CBasePulsePort *> ports;
	GetPorts( &ports );
	for ( CBasePulsePort *pPort : ports )
	{
		if ( pPort->AsOutparam() )
			return pPort->GetType();
	}
	return CPulseValueFullType();
}
