#include "zoldoc_lib/zoleditabletype.h"

bool CZolEditableType::SetText( const char *pText )
{
	CPulseValueFullType parsed;
	if ( !pText || !parsed.FromString( pText ) )
		return false;
	m_Type = parsed;
	return true;
}

CUtlString CZolEditableType::GetFriendlyName() const
{
	// A resource of a model reads as what it is rather than as its subtype.
	if ( m_Type.GetBaseType() == PVAL_RESOURCE && m_Type.HasSubtype() )
	{
		CUtlString text;
		text.Format( "Resource (%s)", m_Type.GetSubtype().String() );
		return text;
	}
	return m_Type.GetDisplayText();
}

void GetZolNewVariableTypes( CUtlVector<CPulseValueFullType> *pTypes )
{
	pTypes->RemoveAll();
	for ( PulseValueType_t eType : { PVAL_FLOAT, PVAL_VEC3, PVAL_TRANSFORM, PVAL_PARTICLE_EHANDLE } )
		pTypes->AddToTail( CPulseValueFullType( eType ) );
}

void GetZolVariableTypes( CUtlVector<CPulseValueFullType> *pTypes )
{
	GetZolNewVariableTypes( pTypes );
	pTypes->AddToTail( CPulseValueFullType( PVAL_RESOURCE, "tmsh" ) );
}
