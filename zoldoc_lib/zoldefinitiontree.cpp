#include "zoldoc_lib/zoldefinitiontree.h"

#include "core/particles/particlefunctiontype.h"
#include "core/text/bufferstring.h"
#include "core/text/strtools.h"
#include "tools/toolutils2/fgd/gamedata.h"
#include "zoldoc_lib/particlegamedata.h"
#include "zoldoc_lib/zolcontrolpointconfiguration.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolfunctioncatalogue.h"
#include "zoldoc_lib/zolnode.h"
#include "zoldoc_lib/zolrootnode.h"

namespace
{
constexpr const char *ROOT_CLASS_NAME = "CParticleSystemDefinition";
constexpr const char *CONFIGURATIONS_KEY = "m_controlPointConfigurations";
constexpr const char *CONFIGURATION_CLASS_NAME = "ParticleControlPointConfiguration_t";

constexpr const char *s_SectionTitles[] = { "Pre-Emission Operators", "Emitters", "Initializers", "Operators", "Forces",
	"Constraints", "Renderers", "Children", "Variables", "Configurations", "Base Properties" };

const char *SectionClassName( int nSection )
{
	switch ( nSection )
	{
	case PARTICLE_FUNCTION_CHILDREN: return "ParticleChildrenInfo_t";
	case PARTICLE_FUNCTION_NAMED_VALUE_LOCALS: return "ParticleNamedValueSource_t";
	case ZOL_SECTION_CONFIGURATIONS: return CONFIGURATION_CLASS_NAME;
	default: return nullptr;
	}
}

// What the function list calls a function: its friendly name, or for the classes that set
// one attribute, the attribute with the class after it.
void GetFunctionName( const CBaseZolNode &node, CUtlString *pOut )
{
	CBufferString name, value, hint;
	node.GetDisplayStrings( &name, &value, &hint );
	const char *pFriendly = GetParticleFunctionFriendlyName( node.GetClassName() );
	if ( !*name.Get() || !V_strcmp( name.Get(), pFriendly ) )
		pOut->Set( pFriendly );
	else
		pOut->Format( "%s (%s)", name.Get(), pFriendly );
}

void SetKey( ZolDefinitionElement_t *pElement, const char *pKeyMember )
{
	pElement->m_Key.Set( pElement->m_Table.GetMemberString( pKeyMember, "" ) );
	pElement->m_Key.Replace( '\\', '/' );
	pElement->m_Key.ToLower();
}
} // namespace

void BuildDefinitionTree( const CZolDoc &doc, int nFileVersion, ZolDefinitionTree_t *pTree )
{
	*pTree = ZolDefinitionTree_t();
	pTree->m_nFileVersion = nFileVersion;
	const CZolRootNode *pRoot = doc.GetRoot();
	if ( !pRoot )
		return;
	pTree->m_Root.CopyFrom( *pRoot->GetReadKV3() );
	if ( pTree->m_Root.GetMemberBool( "m_bEnableNamedValues" ) )
		pTree->m_Domain.Set( pTree->m_Root.GetMemberString( "m_NamedValueDomain", "" ) );

	for ( int nType = 0; nType < PARTICLE_FUNCTION_LIST_COUNT; ++nType )
	{
		const ParticleFunctionType_t eType = ParticleFunctionType_t( nType );
		std::vector<ZolDefinitionElement_t> &elements = pTree->m_Sections[ nType ];
		elements.resize( size_t( pRoot->GetNodeCount( eType ) ) );
		for ( int i = 0; i < pRoot->GetNodeCount( eType ); ++i )
		{
			const CBaseZolNode *pNode = pRoot->GetNode( eType, i );
			ZolDefinitionElement_t &element = elements[ size_t( i ) ];
			pNode->SaveToKV3( &element.m_Table );
			element.m_Class.Set( pNode->GetClassName() );
			if ( nType == PARTICLE_FUNCTION_CHILDREN )
			{
				SetKey( &element, GetDefinitionSectionKeyMember( nType ) );
				element.m_Name.Set( element.m_Table.GetMemberString( "m_ChildRef", "" ) );
			}
			else if ( nType == PARTICLE_FUNCTION_NAMED_VALUE_LOCALS )
			{
				SetKey( &element, GetDefinitionSectionKeyMember( nType ) );
				element.m_Name.Set( element.m_Table.GetMemberString( "m_Name", "" ) );
			}
			else
			{
				GetFunctionName( *pNode, &element.m_Name );
			}
		}
	}

	std::vector<ZolDefinitionElement_t> &configurations = pTree->m_Sections[ ZOL_SECTION_CONFIGURATIONS ];
	configurations.resize( size_t( pRoot->GetConfigurationCount() ) );
	for ( int i = 0; i < pRoot->GetConfigurationCount(); ++i )
	{
		ZolDefinitionElement_t &element = configurations[ size_t( i ) ];
		element.m_Table.CopyFrom( pRoot->GetConfiguration( i )->m_KV3 );
		element.m_Class.Set( CONFIGURATION_CLASS_NAME );
		element.m_Name.Set( pRoot->GetConfiguration( i )->GetName() );
		SetKey( &element, GetDefinitionSectionKeyMember( ZOL_SECTION_CONFIGURATIONS ) );
	}
}

void AssembleDefinitionTree( const ZolDefinitionTree_t &tree, KeyValues3 *pOut )
{
	pOut->CopyFrom( tree.m_Root );
	if ( !pOut->IsTable() )
		pOut->SetToEmptyTable();
	const std::vector<ZolDefinitionElement_t> &configurations = tree.m_Sections[ ZOL_SECTION_CONFIGURATIONS ];
	if ( !configurations.empty() )
	{
		KeyValues3 *pArray = pOut->SetMemberEmptyArray( CONFIGURATIONS_KEY );
		for ( const ZolDefinitionElement_t &element : configurations )
			pArray->ArrayAddToTail()->CopyFrom( element.m_Table );
	}
	for ( int nType = 0; nType < PARTICLE_FUNCTION_LIST_COUNT; ++nType )
	{
		if ( tree.m_Sections[ nType ].empty() )
			continue;
		KeyValues3 *pArray = pOut->SetMemberEmptyArray( GetParticleFunctionListKey( nType ) );
		for ( const ZolDefinitionElement_t &element : tree.m_Sections[ nType ] )
			pArray->ArrayAddToTail()->CopyFrom( element.m_Table );
	}
}

const char *GetDefinitionSectionTitle( int nSection )
{
	return nSection >= 0 && nSection <= ZOL_SECTION_BASE_PROPERTIES ? s_SectionTitles[ nSection ] : "";
}

const char *GetDefinitionSectionDisableKey( int nSection )
{
	if ( nSection >= 0 && nSection < PARTICLE_FUNCTION_CLASS_LIST_COUNT )
		return "m_bDisableOperator";
	return nSection == PARTICLE_FUNCTION_CHILDREN ? "m_bDisableChild" : nullptr;
}

const char *GetDefinitionSectionKeyMember( int nSection )
{
	switch ( nSection )
	{
	case PARTICLE_FUNCTION_CHILDREN: return "m_ChildRef";
	case PARTICLE_FUNCTION_NAMED_VALUE_LOCALS: return "m_Name";
	case ZOL_SECTION_CONFIGURATIONS: return "m_name";
	default: return nullptr;
	}
}

const CGameDataClass *FindDefinitionElementClass( int nSection, const char *pClass )
{
	if ( nSection == ZOL_SECTION_BASE_PROPERTIES )
		return FindParticleGameDataClass( ROOT_CLASS_NAME );
	if ( const char *pRecordClass = SectionClassName( nSection ) )
	{
		if ( const CGameDataClass *pFound = FindParticleGameDataClass( pRecordClass ) )
			return pFound;
		// Configurations may be known only as the element type of the root's array.
		const CGameDataClass *pRootClass = FindParticleGameDataClass( ROOT_CLASS_NAME );
		const CGameDataVariable *pVar = pRootClass ? pRootClass->FindVariable( CONFIGURATIONS_KEY ) : nullptr;
		return pVar && nSection == ZOL_SECTION_CONFIGURATIONS ? pVar->GetStructClass() : nullptr;
	}
	// Functions describe themselves by their class name, as their nodes do.
	return FindParticleGameDataClass( pClass );
}
