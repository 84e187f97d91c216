#include "tests/zoldoc/zoldoctestsupport.h"

#include "tests/zoldoc/zolcataloguetestclasses.h"
#include "tools/toolutils2/undo/undohistory.h"
#include "zoldoc_lib/particlegamedata.h"
#include "zoldoc_lib/zolfunctionnode.h"
#include "zoldoc_lib/zolrootnode.h"

CTestParticleSystemMgr::CTestParticleSystemMgr()
{
	m_Classes = {
		{ PARTICLE_FUNCTION_EMITTER, "C_OP_InstantaneousEmitter", "Emit Instantaneously" },
		{ PARTICLE_FUNCTION_EMITTER, "C_OP_ContinuousEmitter", "Emit Continuously" },
		{ PARTICLE_FUNCTION_INITIALIZER, "C_INIT_InitFloat", "Init Float" },
		{ PARTICLE_FUNCTION_INITIALIZER, "C_INIT_CreateWithinSphere", "Position Within Sphere Random" },
		{ PARTICLE_FUNCTION_OPERATOR, "C_OP_Decay", "Lifespan Decay" },
		{ PARTICLE_FUNCTION_OPERATOR, "C_OP_BasicMovement", "Movement Basic" },
		{ PARTICLE_FUNCTION_OPERATOR, "C_OP_SetFloat", "Set Float" },
		{ PARTICLE_FUNCTION_RENDERER, "C_OP_RenderSprites", "Render Sprites" },
		{ PARTICLE_FUNCTION_RENDERER, "C_OP_RenderTrails", "Render Trails" },
	};
}

const TestFunctionClass_t *CTestParticleSystemMgr::GetClass( ParticleFunctionType_t eType, int nIndex ) const
{
	for ( const TestFunctionClass_t &entry : m_Classes )
	{
		if ( entry.m_eType == eType && nIndex-- == 0 )
			return &entry;
	}
	return nullptr;
}

int CTestParticleSystemMgr::GetFunctionCount( ParticleFunctionType_t eType ) const
{
	int nCount = 0;
	for ( const TestFunctionClass_t &entry : m_Classes )
		nCount += entry.m_eType == eType;
	return nCount;
}

const char *CTestParticleSystemMgr::GetFunctionClassName( ParticleFunctionType_t eType, int nIndex ) const
{
	const TestFunctionClass_t *pClass = GetClass( eType, nIndex );
	return pClass ? pClass->m_pClass : "";
}

const char *CTestParticleSystemMgr::GetFunctionFriendlyName( ParticleFunctionType_t eType, int nIndex ) const
{
	const TestFunctionClass_t *pClass = GetClass( eType, nIndex );
	return pClass ? pClass->m_pFriendlyName : "";
}

int CTestParticleSystemMgr::GetFunctionExclusionGroup( ParticleFunctionType_t eType, int nIndex ) const
{
	const TestFunctionClass_t *pClass = GetClass( eType, nIndex );
	return pClass ? pClass->m_nExclusionGroup : -2;
}

const char *CTestParticleSystemMgr::GetFunctionSchemaClass( ParticleFunctionType_t eType, int nIndex ) const
{
	const TestFunctionClass_t *pClass = GetClass( eType, nIndex );
	return pClass ? pClass->m_pClass : "";
}

const char *CTestParticleSystemMgr::GetParticleAttributeName( int nAttribute ) const
{
	m_AttributeName = "Attribute " + std::to_string( nAttribute );
	return m_AttributeName.c_str();
}

void CTestParticleSystemMgr::GetFunctionInfo( const KeyValues3 *pFunction, ParticleFunctionInfo_t *pInfo ) const
{
	if ( auto written = m_WrittenAttributes.find( pFunction->GetMemberString( "_class" ) ); written != m_WrittenAttributes.end() )
		pInfo->m_nWrittenAttributes = written->second;
	const char *pKey = pFunction->GetMemberString( "m_TestUsageKey", pFunction->GetMemberString( "_class" ) );
	auto it = m_Usage.find( pKey );
	if ( it == m_Usage.end() )
		return;
	for ( const ParticleAttributeUsage_t &usage : it->second )
		pInfo->m_AttributeUsage.AddToTail( usage );
}

void CEventRecorder::Listen( CToolEventDispatcher *pDispatcher )
{
	pDispatcher->AddListener( this, &CEventRecorder::OnModified );
	pDispatcher->AddListener( this, &CEventRecorder::OnReplaced );
	pDispatcher->AddListener( this, &CEventRecorder::OnEnable );
	pDispatcher->AddListener( this, &CEventRecorder::OnList );
	pDispatcher->AddListener( this, &CEventRecorder::OnNodes );
	pDispatcher->AddListener( this, &CEventRecorder::OnSelection );
	pDispatcher->AddListener( this, &CEventRecorder::OnTopology );
}

void CEventRecorder::OnNodes( const ZolEvent_NodesModified_t &event )
{
	m_Events.push_back( "Nodes" );
	m_NodesModifiedCounts.push_back( event.m_nNodeCount );
}

std::string CEventRecorder::Joined() const
{
	std::string joined;
	for ( const std::string &name : m_Events )
		joined += ( joined.empty() ? "" : " " ) + name;
	return joined;
}

ZolDocFixture::ZolDocFixture()
{
	RegisterCatalogueTestClasses();
	SetParticleSystemMgr( &m_Mgr );
	ResetParticleGameData();
	m_Doc.SetEventHub( &m_Hub );
	m_Doc.Reset();
	m_Recorder.Listen( m_Doc.GetEventDispatcher() );
}

ZolDocFixture::~ZolDocFixture()
{
	SetParticleSystemMgr( nullptr );
	ResetParticleGameData();
}

CZolFunctionNode *ZolDocFixture::AddOperator( const char *pClass )
{
	return m_Doc.AddFunction( nullptr, pClass, PARTICLE_FUNCTION_OPERATOR );
}

CZolFunctionNode *ZolDocFixture::AddRenderer( const char *pClass )
{
	return m_Doc.AddFunction( nullptr, pClass, PARTICLE_FUNCTION_RENDERER );
}

std::string ZolDocFixture::ListClasses( ParticleFunctionType_t eType ) const
{
	std::string classes;
	const CZolRootNode *pRoot = m_Doc.GetRoot();
	for ( int i = 0; i < pRoot->GetNodeCount( eType ); ++i )
		classes += ( classes.empty() ? "" : " " ) + std::string( pRoot->GetNode( eType, i )->GetClassName() );
	return classes;
}
