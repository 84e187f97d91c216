#pragma once
// A particle manager with a handful of classes, a hub, an asset, and a listener that
// writes down every document event in order, for the document tests.

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "tools/toolutils2/toolevents/tooleventdispatcher.h"
#include "core/host/asset.h"
#include "zoldoc_lib/iasset.h"
#include "core/particles/iparticlesystemmgr.h"
#include "zoldoc_lib/izoleventhub.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolevents.h"

struct TestFunctionClass_t
{
	ParticleFunctionType_t m_eType;
	const char *m_pClass;
	const char *m_pFriendlyName;
	int m_nExclusionGroup = -2;
};

class CTestParticleSystemMgr : public IParticleSystemMgr
{
public:
	CTestParticleSystemMgr();

	int GetFunctionCount( ParticleFunctionType_t eType ) const override;
	const char *GetFunctionClassName( ParticleFunctionType_t eType, int nIndex ) const override;
	const char *GetFunctionFriendlyName( ParticleFunctionType_t eType, int nIndex ) const override;
	int GetFunctionExclusionGroup( ParticleFunctionType_t eType, int nIndex ) const override;
	const char *GetFunctionSchemaClass( ParticleFunctionType_t eType, int nIndex ) const override;
	int GetCurrentBehaviorVersion() const override { return m_nCurrentVersion; }
	const char *GetParticleAttributeName( int nAttribute ) const override;
	// A renderer's usage is looked up by its "_class", or by "m_TestUsageKey" when present.
	void GetFunctionInfo( const KeyValues3 *pFunction, ParticleFunctionInfo_t *pInfo ) const override;

	int m_nCurrentVersion = 5;
	std::vector<TestFunctionClass_t> m_Classes;
	// Attributes a function writes, by its "_class".
	std::map<std::string, uint64_t> m_WrittenAttributes;
	std::map<std::string, std::vector<ParticleAttributeUsage_t>> m_Usage;
	mutable std::string m_AttributeName;

private:
	const TestFunctionClass_t *GetClass( ParticleFunctionType_t eType, int nIndex ) const;
};

class CTestEventHub : public IZolEventHub
{
public:
	CToolEventDispatcher *GetEventDispatcher() override { return &m_Events; }
	CToolEventDispatcher m_Events;
};

class CTestAsset : public CAsset
{
public:
	explicit CTestAsset( const char *pPath ) : CAsset( nullptr, pPath ), m_Path( pPath ) {}
	const char *GetPath() const override { return m_Path.c_str(); }
	std::string m_Path;
};

// Writes the short name of every document event it hears ("Modified", "Selection", ...).
class CEventRecorder
{
public:
	void Listen( CToolEventDispatcher *pDispatcher );
	std::string Joined() const;
	void Clear() { m_Events.clear(); }

	std::vector<std::string> m_Events;
	std::vector<int> m_NodesModifiedCounts;

private:
	void OnModified( const ZolEvent_DocumentModified_t & ) { m_Events.push_back( "Modified" ); }
	void OnReplaced( const ZolEvent_DocumentReplaced_t & ) { m_Events.push_back( "Replaced" ); }
	void OnEnable( const ZolEvent_FunctionEnableDisableChanged_t & ) { m_Events.push_back( "EnableDisable" ); }
	void OnList( const ZolEvent_FunctionListChanged_t & ) { m_Events.push_back( "List" ); }
	void OnNodes( const ZolEvent_NodesModified_t &event );
	void OnSelection( const ZolEvent_SelectionChanged_t & ) { m_Events.push_back( "Selection" ); }
	void OnTopology( const ZolEvent_PropertyDomainTopologyChanged_t & ) { m_Events.push_back( "Topology" ); }
};

// A document with histories on a hub, with the test manager connected and the particle
// class table built for it. Starts reset at the manager's version.
struct ZolDocFixture : ::testing::Test
{
	ZolDocFixture();
	~ZolDocFixture() override;

	CZolFunctionNode *AddOperator( const char *pClass = "C_OP_Decay" );
	CZolFunctionNode *AddRenderer( const char *pClass = "C_OP_RenderSprites" );
	// "Class" names of list type, in order, for comparing whole lists.
	std::string ListClasses( ParticleFunctionType_t eType ) const;

	CTestParticleSystemMgr m_Mgr;
	CTestEventHub m_Hub;
	CZolDoc m_Doc;
	CEventRecorder m_Recorder;
};
