#include "zoldoc_lib/zolfunctioncatalogue.h"

#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/particles/iparticlesystemmgr.h"
#include "core/particles/particlefunctionclasses.h"
#include "core/schema/schemaclassinfo.h"
#include "core/schema/schemasystemtypescope.h"
#include "core/text/strtools.h"
#include "tools/toolutils2/fgd/fgdkv3defaults.h"
#include "tools/toolutils2/fgd/gamedata.h"
#include "tools/toolutils2/fgd/gamedataclass.h"
#include "tools/toolutils2/fgd/gamedatavariable.h"
#include "zoldoc_lib/particlegamedata.h"
#include "zoldoc_lib/zoldefinitiontree.h"
#include "zoldoc_lib/zolfunctionnode.h"
#include "zoldoc_lib/zolrootnode.h"

namespace
{
constexpr const char *ROOT_CLASS_NAME = "CParticleSystemDefinition";
constexpr const char *CONFIGURATIONS_KEY = "m_controlPointConfigurations";

// A stored limit; -1 (and anything outside 32 bits) stands for none.
bool ReadVersionLimit( const SchemaMetadataEntry_t *pEntry, int *pLimit )
{
	if ( !pEntry || pEntry->m_eType != SCHEMA_METADATA_INT || pEntry->m_nValue < 0 || pEntry->m_nValue > 0x7fffffff )
		return false;
	*pLimit = int( pEntry->m_nValue );
	return true;
}

template <typename HasMetadata> bool AreVersionLimitsMet( const HasMetadata &owner, int nVersion )
{
	int nLimit = 0;
	if ( ReadVersionLimit( owner.FindMetadata( "MParticleMinVersion" ), &nLimit ) && nVersion < nLimit )
		return false;
	if ( ReadVersionLimit( owner.FindMetadata( "MParticleMaxVersion" ), &nLimit ) )
		return nVersion <= nLimit;
	return true;
}

const CSchemaClassInfo *FindParticleSchemaClass( const char *pName )
{
	return pName && *pName ? ParticleTypeScope()->FindDeclaredClass( pName ) : nullptr;
}

// "label (m_Key)" for a member of a class description, or the key alone.
CUtlString DescribeMember( const char *pClassName, const char *pKey )
{
	const CGameDataClass *pClass = FindParticleGameDataClass( pClassName );
	const CGameDataVariable *pVar = pClass ? pClass->FindVariable( pKey ) : nullptr;
	CUtlString text;
	if ( pVar && !pVar->m_LongName.IsEmpty() && V_strcmp( pVar->m_LongName.Get(), pKey ) )
		text.Format( "%s (%s)", pVar->m_LongName.Get(), pKey );
	else
		text.Set( pKey );
	return text;
}

// Removes from the table, last to first, the members the schema class lacks at the version.
// Each removal is told under pWhere, first member first.
void RemoveFieldsOutsideVersion( KeyValues3 *pTable, const char *pSchemaClass, const char *pClassName, int nVersion, const char *pWhere,
	CUtlVector<CUtlString> *pChanges )
{
	if ( !pTable->IsTable() )
		return;
	CUtlVector<CUtlString> removed;
	for ( int i = pTable->GetMemberCount() - 1; i >= 0; --i )
	{
		if ( IsFieldValidForVersion( pSchemaClass, pTable->GetMemberName( i ), nVersion ) )
			continue;
		if ( pChanges )
			removed.AddToHead( DescribeMember( pClassName, pTable->GetMemberName( i ) ) );
		pTable->RemoveMember( i );
	}
	for ( const CUtlString &member : removed )
	{
		CUtlString line;
		line.Format( "%s: drops %s", pWhere, member.Get() );
		pChanges->AddToTail( line );
	}
}


// The field stored under that key: by its own name, or by the name it is transferred under.
const CSchemaClassField *FindFieldByKey( const CSchemaClassInfo *pClass, const char *pKey )
{
	if ( const CSchemaClassField *pField = pClass->FindField( pKey ) )
		return pField;
	std::vector<const CSchemaClassField *> fields;
	pClass->GetAllFields( fields );
	for ( const CSchemaClassField *pField : fields )
	{
		const SchemaMetadataEntry_t *pName = pField->FindMetadata( "MKV3TransferName" );
		if ( pName && pName->m_eType == SCHEMA_METADATA_STRING && !V_strcmp( pName->m_pszValue, pKey ) )
			return pField;
	}
	return nullptr;
}

const char *SchemaClassOfNode( const CBaseZolNode *pNode )
{
	const IParticleSystemMgr *pMgr = GetParticleSystemMgr();
	const ParticleFunctionType_t eType = pNode->GetFunctionType();
	int nIndex = FindParticleFunctionClass( eType, pNode->GetClassName() );
	return nIndex >= 0 ? pMgr->GetFunctionSchemaClass( eType, nIndex ) : pNode->GetClassName();
}
} // namespace

int FindParticleFunctionClass( ParticleFunctionType_t eType, const char *pClass )
{
	const IParticleSystemMgr *pMgr = GetParticleSystemMgr();
	if ( !pMgr || !pClass )
		return -1;
	for ( int i = 0; i < pMgr->GetFunctionCount( eType ); ++i )
	{
		if ( !V_strcmp( pMgr->GetFunctionClassName( eType, i ), pClass ) )
			return i;
	}
	return -1;
}

const CSchemaClassInfo *FindParticleFunctionSchemaClass( ParticleFunctionType_t eType, const char *pClass )
{
	int nIndex = FindParticleFunctionClass( eType, pClass );
	return nIndex >= 0 ? FindParticleSchemaClass( GetParticleSystemMgr()->GetFunctionSchemaClass( eType, nIndex ) ) : nullptr;
}

const char *GetParticleFunctionFriendlyName( const char *pClass )
{
	if ( !pClass )
		return "";
	if ( const IParticleSystemMgr *pMgr = GetParticleSystemMgr() )
	{
		for ( int nType = 0; nType < PARTICLE_FUNCTION_LIST_COUNT; ++nType )
		{
			int nIndex = FindParticleFunctionClass( ParticleFunctionType_t( nType ), pClass );
			if ( nIndex >= 0 )
				return pMgr->GetFunctionFriendlyName( ParticleFunctionType_t( nType ), nIndex );
		}
	}
	return pClass;
}

CUtlString DescribeParticleFunction( int nType, int nIndex, const char *pClass )
{
	CUtlString text;
	text.Format( "%s #%d %s", GetDefinitionSectionTitle( nType ), nIndex + 1, GetParticleFunctionFriendlyName( pClass ) );
	return text;
}

bool IsFunctionValidForVersion( ParticleFunctionType_t eType, const char *pClass, int nVersion )
{
	if ( FindParticleFunctionClass( eType, pClass ) < 0 )
		return false;
	const CSchemaClassInfo *pSchemaClass = FindParticleFunctionSchemaClass( eType, pClass );
	return !pSchemaClass || AreVersionLimitsMet( *pSchemaClass, nVersion );
}

bool IsFieldValidForVersion( const char *pSchemaClass, const char *pField, int nVersion )
{
	if ( !pField || !V_strcmp( pField, "_class" ) )
		return true;
	const CSchemaClassInfo *pClass = FindParticleSchemaClass( pSchemaClass );
	if ( !pClass )
		return true;
	const CSchemaClassField *pSchemaField = FindFieldByKey( pClass, pField );
	return pSchemaField && AreVersionLimitsMet( *pSchemaField, nVersion );
}

const char *GetReplacementForVersion( ParticleFunctionType_t eType, const char *pClass, int nVersion )
{
	const CSchemaClassInfo *pCurrent = FindParticleFunctionSchemaClass( eType, pClass );
	int nMax = 0;
	if ( !pCurrent || !ReadVersionLimit( pCurrent->FindMetadata( "MParticleMaxVersion" ), &nMax ) )
		return nullptr;
	const char *pFound = nullptr;
	// Each round moves one step along the chain; a chain that loops ends once it has
	// visited more classes than the list holds.
	const IParticleSystemMgr *pMgr = GetParticleSystemMgr();
	for ( int nStep = 0; nStep <= pMgr->GetFunctionCount( eType ); ++nStep )
	{
		if ( nVersion <= nMax )
			return pFound;
		const SchemaMetadataEntry_t *pReplacement = pCurrent->FindMetadata( "MParticleReplacementOp" );
		if ( !pReplacement || pReplacement->m_eType != SCHEMA_METADATA_STRING || !*pReplacement->m_pszValue )
			return "";
		int nIndex = FindParticleFunctionClass( eType, pReplacement->m_pszValue );
		if ( nIndex < 0 )
			return nullptr;
		pFound = pMgr->GetFunctionClassName( eType, nIndex );
		pCurrent = FindParticleSchemaClass( pMgr->GetFunctionSchemaClass( eType, nIndex ) );
		if ( !pCurrent || !ReadVersionLimit( pCurrent->FindMetadata( "MParticleMaxVersion" ), &nMax ) )
			return pFound;
	}
	return nullptr;
}

void ImprintParticleClass( KeyValues3 *pTable, const char *pClassName )
{
	if ( !pTable->IsTable() )
		pTable->SetToEmptyTable();
	if ( const CGameDataClass *pClass = FindParticleGameDataClass( pClassName ) )
	{
		// The imprint drops "_class" from classes that aren't polymorphic, but a node's
		// table says what it is: functions and the root need theirs in the file.
		CUtlString className( pTable->GetMemberString( "_class", "" ) );
		ImprintFGDClassOnKV3( pTable, pClass );
		if ( !className.IsEmpty() && !pTable->HasMember( "_class" ) )
			pTable->SetMemberString( "_class", className.Get() );
		if ( !V_strcmp( pClassName, ROOT_CLASS_NAME ) )
		{
			pTable->RemoveMember( CONFIGURATIONS_KEY );
			for ( int nType = 0; nType < PARTICLE_FUNCTION_LIST_COUNT; ++nType )
				pTable->RemoveMember( GetParticleFunctionListKey( nType ) );
		}
		return;
	}

	// Without a class table the two records the document fills itself still get their keys.
	if ( !V_strcmp( pClassName, "ParticleChildrenInfo_t" ) )
	{
		pTable->FindOrCreateMember( "m_ChildRef" )->SetString( pTable->GetMemberString( "m_ChildRef", "" ) );
		if ( !pTable->HasMember( "m_flDelay" ) )
			pTable->SetMemberFloat( "m_flDelay", 0.0f );
		if ( !pTable->HasMember( "m_bEndCap" ) )
			pTable->SetMemberBool( "m_bEndCap", false );
		if ( !pTable->HasMember( "m_bDisableChild" ) )
			pTable->SetMemberBool( "m_bDisableChild", false );
	}
	else if ( !V_strcmp( pClassName, "ParticleNamedValueSource_t" ) )
	{
		if ( !pTable->HasMember( "m_Name" ) )
			pTable->SetMemberString( "m_Name", "" );
		if ( !pTable->HasMember( "m_IsPublic" ) )
			pTable->SetMemberBool( "m_IsPublic", false );
	}
}

void ApplyDefaultArrayRule( CZolRootNode *pRoot, ParticleFunctionType_t eType, CZolFunctionNode *pNewNode )
{
	bool bAppended = false;
	for ( int i = pRoot->GetNodeCount( eType ) - 1; i >= 0; --i )
	{
		CBaseZolNode *pNode = pRoot->GetNode( eType, i );
		const CSchemaClassInfo *pSchemaClass = FindParticleSchemaClass( SchemaClassOfNode( pNode ) );
		if ( !pSchemaClass )
			continue;
		KeyValues3 *pTable = pNode->GetWriteKV3();
		for ( int nMember = pTable->GetMemberCount() - 1; nMember >= 0; --nMember )
		{
			const char *pName = pTable->GetMemberName( nMember );
			if ( !V_strcmp( pName, "_class" ) )
				continue;
			const CSchemaClassField *pField = FindFieldByKey( pSchemaClass, pName );
			KeyValues3 *pValue = pTable->GetMember( nMember );
			if ( !pField || !pField->HasMetadata( "MParticleRequireDefaultArrayEntry" ) || !pValue->IsArray() || pValue->GetArrayElementCount() )
				continue;
			pValue->ArrayAddToTail();
			bAppended = true;
		}
	}
	// A second imprint gives the appended entries the defaults of their element type.
	if ( bAppended && pNewNode )
		ImprintParticleClass( pNewNode->GetWriteKV3(), pNewNode->GetClassName() );
}

void SanitiseFunctionFields( CZolFunctionNode *pNode, int nVersion )
{
	if ( pNode )
		RemoveFieldsOutsideVersion( pNode->GetWriteKV3(), SchemaClassOfNode( pNode ), pNode->GetClassName(), nVersion, "", nullptr );
}

void SanitiseForVersion( CZolRootNode *pRoot, int nVersion, bool bKeepUnknownClasses, CUtlVector<CUtlString> *pChanges )
{
	RemoveFieldsOutsideVersion( pRoot->GetWriteKV3(), ROOT_CLASS_NAME, ROOT_CLASS_NAME, nVersion, "Base Properties", pChanges );
	for ( int nType = 0; nType < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nType )
	{
		ParticleFunctionType_t eType = ParticleFunctionType_t( nType );
		// The list is walked from its end, so that removals leave the places ahead as they
		// were; its lines are told from its start.
		CUtlVector<CUtlString> listChanges;
		for ( int i = pRoot->GetNodeCount( eType ) - 1; i >= 0; --i )
		{
			CBaseZolNode *pNode = pRoot->GetNode( eType, i );
			CUtlString where = pChanges ? DescribeParticleFunction( eType, i, pNode->GetClassName() ) : CUtlString();
			CUtlVector<CUtlString> nodeChanges;
			const char *pReplacement = GetReplacementForVersion( eType, pNode->GetClassName(), nVersion );
			if ( pReplacement && *pReplacement )
			{
				if ( pChanges )
				{
					CUtlString line;
					line.Format( "%s: becomes %s (%s)", where.Get(), GetParticleFunctionFriendlyName( pReplacement ), pReplacement );
					nodeChanges.AddToTail( line );
				}
				pNode->GetWriteKV3()->SetMemberString( "_class", pReplacement );
			}
			else if ( bKeepUnknownClasses && FindParticleFunctionClass( eType, pNode->GetClassName() ) < 0 )
			{
				continue;
			}
			else if ( !IsFunctionValidForVersion( eType, pNode->GetClassName(), nVersion ) )
			{
				if ( pChanges )
				{
					CUtlString line;
					line.Format( "%s: removed, behavior version %d has no such function", where.Get(), nVersion );
					listChanges.AddToHead( line );
				}
				pRoot->RemoveFunctionNode( eType, pNode );
				continue;
			}
			RemoveFieldsOutsideVersion( pNode->GetWriteKV3(), SchemaClassOfNode( pNode ), pNode->GetClassName(), nVersion, where.Get(),
				pChanges ? &nodeChanges : nullptr );
			for ( int nLine = nodeChanges.Count() - 1; nLine >= 0; --nLine )
				listChanges.AddToHead( nodeChanges[ nLine ] );
		}
		if ( pChanges )
			pChanges->AddMultipleToTail( listChanges.Count(), listChanges.Base() );
	}
}

void BringRootToVersion( CZolRootNode *pRoot, int nVersion, bool bKeepUnknownClasses, CUtlVector<CUtlString> *pChanges )
{
	SanitiseForVersion( pRoot, nVersion, bKeepUnknownClasses, pChanges );
	pRoot->GetWriteKV3()->SetMemberInt( "m_nBehaviorVersion", nVersion );
}

void UpdateRootVersion( CZolRootNode *pRoot, bool bKeepUnknownClasses, CUtlVector<CUtlString> *pChanges )
{
	const IParticleSystemMgr *pMgr = GetParticleSystemMgr();
	int nCurrent = pMgr ? pMgr->GetCurrentBehaviorVersion() : 0;
	const KeyValues3 *pTable = pRoot->GetReadKV3();
	if ( pTable->HasMember( "m_nBehaviorVersion" ) && pTable->GetMemberInt( "m_nBehaviorVersion" ) == nCurrent )
		return;
	BringRootToVersion( pRoot, nCurrent, bKeepUnknownClasses, pChanges );
}
