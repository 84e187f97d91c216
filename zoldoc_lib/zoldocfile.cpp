// CZolDoc: reading and writing the definition file.

#include <algorithm>
#include <utility>
#include <vector>

#include "core/containers/utlbuffer.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/kv3transfer/kv3transfercontext.h"
#include "core/text/strtools.h"
#include "tools/toolutils2/fgd/fgdkv3defaults.h"
#include "tools/toolutils2/fgd/gamedata.h"
#include "zoldoc_lib/particlegamedata.h"
#include "zoldoc_lib/zolconfigurationreader.h"
#include "zoldoc_lib/zolevents.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolfileio.h"
#include "zoldoc_lib/zolfunctioncatalogue.h"
#include "zoldoc_lib/zolnode.h"
#include "zoldoc_lib/zolrootnode.h"

namespace
{
constexpr const char *ROOT_CLASS_NAME = "CParticleSystemDefinition";
constexpr const char *CONFIGURATIONS_KEY = "m_controlPointConfigurations";

bool IsRootStructureKey( const char *pName )
{
	if ( !V_stricmp_fast( pName, CONFIGURATIONS_KEY ) )
		return true;
	for ( int nType = 0; nType < PARTICLE_FUNCTION_LIST_COUNT; ++nType )
	{
		if ( !V_stricmp_fast( pName, GetParticleFunctionListKey( nType ) ) )
			return true;
	}
	return false;
}

// A copy of the table with "_class" (when it has one) as its first member.
void CopyWithClassFirst( KeyValues3 *pOut, const KeyValues3 &table, const char *pClassName )
{
	pOut->SetToEmptyTable();
	if ( pClassName && *pClassName )
		pOut->SetMemberString( "_class", pClassName );
	for ( int i = 0; i < table.GetMemberCount(); ++i )
	{
		if ( V_strcmp( table.GetMemberName( i ), "_class" ) )
			pOut->FindOrCreateMember( table.GetMemberNameEx( i ) )->CopyFrom( *table.GetMember( i ) );
	}
}

// Imprints a table with its class while the root's lists and configurations stand aside:
// they become nodes, and an imprint through the list's base class must not touch them.
void ImprintKeepingStructure( KeyValues3 *pTable, const CGameDataClass *pClass, bool bRoot )
{
	CUtlString className( pTable->GetMemberString( "_class", "" ) );
	std::vector<std::pair<CUtlString, KeyValues3>> structure;
	if ( bRoot )
	{
		for ( int i = pTable->GetMemberCount() - 1; i >= 0; --i )
		{
			if ( !IsRootStructureKey( pTable->GetMemberName( i ) ) )
				continue;
			structure.emplace_back( CUtlString( pTable->GetMemberName( i ) ), static_cast<KeyValues3 &&>( *pTable->GetMember( i ) ) );
			pTable->RemoveMember( i );
		}
	}
	ImprintFGDClassOnKV3( pTable, pClass );
	if ( bRoot )
	{
		for ( int i = pTable->GetMemberCount() - 1; i >= 0; --i )
		{
			if ( IsRootStructureKey( pTable->GetMemberName( i ) ) )
				pTable->RemoveMember( i );
		}
		for ( auto it = structure.rbegin(); it != structure.rend(); ++it )
			*pTable->FindOrCreateMember( it->first.Get() ) = static_cast<KeyValues3 &&>( it->second );
	}
	if ( !className.IsEmpty() && !pTable->HasMember( "_class" ) )
		pTable->SetMemberString( "_class", className.Get() );
}

// Every table of the tree whose "_class" the class table knows loses the members its class
// doesn't declare and gains those it lacks, deepest tables first. "_class" stays.
void ScrubToClasses( KeyValues3 *pTree )
{
	const CGameData *pGameData = GetParticleGameData();
	std::vector<std::pair<int, const KeyValues3 *>> tables;
	pTree->WalkWith( [ &tables ]( const KeyValues3 *pValue, int nDepth ) {
		if ( pValue->IsTable() )
			tables.emplace_back( nDepth, pValue );
		return true;
	} );
	std::stable_sort( tables.begin(), tables.end(), []( const auto &a, const auto &b ) { return a.first > b.first; } );
	for ( const auto &entry : tables )
	{
		KeyValues3 *pTable = const_cast<KeyValues3 *>( entry.second );
		const CGameDataClass *pClass = pGameData->FindClass( pTable->GetMemberString( "_class", "" ) );
		if ( !pClass )
			continue;
		const bool bRoot = pTable == pTree;
		for ( int i = pTable->GetMemberCount() - 1; i >= 0; --i )
		{
			const char *pName = pTable->GetMemberName( i );
			if ( !V_strcmp( pName, "_class" ) || pClass->FindVariable( pName ) || ( bRoot && IsRootStructureKey( pName ) ) )
				continue;
			pTable->RemoveMember( i );
		}
		ImprintKeepingStructure( pTable, pClass, bRoot );
	}
}

// Brings every configuration of the file to its complete form; what was read leniently
// is told in pWarnings.
void ReadConfigurations( KeyValues3 *pTree, CUtlString *pWarnings )
{
	KeyValues3 *pConfigurations = pTree->FindMember( CONFIGURATIONS_KEY );
	if ( !pConfigurations )
		return;
	CKV3TransferLoadContext context;
	context.PushMember( CONFIGURATIONS_KEY );
	KeyValues3 complete;
	complete.SetToEmptyArray();
	if ( pConfigurations->IsArray() )
	{
		for ( int i = 0; i < pConfigurations->GetArrayElementCount(); ++i )
		{
			context.PushIndex( uint32_t( i ) );
			ReadControlPointConfiguration( pConfigurations->GetArrayElement( i ), complete.ArrayAddToTail(), &context );
			context.PopPath();
		}
	}
	else if ( !pConfigurations->IsNull() )
	{
		context.ReportError( "Expected an array, not a '%s' (using the default)", pConfigurations->GetTypeAsString() );
	}
	context.PopPath();
	*pConfigurations = static_cast<KeyValues3 &&>( complete );
	pWarnings->Append( context.GetErrorText() );
}

// Functions the version's sanitising leaves out are told, so that a save never drops one
// without a word: a class this build doesn't know, or one outside the file's version.
void WarnOfDroppedFunctions( CZolRootNode *pRoot, int nVersion, bool bKeepUnknownClasses, CUtlString *pWarnings )
{
	for ( int nType = 0; nType < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nType )
	{
		const ParticleFunctionType_t eType = ParticleFunctionType_t( nType );
		for ( int i = 0; i < pRoot->GetNodeCount( eType ); ++i )
		{
			const char *pClass = pRoot->GetNode( eType, i )->GetClassName();
			const char *pReplacement = GetReplacementForVersion( eType, pClass, nVersion );
			if ( ( pReplacement && *pReplacement ) || IsFunctionValidForVersion( eType, pClass, nVersion ) )
				continue;
			if ( bKeepUnknownClasses && FindParticleFunctionClass( eType, pClass ) < 0 )
				continue;
			int nBelongs = -1;
			for ( int nOther = 0; nOther < PARTICLE_FUNCTION_CLASS_LIST_COUNT && nBelongs < 0 && pClass && *pClass; ++nOther )
			{
				if ( nOther != nType && FindParticleFunctionSchemaClass( ParticleFunctionType_t( nOther ), pClass ) )
					nBelongs = nOther;
			}
			if ( !pClass || !*pClass )
				pWarnings->AppendFormat( "%s[%d]: a function without a _class; it is left out, and a save drops it\n", GetParticleFunctionListKey( nType ), i );
			else if ( nBelongs >= 0 )
				pWarnings->AppendFormat( "%s[%d]: '%s' belongs in %s; it is left out, and a save drops it\n", GetParticleFunctionListKey( nType ), i, pClass,
					GetParticleFunctionListKey( nBelongs ) );
			else if ( FindParticleFunctionSchemaClass( eType, pClass ) )
				pWarnings->AppendFormat( "%s[%d]: '%s' does not exist at behaviour version %d; it is left out, and a save drops it\n",
					GetParticleFunctionListKey( nType ), i, pClass, nVersion );
			else
				pWarnings->AppendFormat( "%s[%d]: unknown function class '%s'; it is left out, and a save drops it\n", GetParticleFunctionListKey( nType ), i, pClass );
		}
	}
}

// Members in the order their class declares them, the rest after: a node that keeps some
// members aside writes the same text however it was made.
void OrderLikeClass( KeyValues3 *pTable, const char *pClassName )
{
	const CGameDataClass *pClass = FindParticleGameDataClass( pClassName );
	if ( !pClass || !pTable->IsTable() )
		return;
	KeyValues3 ordered;
	ordered.SetToEmptyTable();
	for ( const CGameDataVariable *pVar : pClass->m_Variables )
	{
		if ( KeyValues3 *pValue = pTable->FindMember( pVar->m_Name.Get() ) )
			*ordered.FindOrCreateMember( pVar->m_Name.Get() ) = static_cast<KeyValues3 &&>( *pValue );
	}
	for ( int i = 0; i < pTable->GetMemberCount(); ++i )
	{
		if ( !ordered.HasMember( pTable->GetMemberName( i ) ) )
			*ordered.FindOrCreateMember( pTable->GetMemberNameEx( i ) ) = static_cast<KeyValues3 &&>( *pTable->GetMember( i ) );
	}
	*pTable = static_cast<KeyValues3 &&>( ordered );
}

void RemoveDefaults( KeyValues3 *pTable, const char *pClassName )
{
	if ( const CGameDataClass *pClass = FindParticleGameDataClass( pClassName ) )
		RemoveKeysAtDefault( pTable, pClass );
}
} // namespace

void CZolDoc::DropRoot()
{
	delete m_pRoot;
	m_pRoot = nullptr;
	m_Selection.RemoveAll();
	m_LoadWarnings.Clear();
}

bool CZolDoc::LoadFromFile( const char *pPath, const char *pPathId, CUtlString *pError )
{
	CUtlBuffer buffer;
	CUtlString reason;
	if ( !ZolReadWholeFile( pPath, pPathId, &buffer, &reason ) )
	{
		DropRoot();
		if ( pError )
			pError->Format( "Failed to read file: %s", reason.Get() );
		return false;
	}
	return LoadFromBuffer( &buffer, pPath, pError );
}

bool CZolDoc::LoadFromBuffer( CUtlBuffer *pBuffer, const char *pSourceName, CUtlString *pError )
{
	DropRoot();
	CUtlString ignoredError;
	if ( !pError )
		pError = &ignoredError;

	KeyValues3 tree;
	if ( !LoadKV3( &tree, pError, pBuffer, KV3_FORMAT_TFXS, pSourceName ) )
		return false;
	const KeyValues3 *pClass = tree.IsTable() ? tree.FindMember( "_class" ) : nullptr;
	if ( !pClass || !pClass->IsString() || V_strcmp( pClass->GetString(), ROOT_CLASS_NAME ) )
	{
		pError->Format( "File does not contain a root object of type '%s'", ROOT_CLASS_NAME );
		return false;
	}

	ScrubToClasses( &tree );
	ReadConfigurations( &tree, &m_LoadWarnings );
	m_pRoot = new CZolRootNode( this );
	m_pRoot->TakeRootFromKV3( &tree );
	// A file stays at its own version until the user upgrades it.
	WarnOfDroppedFunctions( m_pRoot, GetBehaviorVersion(), m_bKeepsUnknownFunctions, &m_LoadWarnings );
	SanitiseForVersion( m_pRoot, GetBehaviorVersion(), m_bKeepsUnknownFunctions );
	m_Selection.AddToTail( ZolElementRef_t::Root() );

	RebuildAttributeLabels();
	SendEvent( ZolEvent_DocumentReplaced_t() );
	return true;
}

bool CZolDoc::BuildSaveTree( KeyValues3 *pOut ) const
{
	if ( !m_pRoot )
		return false;
	const CZolRootNode *pRoot = m_pRoot;
	KeyValues3 definition;
	pRoot->SaveRootToKV3( &definition );

	// The root's own members, less those at their default.
	KeyValues3 baseProperties;
	baseProperties.SetToEmptyTable();
	for ( int i = 0; i < definition.GetMemberCount(); ++i )
	{
		if ( !IsRootStructureKey( definition.GetMemberName( i ) ) )
			baseProperties.FindOrCreateMember( definition.GetMemberNameEx( i ) )->CopyFrom( *definition.GetMember( i ) );
	}
	RemoveDefaults( &baseProperties, ROOT_CLASS_NAME );
	CopyWithClassFirst( pOut, baseProperties, ROOT_CLASS_NAME );

	// Configurations are always written whole.
	if ( const KeyValues3 *pConfigurations = definition.FindMember( CONFIGURATIONS_KEY ) )
		pOut->SetMemberEmptyArray( CONFIGURATIONS_KEY )->CopyFrom( *pConfigurations );

	for ( int nType = 0; nType < PARTICLE_FUNCTION_LIST_COUNT; ++nType )
	{
		const KeyValues3 *pList = definition.FindMember( GetParticleFunctionListKey( nType ) );
		if ( !pList || !pList->IsArray() )
			continue;
		KeyValues3 *pOutList = pOut->SetMemberEmptyArray( GetParticleFunctionListKey( nType ) );
		for ( int i = 0; i < pList->GetArrayElementCount(); ++i )
		{
			KeyValues3 element;
			element.CopyFrom( *pList->GetArrayElement( i ) );
			// Children and variables are written whole; functions keep what differs from
			// their class, and always their class name.
			CUtlString className( element.GetMemberString( "_class", "" ) );
			if ( nType < PARTICLE_FUNCTION_CLASS_LIST_COUNT )
				RemoveDefaults( &element, className.Get() );
			else
				OrderLikeClass( &element, pRoot->GetNode( ParticleFunctionType_t( nType ), i )->GetClassName() );
			CopyWithClassFirst( pOutList->ArrayAddToTail(), element, className.Get() );
		}
	}
	return true;
}

bool CZolDoc::SaveToBuffer( CUtlBuffer *pOut, CUtlString *pError, const SavePostProcess_t &fnPostProcess ) const
{
	KeyValues3 tree;
	if ( !BuildSaveTree( &tree ) )
	{
		if ( pError )
			pError->Set( "The document has no definition to save" );
		return false;
	}
	if ( fnPostProcess )
		fnPostProcess( &tree );
	CUtlString ignoredError;
	return SaveKV3( KV3_ENCODING_TEXT, KV3_FORMAT_TFXS, &tree, pError ? pError : &ignoredError, pOut );
}

bool CZolDoc::SaveToFile( const char *pPath, CUtlString *pError, const SavePostProcess_t &fnPostProcess ) const
{
	CUtlString ignoredError;
	if ( !pError )
		pError = &ignoredError;
	CUtlBuffer buffer;
	CUtlString serialiseError;
	if ( !SaveToBuffer( &buffer, &serialiseError, fnPostProcess ) )
	{
		pError->Format( "Serialization failed: %s (File: \"%s\")\n", serialiseError.Get(), pPath ? pPath : "" );
		return false;
	}
	CUtlString writeError;
	if ( !ZolWriteWholeFile( pPath, buffer, &writeError ) )
	{
		pError->Format( "Could not write file.\n%s", writeError.Get() );
		return false;
	}
	return true;
}
