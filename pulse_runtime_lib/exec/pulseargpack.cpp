#include "pulse_runtime_lib/exec/pulseargpack.h"

#include "pulse_runtime_lib/valuetypes/pulsevalue.h"
#include "pulse_runtime_lib/valuetypes/pulsevalueconvert.h"

int PulseArgPack::Find( PulseSymbol_t name ) const
{
	for ( int i = 0; i < m_nCount; ++i )
	{
		if ( m_Slots[ i ].m_Name == name )
			return i;
	}
	return -1;
}

const char *PulseArgPack::GetString( int i ) const
{
	return PulseValue_GetString( m_Slots[ i ].m_pValue );
}

bool PulseArgPack::AddRef( PulseSymbol_t name, const CPulseValueFullType *pType, void *pValue )
{
	if ( IsFull() )
		return false;
	m_Slots[ m_nCount++ ] = { name, pType, pValue, -1 };
	return true;
}

void *PulseArgPack::AddCopy( PulseSymbol_t name, const CPulseValueFullType &type, const void *pValue )
{
	if ( IsFull() )
		return nullptr;
	int nOwned = m_nOwnedCount++;
	CPulseVariant *pVariant = pValue ? new ( Owned( nOwned ) ) CPulseVariant( type, pValue ) : new ( Owned( nOwned ) ) CPulseVariant( type );
	m_Slots[ m_nCount++ ] = { name, &pVariant->GetType(), pVariant->GetValue(), int8_t( nOwned ) };
	return pVariant->GetValue();
}

bool PulseArgPack::AddConverted( PulseSymbol_t name, const CPulseValueFullType &type, const CPulseValueFullType &fromType, const void *pValue )
{
	void *pTarget = AddCopy( name, type, nullptr );
	if ( !pTarget )
		return false;
	// A variant parameter takes the value with its own type.
	if ( type.GetBaseType() == PVAL_VARIANT )
	{
		static_cast<CPulseVariant *>( pTarget )->SetValue( fromType, pValue );
		return true;
	}
	return PulseValue_Convert( fromType, pValue, type, pTarget );
}

void PulseArgPack::Clear()
{
	for ( int i = 0; i < m_nOwnedCount; ++i )
		Owned( i )->~CPulseVariant();
	m_nOwnedCount = 0;
	m_nCount = 0;
}
