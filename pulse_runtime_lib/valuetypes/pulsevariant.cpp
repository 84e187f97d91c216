#include "pulse_runtime_lib/valuetypes/pulsevariant.h"

#include <new>
#include <utility>

#include "pulse_runtime_lib/valuetypes/pulsetypeservice.h"
#include "pulse_runtime_lib/valuetypes/pulsevalue.h"
#include "pulse_runtime_lib/valuetypes/pulsevalueconvert.h"

namespace
{
void *AllocateBlock( const CPulseValueFullType &type )
{
	return ::operator new( PulseValue_GetSize( type ), std::align_val_t( PulseValue_GetAlignment( type ) ) );
}

void FreeBlock( const CPulseValueFullType &type, void *pBlock )
{
	::operator delete( pBlock, std::align_val_t( PulseValue_GetAlignment( type ) ) );
}
} // namespace

CPulseVariant::CPulseVariant( const CPulseValueFullType &type )
	: m_nWord( 0 ), m_Type( type )
{
	if ( PulseValue_GetSize( m_Type ) == 0 )
		return;
	if ( !IsInline() )
		m_pBlock = AllocateBlock( m_Type );
	PulseValue_Construct( m_Type, GetValue() );
}

CPulseVariant::CPulseVariant( const CPulseValueFullType &type, const void *pValue )
	: m_nWord( 0 ), m_Type( type )
{
	if ( PulseValue_GetSize( m_Type ) == 0 )
		return;
	if ( !IsInline() )
		m_pBlock = AllocateBlock( m_Type );
	PulseValue_CopyConstruct( m_Type, GetValue(), pValue );
}

CPulseVariant::CPulseVariant( const CPulseVariant &other )
	: CPulseVariant( other.m_Type, other.GetValue() )
{
}

CPulseVariant &CPulseVariant::operator=( const CPulseVariant &other )
{
	if ( this == &other )
		return *this;
	if ( m_Type == other.m_Type )
	{
		if ( void *pValue = GetValue() )
			PulseValue_Copy( m_Type, pValue, other.GetValue() );
		return *this;
	}
	// Copy before releasing: other may live inside our own value (an array element).
	CPulseVariant copy( other );
	*this = std::move( copy );
	return *this;
}

CPulseVariant::CPulseVariant( CPulseVariant &&other ) noexcept
	: m_nWord( other.m_nWord ), m_Type( std::move( other.m_Type ) )
{
	// Every value is trivially relocatable, so the word moves as bits.
	other.m_nWord = 0;
}

CPulseVariant &CPulseVariant::operator=( CPulseVariant &&other ) noexcept
{
	if ( this == &other )
		return *this;
	uint64_t nWord = other.m_nWord;
	CPulseValueFullType type( std::move( other.m_Type ) );
	other.m_nWord = 0;
	ReleaseValue();
	m_nWord = nWord;
	m_Type = std::move( type );
	return *this;
}

CPulseVariant::~CPulseVariant()
{
	ReleaseValue();
}

bool CPulseVariant::IsInline() const
{
	return PulseValue_GetSize( m_Type ) <= sizeof( m_nWord ) && PulseValue_GetAlignment( m_Type ) <= alignof( uint64_t );
}

void CPulseVariant::ReleaseValue()
{
	if ( PulseValue_GetSize( m_Type ) == 0 )
		return;
	PulseValue_Destruct( m_Type, GetValue() );
	if ( !IsInline() )
		FreeBlock( m_Type, m_pBlock );
	m_nWord = 0;
}

void CPulseVariant::SetType( const CPulseValueFullType &type )
{
	if ( type == m_Type )
		return;
	CPulseVariant fresh( type );
	*this = std::move( fresh );
}

void CPulseVariant::Clear()
{
	ReleaseValue();
	m_Type.Clear();
}

void *CPulseVariant::GetValue()
{
	if ( PulseValue_GetSize( m_Type ) == 0 )
		return nullptr;
	return IsInline() ? static_cast<void *>( &m_nWord ) : m_pBlock;
}

const void *CPulseVariant::GetValue() const
{
	return const_cast<CPulseVariant *>( this )->GetValue();
}

void CPulseVariant::SetValue( const CPulseValueFullType &type, const void *pValue )
{
	if ( type == m_Type )
	{
		if ( void *pStorage = GetValue() )
			PulseValue_Copy( m_Type, pStorage, pValue );
		return;
	}
	CPulseVariant copy( type, pValue );
	*this = std::move( copy );
}

void CPulseVariant::SetBool( bool bValue )
{
	SetType( CPulseValueFullType( PVAL_BOOL ) );
	*static_cast<bool *>( GetValue() ) = bValue;
}

void CPulseVariant::SetInt( int32_t nValue )
{
	SetType( CPulseValueFullType( PVAL_INT ) );
	*static_cast<int32_t *>( GetValue() ) = nValue;
}

void CPulseVariant::SetFloat( float flValue )
{
	SetType( CPulseValueFullType( PVAL_FLOAT ) );
	*static_cast<float *>( GetValue() ) = flValue;
}

void CPulseVariant::SetString( const char *pText )
{
	SetType( CPulseValueFullType( PVAL_STRING ) );
	PulseValue_SetString( GetValue(), pText );
}

const bool *CPulseVariant::GetBool() const
{
	return m_Type.GetBaseType() == PVAL_BOOL ? static_cast<const bool *>( GetValue() ) : nullptr;
}

const int32_t *CPulseVariant::GetInt() const
{
	return m_Type.GetBaseType() == PVAL_INT ? static_cast<const int32_t *>( GetValue() ) : nullptr;
}

const float *CPulseVariant::GetFloat() const
{
	return m_Type.GetBaseType() == PVAL_FLOAT ? static_cast<const float *>( GetValue() ) : nullptr;
}

const char *CPulseVariant::GetString() const
{
	return m_Type.GetBaseType() == PVAL_STRING ? PulseValue_GetString( GetValue() ) : nullptr;
}

bool CPulseVariant::operator==( const CPulseVariant &other ) const
{
	const CPulseValueFullType &otherType = other.GetType();
	if ( m_Type.GetBaseType() == otherType.GetBaseType()
		&& ( m_Type == otherType || CPulseScopeEnumeratingTypeService::Get().IsObjectTypeCompatible( otherType, m_Type ) ) )
	{
		return PulseValue_IsEqual( m_Type, GetValue(), other.GetValue() );
	}
	if ( !PulseValue_CanConvert( otherType, m_Type ) )
		return false;
	CPulseVariant converted( m_Type );
	if ( !PulseValue_Convert( otherType, other.GetValue(), m_Type, converted.GetValue() ) )
		return false;
	return PulseValue_IsEqual( m_Type, GetValue(), converted.GetValue() );
}
