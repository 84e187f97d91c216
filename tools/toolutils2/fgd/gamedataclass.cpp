#include "tools/toolutils2/fgd/gamedataclass.h"

#include "core/text/strtools.h"
#include "tools/toolutils2/fgd/gamedatavariable.h"

CGameDataVariable *CGameDataClass::FindVariable( const char *pszName ) const
{
	int nIndex = FindVariableIndex( pszName );
	return nIndex >= 0 ? m_Variables[ nIndex ] : nullptr;
}

int CGameDataClass::FindVariableIndex( const char *pszName ) const
{
	for ( int i = 0; i < m_Variables.Count(); ++i )
	{
		if ( m_Variables[ i ]->m_Name == pszName )
			return i;
	}
	return -1;
}

const CGameDataClass *CGameDataClass::FindDeclaringClass( const CGameDataVariable *pVar ) const
{
	for ( const CGameDataClass *pBase : m_Bases )
	{
		if ( const CGameDataClass *pFound = pBase->FindDeclaringClass( pVar ) )
			return pFound;
	}
	return m_Variables.HasElement( const_cast<CGameDataVariable *>( pVar ) ) ? this : nullptr;
}

CGameDataVariable *CGameDataClass::GetSelectorVariable() const
{
	for ( int i = m_Variables.Count() - 1; i >= 0; --i )
	{
		if ( m_Variables[ i ]->GetType() == GDTYPE_POLYMORPHIC_CLASS )
			return m_Variables[ i ];
	}
	return nullptr;
}

bool CGameDataClass::HasTag( const char *pszTag ) const
{
	for ( const CUtlString &tag : m_Tags )
	{
		if ( tag.IsEqual_CaseInsensitive( pszTag ) )
			return true;
	}
	return false;
}

void CGameDataClass::AddTag( const char *pszTag )
{
	if ( !HasTag( pszTag ) )
		m_Tags.AddToTail( CUtlString( pszTag ) );
}

void CGameDataClass::AddBase( CGameDataClass *pBase )
{
	m_Bases.AddToTail( pBase );
	// Inherited variables go before the class's own, in the base's order.
	int nInsertAt = 0;
	for ( CGameDataVariable *pVar : pBase->m_Variables )
	{
		int nExisting = FindVariableIndex( pVar->m_Name );
		if ( nExisting >= 0 )
			continue;
		m_Variables.InsertBefore( nInsertAt++, pVar );
	}
	for ( const CClassInput &input : pBase->m_Inputs )
		m_Inputs.AddToTail( input );
	for ( const CClassOutput &output : pBase->m_Outputs )
		m_Outputs.AddToTail( output );
	for ( const CUtlString &tag : pBase->m_Tags )
		AddTag( tag );
	// A class derived from a polymorphic one is polymorphic too; its own keys stand.
	for ( int i = 0; i < pBase->m_MetaData.GetMemberCount(); ++i )
	{
		bool bCreated = false;
		KeyValues3 *pValue = m_MetaData.FindOrCreateMember( pBase->m_MetaData.GetMemberName( i ), &bCreated );
		if ( bCreated )
			pValue->CopyFrom( *pBase->m_MetaData.GetMember( i ) );
	}
}

bool CGameDataClass::AddVariable( CGameDataVariable *pVar, CUtlString *pError )
{
	int nExisting = FindVariableIndex( pVar->m_Name );
	if ( nExisting < 0 )
	{
		m_Variables.AddToTail( pVar );
		return true;
	}
	CGameDataVariable *pOld = m_Variables[ nExisting ];
	if ( pOld->GetType() != pVar->GetType() )
	{
		if ( pError )
			pError->Format( "%s: Variable '%s' is multiply defined with different types.", m_Name.Get(), pVar->m_Name.Get() );
		return false;
	}
	m_Variables[ nExisting ] = pVar;
	return true;
}

void CGameDataClass::MergeFrom( const CGameDataClass &other )
{
	for ( CGameDataVariable *pVar : other.m_Variables )
	{
		int nExisting = FindVariableIndex( pVar->m_Name );
		if ( nExisting >= 0 )
			m_Variables[ nExisting ] = pVar;
		else
			m_Variables.AddToTail( pVar );
	}
	for ( const CClassInput &input : other.m_Inputs )
		m_Inputs.AddToTail( input );
	for ( const CClassOutput &output : other.m_Outputs )
		m_Outputs.AddToTail( output );
	for ( const GameDataHelper_t &helper : other.m_Helpers )
		m_Helpers.AddToTail( helper );
	for ( const CUtlString &tag : other.m_Tags )
		AddTag( tag );
	for ( int i = 0; i < other.m_MetaData.GetMemberCount(); ++i )
		m_MetaData.FindOrCreateMember( other.m_MetaData.GetMemberName( i ) )->CopyFrom( *other.m_MetaData.GetMember( i ) );
	if ( !other.m_Description.IsEmpty() )
		m_Description = other.m_Description;
}
