#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"

#include <cstring>
#include <utility>

#include "core/kv3/kv3membername.h"
#include "core/text/utlstring.h"

CPulseValueFullType::CPulseValueFullType( PulseValueType_t eBaseType )
{
	SetBaseType( eBaseType );
}

CPulseValueFullType::CPulseValueFullType( PulseValueType_t eBaseType, const char *pSubtype )
{
	SetBaseType( eBaseType );
	SetSubtype( pSubtype );
}

CPulseValueFullType CPulseValueFullType::MakeArray( const CPulseValueFullType &elementType )
{
	CPulseValueFullType type( PVAL_ARRAY );
	type.SetElementType( elementType );
	return type;
}

CPulseValueFullType::CPulseValueFullType( const CPulseValueFullType &other )
	: m_eBaseType( other.m_eBaseType ), m_Subtype( other.m_Subtype )
{
	if ( other.m_pElementType )
		m_pElementType = new CPulseValueFullType( *other.m_pElementType );
}

CPulseValueFullType &CPulseValueFullType::operator=( const CPulseValueFullType &other )
{
	if ( this != &other )
	{
		// Read everything first: other may be our own element, freed below.
		CPulseValueFullType *pElement = other.m_pElementType ? new CPulseValueFullType( *other.m_pElementType ) : nullptr;
		PulseValueType_t eBaseType = other.m_eBaseType;
		CGlobalSymbol subtype = other.m_Subtype;
		delete m_pElementType;
		m_pElementType = pElement;
		m_eBaseType = eBaseType;
		m_Subtype = subtype;
	}
	return *this;
}

CPulseValueFullType::CPulseValueFullType( CPulseValueFullType &&other ) noexcept
	: m_eBaseType( other.m_eBaseType ), m_pElementType( other.m_pElementType ), m_Subtype( other.m_Subtype )
{
	other.m_eBaseType = PVAL_VOID;
	other.m_pElementType = nullptr;
	other.m_Subtype = CGlobalSymbol();
}

CPulseValueFullType &CPulseValueFullType::operator=( CPulseValueFullType &&other ) noexcept
{
	if ( this != &other )
	{
		CPulseValueFullType *pOldElement = m_pElementType;
		m_eBaseType = std::exchange( other.m_eBaseType, PVAL_VOID );
		m_pElementType = std::exchange( other.m_pElementType, nullptr );
		m_Subtype = std::exchange( other.m_Subtype, CGlobalSymbol() );
		delete pOldElement;
	}
	return *this;
}

CPulseValueFullType::~CPulseValueFullType()
{
	delete m_pElementType;
}

void CPulseValueFullType::SetBaseType( PulseValueType_t eBaseType )
{
	if ( eBaseType == m_eBaseType )
		return;
	m_eBaseType = eBaseType;
	m_Subtype = CGlobalSymbol();
	if ( eBaseType == PVAL_ARRAY )
	{
		if ( !m_pElementType )
			m_pElementType = new CPulseValueFullType;
	}
	else
	{
		delete m_pElementType;
		m_pElementType = nullptr;
	}
}

void CPulseValueFullType::SetElementType( const CPulseValueFullType &elementType )
{
	if ( m_pElementType && m_pElementType != &elementType )
		*m_pElementType = elementType;
}

void CPulseValueFullType::SetSubtype( CGlobalSymbol subtype )
{
	// A subtype on a type that doesn't use one would only make equal types compare unequal.
	m_Subtype = PulseValueType_UsesSubtype( m_eBaseType ) ? subtype : CGlobalSymbol();
}

void CPulseValueFullType::SetSubtype( const char *pSubtype )
{
	SetSubtype( CGlobalSymbol( pSubtype ) );
}

void CPulseValueFullType::Clear()
{
	SetBaseType( PVAL_VOID );
}

void CPulseValueFullType::ToString( CUtlString *pOut ) const
{
	const char *pName = PulseValueType_GetName( m_eBaseType );
	if ( !pName )
	{
		pOut->Format( "PVAL_UNKNOWN_%d", int( m_eBaseType ) );
		return;
	}
	pOut->Set( pName );
	if ( m_pElementType )
	{
		CUtlString element;
		m_pElementType->ToString( &element );
		pOut->Append( ':' );
		pOut->Append( element.Get() );
	}
	else if ( HasSubtype() && PulseValueType_UsesSubtype( m_eBaseType ) )
	{
		pOut->Append( ':' );
		pOut->Append( m_Subtype.String() );
	}
}

CUtlString CPulseValueFullType::ToString() const
{
	CUtlString text;
	ToString( &text );
	return text;
}

bool CPulseValueFullType::FromString( const char *pText )
{
	Clear();
	if ( !pText || !*pText )
		return false;

	const char *pColon = strchr( pText, ':' );
	CUtlString head( pText, pColon ? size_t( pColon - pText ) : strlen( pText ) );
	const char *pRest = pColon ? pColon + 1 : nullptr;

	PulseValueType_t eBase;
	if ( !PulseValueType_FromName( head.Get(), &eBase ) )
		return false;
	// The two aliases name a bare type; whatever follows them is not part of it.
	if ( strcmp( head.Get(), "PVAL_INVALID" ) == 0 || strcmp( head.Get(), "PVAL_ANY" ) == 0 )
	{
		SetBaseType( eBase );
		return true;
	}

	SetBaseType( eBase );
	if ( eBase == PVAL_ARRAY )
	{
		if ( !m_pElementType->FromString( pRest ) )
		{
			Clear();
			return false;
		}
	}
	else if ( PulseValueType_UsesSubtype( eBase ) && pRest )
	{
		SetSubtype( pRest );
	}
	return true;
}

CPulseValueFullType CPulseValueFullType::Parse( const char *pText, bool *pOk )
{
	CPulseValueFullType type;
	bool bOk = type.FromString( pText );
	if ( pOk )
		*pOk = bOk;
	return type;
}

CUtlString CPulseValueFullType::GetDisplayText() const
{
	if ( m_pElementType )
	{
		CUtlString text( "Array:" );
		text += m_pElementType->GetDisplayText();
		return text;
	}
	if ( HasSubtype() && PulseValueType_UsesSubtype( m_eBaseType ) )
		return CUtlString( m_Subtype.String() );
	if ( const char *pFriendly = PulseValueType_GetFriendlyName( m_eBaseType ) )
		return CUtlString( pFriendly );
	return ToString();
}

bool CPulseValueFullType::operator==( const CPulseValueFullType &other ) const
{
	if ( m_eBaseType != other.m_eBaseType || m_Subtype != other.m_Subtype )
		return false;
	if ( !m_pElementType || !other.m_pElementType )
		return m_pElementType == other.m_pElementType;
	return *m_pElementType == *other.m_pElementType;
}

uint32_t CPulseValueFullType::GetHash() const
{
	constexpr uint32_t nSeed = 0x31415926;
	const char *pSubtype = m_Subtype.String();
	size_t nSubtypeLength = strlen( pSubtype );
	CUtlString key;
	key.Storage().resize( sizeof( int32_t ) + nSubtypeLength );
	int32_t nBase = m_eBaseType;
	memcpy( key.Storage().data(), &nBase, sizeof( nBase ) );
	memcpy( key.Storage().data() + sizeof( nBase ), pSubtype, nSubtypeLength );
	uint32_t nHash = MurmurHash2( key.Storage().data(), key.Length(), nSeed );
	if ( m_pElementType )
		nHash ^= m_pElementType->GetHash();
	return nHash;
}
