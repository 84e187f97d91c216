#include "tools/toolutils2/fgd/fgdkv3defaults.h"

#include <utility>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "tools/toolutils2/fgd/entitysubclasshost.h"
#include "tools/toolutils2/fgd/fgdvalue.h"
#include "tools/toolutils2/fgd/gamedata.h"
#include "tools/toolutils2/toolattr/toolattrhost.h"

namespace
{
// The class whose tables a variable's value (at nDepth) holds, or null.
const CGameDataClass *StructClassAt( const CGameDataVariable &var, int nDepth )
{
	GameDataType_t eType = var.GetTypeAtDepth( nDepth );
	if ( eType == GDTYPE_STRUCT )
		return var.GetStructClass();
	if ( eType == GDTYPE_KV3 && var.HasMetadata( "ParticleCompileBinaryIdenticalHack_underlying_struct" ) )
		return var.GetStructClass();
	return nullptr;
}

void ImprintValue( KeyValues3 *pValue, const CGameDataVariable &var, int nDepth )
{
	GameDataType_t eType = var.GetTypeAtDepth( nDepth );
	if ( eType == GDTYPE_ARRAY )
	{
		if ( !pValue->IsArray() )
			pValue->SetToEmptyArray();
		for ( int i = 0; i < pValue->GetArrayElementCount(); ++i )
			ImprintValue( pValue->GetArrayElement( i ), var, nDepth + 1 );
		return;
	}
	if ( const CGameDataClass *pClass = StructClassAt( var, nDepth ) )
	{
		// Classes that keep their own KV3 forms (an input written as a bare number) are
		// left as they stand: turning the value into a table would lose it.
		if ( pClass->GetMetaBool( "SkipImprintFGDClassOnKV3" ) )
			return;
		if ( !pValue->IsTable() )
			pValue->SetToEmptyTable();
		if ( eType == GDTYPE_STRUCT && pClass->GetMetaBool( "IsEmbeddedSubClass" ) )
			pValue->SetSubType( KV3_SUBTYPE_TABLE_EMBEDDED_SUBCLASS );
		ImprintFGDClassOnKV3( pValue, pClass );
		return;
	}
	NormalizeFGDValueKind( pValue, eType );
}

bool StructAtDefault( const KeyValues3 &value, const CGameDataClass *pDeclared )
{
	if ( !value.IsTable() )
		return false;
	const CGameDataClass *pClass = ResolveFGDClass( pDeclared, &value );
	int nAtDefault = 0;
	for ( const CGameDataVariable *pMember : pClass->m_Variables )
	{
		const KeyValues3 *pMemberValue = value.FindMember( pMember->m_Name.Get() );
		if ( !pMemberValue )
			continue;
		if ( !TestValueAtDefault( *pMemberValue, *pMember, 0 ) )
			return false;
		++nAtDefault;
	}
	// "_class" of the declared class itself is part of the default form.
	if ( value.HasMember( "_class" ) && !pClass->FindVariable( "_class" ) && pClass == pDeclared )
		++nAtDefault;
	return nAtDefault == value.GetMemberCount();
}

// Equal values, where a number read from text and the same number imprinted or set in code
// count as one whatever their stored width ("1.0" against "1.0f").
bool ValuesEqualAsNumbers( const KeyValues3 &a, const KeyValues3 &b )
{
	auto fnIsNumber = []( const KeyValues3 &value ) {
		return value.GetType() == KV3_TYPE_INT || value.GetType() == KV3_TYPE_UINT || value.GetType() == KV3_TYPE_DOUBLE;
	};
	if ( fnIsNumber( a ) && fnIsNumber( b ) )
	{
		if ( a.GetType() == KV3_TYPE_DOUBLE || b.GetType() == KV3_TYPE_DOUBLE )
			return a.GetDouble() == b.GetDouble();
		if ( a.GetType() == b.GetType() )
			return a.GetType() == KV3_TYPE_INT ? a.GetInt64() == b.GetInt64() : a.GetUInt64() == b.GetUInt64();
		const KeyValues3 &signedValue = a.GetType() == KV3_TYPE_INT ? a : b;
		const KeyValues3 &unsignedValue = a.GetType() == KV3_TYPE_INT ? b : a;
		return signedValue.GetInt64() >= 0 && uint64_t( signedValue.GetInt64() ) == unsignedValue.GetUInt64();
	}
	if ( a.IsArray() && b.IsArray() )
	{
		if ( a.GetArrayElementCount() != b.GetArrayElementCount() )
			return false;
		for ( int i = 0; i < a.GetArrayElementCount(); ++i )
		{
			if ( !ValuesEqualAsNumbers( *a.GetArrayElement( i ), *b.GetArrayElement( i ) ) )
				return false;
		}
		return true;
	}
	return a.IsEqual( b );
}

struct WorkItem_t
{
	KeyValues3 *m_pTable;
	const CGameDataClass *m_pClass;
};

void CollectChildTables( KeyValues3 *pValue, const CGameDataVariable &var, int nDepth, std::vector<WorkItem_t> *pWork )
{
	GameDataType_t eType = var.GetTypeAtDepth( nDepth );
	if ( eType == GDTYPE_ARRAY )
	{
		for ( int i = 0; i < pValue->GetArrayElementCount(); ++i )
			CollectChildTables( pValue->GetArrayElement( i ), var, nDepth + 1, pWork );
		return;
	}
	const CGameDataClass *pClass = StructClassAt( var, nDepth );
	if ( !pClass || !pValue->IsTable() )
		return;
	pWork->push_back( { pValue, ResolveFGDClass( pClass, pValue ) } );
}
} // namespace

const CGameDataClass *ResolveFGDClass( const CGameDataClass *pClass, const KeyValues3 *pTable )
{
	if ( !pClass || !pTable || !pClass->m_pGameData )
		return pClass;
	const CGameDataVariable *pSelector = pClass->GetSelectorVariable();
	const char *pszKey = pSelector ? pSelector->m_Name.Get() : pClass->IsPolymorphic() ? "_class" : nullptr;
	if ( !pszKey )
		return pClass;
	const KeyValues3 *pName = pTable->FindMember( pszKey );
	if ( !pName || !pName->IsString() )
		return pClass;
	const char *pszClassName = pName->GetString();
	// A linked selector stores an entity subclass name, which only the host can map to a class.
	if ( pSelector && pSelector->GetMetadataBool( "LinkedEntityClass" ) )
		pszClassName = LookupEntitySubclassClassName( pszClassName );
	const CGameDataClass *pReal = pszClassName ? pClass->m_pGameData->FindClass( pszClassName ) : nullptr;
	return pReal ? pReal : pClass;
}

bool TestValueAtDefault( const KeyValues3 &value, const CGameDataVariable &var, int nDepth )
{
	GameDataType_t eType = var.GetTypeAtDepth( nDepth );
	switch ( eType )
	{
	case GDTYPE_STRUCT:
		if ( const CGameDataClass *pClass = var.GetStructClass() )
			return StructAtDefault( value, pClass );
		break;
	case GDTYPE_ARRAY: return value.IsArray() && value.GetArrayElementCount() == 0;
	case GDTYPE_COLOR255:
	case GDTYPE_COLOR255ALPHA: return ReadFGDColor( value ) == ReadFGDColor( nDepth == 0 ? var.m_DefaultKV3 : KeyValues3() );
	case GDTYPE_KV3:
		if ( const CGameDataClass *pClass = StructClassAt( var, nDepth ) )
		{
			const char *pszTest = pClass->GetMetaString( "KV3DefaultTestFnName" );
			const ToolAttrDefaultTestFn_t &fnTest = ToolAttrHost()->FindDefaultTest( pszTest );
			if ( *pszTest && fnTest )
				return fnTest( &value, &var.m_DefaultKV3 );
		}
		break;
	default: break;
	}

	// Below the top of the type the default is the type's empty value.
	KeyValues3 elementDefault;
	const KeyValues3 *pDefault = &var.m_DefaultKV3;
	if ( nDepth > 0 )
	{
		WriteFGDValue( &elementDefault, eType, "" );
		pDefault = &elementDefault;
	}
	if ( !var.m_bUsingLegacyDefault || nDepth > 0 )
		return ValuesEqualAsNumbers( value, *pDefault );

	CUtlString defaultText;
	var.GetLegacyDefaultText( &defaultText );
	if ( value.IsString() )
		return defaultText == value.GetString();

	// Compare both in the form a text edit would store.
	KeyValues3 normalDefault, normalValue;
	WriteFGDValue( &normalDefault, eType, defaultText );
	CUtlString valueText;
	FormatFGDValue( value, eType, &valueText );
	WriteFGDValue( &normalValue, eType, valueText );
	return normalDefault.IsEqual( normalValue );
}

void ImprintFGDClassOnKV3( KeyValues3 *pTable, const CGameDataClass *pClass )
{
	if ( !pTable || !pClass || pClass->GetMetaBool( "SkipImprintFGDClassOnKV3" ) )
		return;
	if ( !pTable->IsTable() )
		pTable->SetToEmptyTable();
	const CGameDataClass *pReal = ResolveFGDClass( pClass, pTable );
	bool bPolymorphic = pClass->IsPolymorphic() || pReal->IsPolymorphic();
	const CGameDataVariable *pSelector = pClass->GetSelectorVariable();
	// The host's class behind a linked selector doesn't derive from the declared class, so
	// the table keeps the declared members too, the picked subclass name among them.
	bool bLinked = pSelector && pSelector->GetMetadataBool( "LinkedEntityClass" );
	if ( pSelector || bPolymorphic )
	{
		if ( !pTable->HasMember( "_class" ) && !pReal->FindVariable( "_class" ) )
			pTable->SetMemberString( "_class", pReal->GetName() );
	}
	if ( !bPolymorphic && !bLinked && !pReal->FindVariable( "_class" ) )
		pTable->RemoveMember( "_class" );

	auto imprintVariables = [ pTable ]( const CGameDataClass *pFrom ) {
		for ( const CGameDataVariable *pVar : pFrom->m_Variables )
		{
			bool bCreated = false;
			KeyValues3 *pValue = pTable->FindOrCreateMember( pVar->m_Name.Get(), &bCreated );
			if ( bCreated )
				pValue->CopyFrom( pVar->m_DefaultKV3 );
			ImprintValue( pValue, *pVar, 0 );
		}
	};
	if ( bLinked && pReal != pClass )
		imprintVariables( pClass );
	imprintVariables( pReal );
}

void StripUnknownKeys( KeyValues3 *pTree, const CGameData *pGameData )
{
	if ( !pTree || !pGameData )
		return;
	std::vector<std::pair<int, const KeyValues3 *>> tables;
	pTree->WalkWith( [ &tables ]( const KeyValues3 *pValue, int nDepth ) {
		if ( pValue->IsTable() )
			tables.emplace_back( nDepth, pValue );
		return true;
	} );
	// Deepest first, so a parent's imprint sees its children already cleaned.
	std::stable_sort( tables.begin(), tables.end(), []( const auto &a, const auto &b ) { return a.first > b.first; } );
	for ( const auto &entry : tables )
	{
		KeyValues3 *pTable = const_cast<KeyValues3 *>( entry.second );
		const CGameDataClass *pClass = pGameData->FindClass( pTable->GetMemberString( "_class", "" ) );
		if ( !pClass )
			continue;
		for ( int i = pTable->GetMemberCount() - 1; i >= 0; --i )
		{
			const char *pszName = pTable->GetMemberName( i );
			if ( CUtlString( pszName ) == "_class" || pClass->FindVariable( pszName ) )
				continue;
			pTable->RemoveMember( i );
		}
		ImprintFGDClassOnKV3( pTable, pClass );
	}
}

void RemoveKeysAtDefault( KeyValues3 *pTable, const CGameDataClass *pClass )
{
	if ( !pTable || !pClass || pClass->GetMetaBool( "SkipRemoveKeysInKV3AtFGDDefault" ) )
		return;
	std::vector<WorkItem_t> work;
	work.push_back( { pTable, ResolveFGDClass( pClass, pTable ) } );
	// The list grows while it is walked: children always land after their parent.
	for ( size_t i = 0; i < work.size(); ++i )
	{
		WorkItem_t item = work[ i ];
		if ( item.m_pClass->GetMetaBool( "SkipRemoveKeysInKV3AtFGDDefault" ) )
			continue;
		for ( const CGameDataVariable *pVar : item.m_pClass->m_Variables )
		{
			if ( KeyValues3 *pValue = item.m_pTable->FindMember( pVar->m_Name.Get() ) )
				CollectChildTables( pValue, *pVar, 0, &work );
		}
	}
	for ( size_t i = work.size(); i-- > 0; )
	{
		WorkItem_t item = work[ i ];
		if ( item.m_pClass->GetMetaBool( "SkipRemoveKeysInKV3AtFGDDefault" ) )
			continue;
		for ( const CGameDataVariable *pVar : item.m_pClass->m_Variables )
		{
			const KeyValues3 *pValue = item.m_pTable->FindMember( pVar->m_Name.Get() );
			if ( pValue && TestValueAtDefault( *pValue, *pVar, 0 ) )
				item.m_pTable->RemoveMember( pVar->m_Name.Get() );
		}
	}
}
