#include "zoldoc_lib/zolelementfields.h"

#include <cctype>
#include <cinttypes>

#include "core/kv3/keyvalues3.h"
#include "core/text/bufferstring.h"
#include "core/text/friendlyname.h"
#include "core/text/strtools.h"
#include "particleslib/particleinputclasses.h"
#include "tools/toolutils2/fgd/gamedata.h"

namespace
{
// The input class of a field that holds a particle input, or null.
const CGameDataClass *GetInputClass( const CGameDataVariable *pVar )
{
	if ( !pVar || pVar->GetType() != GDTYPE_KV3 )
		return nullptr;
	const CGameDataClass *pStruct = pVar->GetStructClass();
	return pStruct && *pStruct->GetMetaString( "KV3DefaultTestFnName" ) ? pStruct : nullptr;
}

bool IsNumber( const KeyValues3 &value )
{
	return value.GetType() == KV3_TYPE_INT || value.GetType() == KV3_TYPE_UINT || value.GetType() == KV3_TYPE_DOUBLE;
}

// Equal as stored, where 1 and 1.0 are one number, a resource path and a plain string of
// the same text are one string, and table members may stand in any order.
bool AreStoredValuesEqual( const KeyValues3 &a, const KeyValues3 &b )
{
	if ( IsNumber( a ) && IsNumber( b ) )
	{
		if ( a.GetType() == KV3_TYPE_DOUBLE || b.GetType() == KV3_TYPE_DOUBLE )
			return a.GetDouble() == b.GetDouble();
		if ( a.GetType() == b.GetType() )
			return a.GetUInt64() == b.GetUInt64();
		return a.GetInt64() >= 0 && b.GetInt64() >= 0 && a.GetUInt64() == b.GetUInt64();
	}
	if ( a.GetType() != b.GetType() )
		return false;
	switch ( a.GetType() )
	{
	case KV3_TYPE_STRING: return !V_strcmp( a.GetString(), b.GetString() );
	case KV3_TYPE_ARRAY:
	{
		if ( a.GetArrayElementCount() != b.GetArrayElementCount() )
			return false;
		for ( int i = 0; i < a.GetArrayElementCount(); ++i )
		{
			if ( !AreStoredValuesEqual( *a.GetArrayElement( i ), *b.GetArrayElement( i ) ) )
				return false;
		}
		return true;
	}
	case KV3_TYPE_TABLE:
	{
		if ( a.GetMemberCount() != b.GetMemberCount() )
			return false;
		for ( int i = 0; i < a.GetMemberCount(); ++i )
		{
			const KeyValues3 *pOther = b.FindMember( a.GetMemberNameEx( i ) );
			if ( !pOther || !AreStoredValuesEqual( *a.GetMember( i ), *pOther ) )
				return false;
		}
		return true;
	}
	default: return a.IsEqual( b );
	}
}

void FormatNumber( const KeyValues3 &value, CUtlString *pOut )
{
	if ( value.GetType() == KV3_TYPE_DOUBLE )
		pOut->AppendFormat( "%g", value.GetDouble() );
	else if ( value.GetType() == KV3_TYPE_UINT )
		pOut->AppendFormat( "%" PRIu64, value.GetUInt64() );
	else
		pOut->AppendFormat( "%" PRId64, value.GetInt64() );
}

void AppendMemberValue( const CGameDataClass *pClass, const char *pMember, const KeyValues3 &value, bool bNested, const char *pDomain, CUtlString *pOut );

// A value as it stands: numbers plain, strings as they read (quoted inside a container),
// arrays in brackets, tables as "{ Label: value, ... }" with the labels of pClass, the class
// of the table or of the array's elements.
void AppendPlainValue( const CGameDataClass *pClass, const KeyValues3 &value, bool bNested, const char *pDomain, CUtlString *pOut )
{
	switch ( value.GetType() )
	{
	case KV3_TYPE_NULL: pOut->Append( "none" ); break;
	case KV3_TYPE_BOOL: pOut->Append( value.GetBool() ? "on" : "off" ); break;
	case KV3_TYPE_INT:
	case KV3_TYPE_UINT:
	case KV3_TYPE_DOUBLE: FormatNumber( value, pOut ); break;
	case KV3_TYPE_STRING:
		if ( bNested || !*value.GetString() )
			pOut->AppendFormat( "\"%s\"", value.GetString() );
		else
			pOut->Append( value.GetString() );
		break;
	case KV3_TYPE_ARRAY:
		pOut->Append( "[" );
		for ( int i = 0; i < value.GetArrayElementCount(); ++i )
		{
			pOut->Append( i ? ", " : "" );
			AppendPlainValue( pClass, *value.GetArrayElement( i ), true, pDomain, pOut );
		}
		pOut->Append( "]" );
		break;
	case KV3_TYPE_TABLE:
		pOut->Append( "{" );
		for ( int i = 0; i < value.GetMemberCount(); ++i )
		{
			CUtlString label;
			GetElementFieldLabel( pClass, value.GetMemberName( i ), &label );
			pOut->AppendFormat( "%s %s: ", i ? "," : "", label.Get() );
			AppendMemberValue( pClass, value.GetMemberName( i ), *value.GetMember( i ), true, pDomain, pOut );
		}
		pOut->Append( value.GetMemberCount() ? " }" : "}" );
		break;
	default: pOut->AppendFormat( "(%s)", value.GetTypeAsString() ); break;
	}
}

// A member's value by its field: an input by its display text, a choice by its name.
void AppendMemberValue( const CGameDataClass *pClass, const char *pMember, const KeyValues3 &value, bool bNested, const char *pDomain, CUtlString *pOut )
{
	const CGameDataVariable *pVar = FindElementField( pClass, pMember );
	if ( const CGameDataClass *pInputClass = GetInputClass( pVar ) )
	{
		CBufferString text;
		CUtlString error;
		if ( GetParticleInputDisplayString( pInputClass->GetName(), &value, pDomain, &text, &error ) )
		{
			pOut->Append( text.Get() );
			return;
		}
		// Transform and model inputs have no display text of their own: their members show.
		AppendPlainValue( pInputClass, value, bNested, pDomain, pOut );
		return;
	}
	if ( value.IsString() && pVar && pVar->m_pItemSet )
	{
		const GameDataItem_t *pItem = pVar->m_pItemSet->FindItem( value.GetString() );
		if ( pItem && !pItem->m_FriendlyName.IsEmpty() )
		{
			pOut->Append( pItem->m_FriendlyName );
			return;
		}
	}
	AppendPlainValue( pVar ? pVar->GetStructClass() : nullptr, value, bNested, pDomain, pOut );
}
} // namespace

const CGameDataVariable *FindElementField( const CGameDataClass *pClass, const char *pMember )
{
	return pClass ? pClass->FindVariable( pMember ) : nullptr;
}

void GetElementFieldLabel( const CGameDataClass *pClass, const char *pMember, CUtlString *pOut )
{
	const CGameDataVariable *pVar = FindElementField( pClass, pMember );
	if ( !pVar || pVar->m_LongName.IsEmpty() )
	{
		V_TryAndMakeFriendlyNameFromCppName( pMember, pOut );
		return;
	}
	// Friendly names are written in lower case; a label starts each word in capitals.
	pOut->Set( pVar->m_LongName );
	std::string &text = pOut->Storage();
	for ( size_t i = 0; i < text.size(); ++i )
	{
		if ( i == 0 || text[ i - 1 ] == ' ' )
			text[ i ] = char( toupper( static_cast<unsigned char>( text[ i ] ) ) );
	}
}

const KeyValues3 *GetElementFieldValue( const CGameDataClass *pClass, const KeyValues3 *pTable, const char *pMember )
{
	if ( const KeyValues3 *pValue = pTable && pTable->IsTable() ? pTable->FindMember( pMember ) : nullptr )
		return pValue;
	const CGameDataVariable *pVar = FindElementField( pClass, pMember );
	return pVar ? &pVar->m_DefaultKV3 : nullptr;
}

bool AreElementFieldValuesEqual( const CGameDataClass *pClass, const char *pMember, const KeyValues3 *pA, const KeyValues3 *pB )
{
	const CGameDataVariable *pVar = FindElementField( pClass, pMember );
	KeyValues3 null;
	const KeyValues3 &a = pA ? *pA : pVar ? pVar->m_DefaultKV3 : null;
	const KeyValues3 &b = pB ? *pB : pVar ? pVar->m_DefaultKV3 : null;
	if ( AreStoredValuesEqual( a, b ) )
		return true;
	const CGameDataClass *pInputClass = GetInputClass( pVar );
	KeyValues3 savedA, savedB;
	return pInputClass && SaveParticleInputCanonically( pInputClass->GetName(), &a, &savedA ) &&
		   SaveParticleInputCanonically( pInputClass->GetName(), &b, &savedB ) && AreStoredValuesEqual( savedA, savedB );
}

void NormaliseElementTable( const CGameDataClass *pClass, const KeyValues3 &table, KeyValues3 *pOut )
{
	pOut->CopyFrom( table );
	if ( !pClass || !pOut->IsTable() )
		return;
	for ( const CGameDataVariable *pVar : pClass->m_Variables )
	{
		bool bCreated = false;
		KeyValues3 *pValue = pOut->FindOrCreateMember( pVar->m_Name.Get(), &bCreated );
		if ( bCreated )
			pValue->CopyFrom( pVar->m_DefaultKV3 );
		KeyValues3 saved;
		if ( const CGameDataClass *pInputClass = GetInputClass( pVar ) )
		{
			if ( SaveParticleInputCanonically( pInputClass->GetName(), pValue, &saved ) )
				*pValue = static_cast<KeyValues3 &&>( saved );
		}
	}
}

void FormatElementFieldValue( const CGameDataClass *pClass, const char *pMember, const KeyValues3 *pValue, const char *pDomain, CUtlString *pOut )
{
	pOut->Clear();
	const CGameDataVariable *pVar = FindElementField( pClass, pMember );
	KeyValues3 null;
	AppendMemberValue( pClass, pMember, pValue ? *pValue : pVar ? pVar->m_DefaultKV3 : null, false, pDomain, pOut );
}

void FormatElementFieldItem( const CGameDataClass *pClass, const char *pMember, const KeyValues3 &item, const char *pDomain, CUtlString *pOut )
{
	pOut->Clear();
	const CGameDataVariable *pVar = FindElementField( pClass, pMember );
	AppendPlainValue( pVar ? pVar->GetStructClass() : nullptr, item, false, pDomain, pOut );
}

bool IsElementRecordField( const CGameDataClass *pClass, const char *pMember, const KeyValues3 *pA, const KeyValues3 *pB,
						   const CGameDataClass **ppRecordClass )
{
	*ppRecordClass = nullptr;
	const CGameDataVariable *pVar = FindElementField( pClass, pMember );
	if ( !pVar )
	{
		// Without a description only two tables are taken apart.
		return pA && pB && pA->IsTable() && pB->IsTable();
	}
	if ( pVar->GetType() != GDTYPE_STRUCT )
		return false;
	*ppRecordClass = pVar->GetStructClass();
	return true;
}

const char *GetElementRecordArrayKey( const char *pMember )
{
	// A configuration's drivers go by control point, a preview's body groups by name.
	static const char *const s_Keys[][ 2 ] = { { "m_drivers", "m_iControlPoint" }, { "m_vecBodyGroups", "m_bodyGroupName" } };
	for ( const auto &key : s_Keys )
	{
		if ( !V_strcmp( pMember, key[ 0 ] ) )
			return key[ 1 ];
	}
	return nullptr;
}

int FindElementRecordByKey( const KeyValues3 *pArray, const char *pKey, const KeyValues3 &record )
{
	const KeyValues3 *pKeyValue = record.FindMember( pKey );
	for ( int i = 0; pKeyValue && pArray && i < pArray->GetArrayElementCount(); ++i )
	{
		const KeyValues3 *pOther = pArray->GetArrayElement( i )->FindMember( pKey );
		if ( pOther && AreStoredValuesEqual( *pKeyValue, *pOther ) )
			return i;
	}
	return -1;
}

bool IsElementRecordArrayField( const CGameDataClass *pClass, const char *pMember, std::initializer_list<const KeyValues3 *> values,
								ZolRecordArrayField_t *pOut )
{
	*pOut = ZolRecordArrayField_t();
	const CGameDataVariable *pVar = FindElementField( pClass, pMember );
	if ( pVar && ( pVar->GetType() != GDTYPE_ARRAY || pVar->GetTypeAtDepth( 1 ) != GDTYPE_STRUCT ) )
		return false;
	const char *pKey = GetElementRecordArrayKey( pMember );
	int nCount = -1;
	for ( const KeyValues3 *pValue : values )
	{
		if ( pValue && pValue->IsNull() && pKey )
			continue; // no records at all
		if ( !pValue || !pValue->IsArray() || ( !pKey && nCount >= 0 && pValue->GetArrayElementCount() != nCount ) )
			return false;
		nCount = pValue->GetArrayElementCount();
		for ( int i = 0; i < nCount; ++i )
		{
			// Keyed records must each have their key, once.
			const KeyValues3 *pRecord = pValue->GetArrayElement( i );
			if ( !pRecord->IsTable() || ( pKey && ( !pRecord->HasMember( pKey ) || FindElementRecordByKey( pValue, pKey, *pRecord ) != i ) ) )
				return false;
		}
	}
	pOut->m_pElementClass = pVar ? pVar->GetStructClass() : nullptr;
	pOut->m_pKey = pKey;
	return true;
}

void GetElementRecordLabel( const ZolRecordArrayField_t &field, const char *pArrayLabel, const KeyValues3 &record, int nIndex, CUtlString *pOut )
{
	if ( !field.m_pKey )
	{
		pOut->Format( "%s #%d", pArrayLabel, nIndex + 1 );
		return;
	}
	CUtlString keyLabel, keyText;
	GetElementFieldLabel( field.m_pElementClass, field.m_pKey, &keyLabel );
	FormatElementFieldValue( field.m_pElementClass, field.m_pKey, record.FindMember( field.m_pKey ), "", &keyText );
	pOut->Format( "%s (%s %s)", pArrayLabel, keyLabel.Get(), keyText.Get() );
}

bool AreElementRecordsEqual( const CGameDataClass *pClass, const KeyValues3 *pA, const KeyValues3 *pB )
{
	if ( !pA || !pB )
		return pA == pB;
	int nEqual = 0, nTotal = 0;
	CountEqualElementFields( pClass, *pA, *pB, &nEqual, &nTotal );
	return nEqual == nTotal;
}

bool IsElementInputShownWhole( const CGameDataClass *pClass, const char *pMember )
{
	const CGameDataClass *pInputClass = GetInputClass( FindElementField( pClass, pMember ) );
	KeyValues3 empty;
	CBufferString text;
	CUtlString error;
	return pInputClass && GetParticleInputDisplayString( pInputClass->GetName(), &empty, "", &text, &error );
}

void CollectElementMembers( std::initializer_list<const KeyValues3 *> tables, std::vector<CUtlString> *pNames )
{
	pNames->clear();
	for ( const KeyValues3 *pTable : tables )
	{
		if ( !pTable || !pTable->IsTable() )
			continue;
		for ( int i = 0; i < pTable->GetMemberCount(); ++i )
		{
			const char *pName = pTable->GetMemberName( i );
			if ( !V_strcmp( pName, "_class" ) )
				continue;
			bool bKnown = false;
			for ( const CUtlString &name : *pNames )
				bKnown = bKnown || name == pName;
			if ( !bKnown )
				pNames->emplace_back( pName );
		}
	}
}

void CountEqualElementFields( const CGameDataClass *pClass, const KeyValues3 &a, const KeyValues3 &b, int *pEqual, int *pTotal )
{
	std::vector<CUtlString> members;
	CollectElementMembers( { &a, &b }, &members );
	*pEqual = 0;
	*pTotal = int( members.size() );
	for ( const CUtlString &member : members )
	{
		if ( AreElementFieldValuesEqual( pClass, member.Get(), a.FindMember( member.Get() ), b.FindMember( member.Get() ) ) )
			++*pEqual;
	}
}
