// What a tool asks of the host before it starts: the needed interfaces, the scene system
// and tool scene nodes that the preview builds on, attribute editor factories, and the
// autosave manager's lists in the settings.

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>

#include "core/host/propertyeditorsystem.h"
#include "core/host/scenesystem.h"
#include "core/host/toolscenenodefactory.h"
#include "core/kv3/keyvalues3.h"
#include "tools/toolutils2/baseeditorapp/autosavemanager.h"
#include "tools/toolutils2/baseeditorapp/basetoolsystem2.h"
#include "tools/toolutils2/propertyeditor/propertyattributeeditorfactory.h"

namespace
{
class CNeedyTool final : public CBaseToolSystem2
{
public:
	void ShutdownTool() override {}
	const char *const *GetNeededInterfaces() const override
	{
		static const char *const s_pNeeded[] = { "SceneSystem_002", "ParticleSystemMgr003", nullptr };
		return s_pNeeded;
	}
	bool StartTool( int ) override { return true; }
	void OnOpenRequest( const ToolOpenRequest_t & ) override {}
	void Frame() override {}
	bool CloseRefused() override { return false; }
};

// A factory that answers only the names in s_Answered.
std::set<std::string> s_Answered;
int s_nObject = 0;
void *PartialFactory( const char *pName, int *pReturnCode )
{
	bool bKnown = s_Answered.count( pName ) != 0;
	if ( pReturnCode )
		*pReturnCode = bKnown ? IFACE_OK : IFACE_FAILED;
	return bKnown ? &s_nObject : nullptr;
}

// Answers an object but reports failure: not an answer either.
void *LyingFactory( const char *, int *pReturnCode )
{
	*pReturnCode = IFACE_FAILED;
	return &s_nObject;
}
} // namespace

TEST( ToolNeededInterfaces, EveryNeededNameMustAnswerAndTheFirstMissingIsNamed )
{
	CNeedyTool tool;
	CUtlString strError;
	s_Answered = { "SceneSystem_002", "ParticleSystemMgr003" };
	EXPECT_TRUE( tool.CheckNeededInterfaces( &PartialFactory, &strError ) );

	s_Answered = { "SceneSystem_002" };
	EXPECT_FALSE( tool.CheckNeededInterfaces( &PartialFactory, &strError ) );
	EXPECT_NE( strstr( strError, "\"ParticleSystemMgr003\"" ), nullptr ) << strError.Get();

	s_Answered.clear();
	EXPECT_FALSE( tool.CheckNeededInterfaces( &PartialFactory, &strError ) );
	EXPECT_NE( strstr( strError, "\"SceneSystem_002\"" ), nullptr ) << strError.Get();

	EXPECT_FALSE( tool.CheckNeededInterfaces( &LyingFactory, &strError ) );
	EXPECT_FALSE( tool.CheckNeededInterfaces( nullptr, &strError ) );
}

// ---------------------------------------------------------------------------------------
// Scene system

TEST( SceneSystem, WorldsOwnTheirObjectsWithTransformsAndOrderedBounds )
{
	CSceneSystem scene;
	ISceneWorld *pWorld = scene.CreateWorld( "preview" );
	ISceneWorld *pOther = scene.CreateWorld( "thumbnail" );
	EXPECT_EQ( scene.GetWorldCount(), 2 );
	ISceneObject *pGround = pWorld->CreateObject( "ground" );
	ISceneObject *pModel = pWorld->CreateObject( "model" );
	ASSERT_EQ( pWorld->GetObjectCount(), 2 );
	EXPECT_EQ( pWorld->GetObject( 1 ), pModel );
	EXPECT_EQ( pWorld->GetObject( 2 ), nullptr );

	pModel->SetTransform( Vector( 1, 2, 3 ), Vector( 0, 90, 0 ) );
	EXPECT_EQ( pModel->GetOrigin().y, 2.0f );
	EXPECT_EQ( pModel->GetAngles().y, 90.0f );
	// Corners given crosswise still make a box.
	pGround->SetBounds( Vector( 10, -5, 1 ), Vector( -10, 5, -1 ) );
	EXPECT_EQ( pGround->GetMins().x, -10.0f );
	EXPECT_EQ( pGround->GetMaxs().x, 10.0f );
	EXPECT_EQ( pGround->GetMins().z, -1.0f );

	// An object of another world is not destroyed through this one.
	EXPECT_FALSE( pOther->DestroyObject( pGround ) );
	EXPECT_TRUE( pWorld->DestroyObject( pGround ) );
	EXPECT_FALSE( pWorld->DestroyObject( pGround ) );
	EXPECT_EQ( pWorld->GetObject( 0 ), pModel );

	EXPECT_TRUE( scene.DestroyWorld( pWorld ) );
	EXPECT_FALSE( scene.DestroyWorld( pWorld ) );
	EXPECT_EQ( scene.GetWorldCount(), 1 );
}

// ---------------------------------------------------------------------------------------
// Tool scene nodes

TEST( ToolSceneNodeFactory, MakesNamedKindsInATreeAndDestroysSubtrees )
{
	CToolSceneNodeFactory factory;
	std::set<std::string> kinds;
	for ( int i = 0; i < factory.GetNodeKindCount(); ++i )
		kinds.insert( factory.GetNodeKindName( i ) );
	EXPECT_EQ( kinds, ( std::set<std::string>{ "camera", "group", "model", "particle_system" } ) );

	IToolSceneNode *pRoot = factory.CreateNode( "Group", "root", nullptr );
	ASSERT_NE( pRoot, nullptr );
	EXPECT_STREQ( pRoot->GetKindName(), "group" );
	IToolSceneNode *pModel = factory.CreateNode( "model", "hero", pRoot );
	IToolSceneNode *pEffect = factory.CreateNode( "particle_system", "fire", pModel );
	ASSERT_TRUE( pModel && pEffect );
	EXPECT_EQ( pEffect->GetParent(), pModel );
	EXPECT_EQ( pRoot->GetChild( 0 ), pModel );
	EXPECT_EQ( factory.CreateNode( "light", "sun", pRoot ), nullptr );

	// A node of another factory can't be a parent here.
	CToolSceneNodeFactory other;
	IToolSceneNode *pForeign = other.CreateNode( "camera", "cam", nullptr );
	EXPECT_EQ( factory.CreateNode( "model", "x", pForeign ), nullptr );
	EXPECT_FALSE( factory.DestroyNode( pForeign ) );

	EXPECT_TRUE( factory.DestroyNode( pModel ) );
	EXPECT_EQ( pRoot->GetChildCount(), 0 );
	EXPECT_TRUE( factory.DestroyNode( pRoot ) );
	EXPECT_EQ( factory.GetRootCount(), 0 );
}

// ---------------------------------------------------------------------------------------
// Attribute editor factories

namespace
{
class CFixedFactory final : public CPropertyAttributeEditorFactoryBaseFixedHeight
{
public:
	using CPropertyAttributeEditorFactoryBaseFixedHeight::CPropertyAttributeEditorFactoryBaseFixedHeight;
};
class CVariableFactory final : public CPropertyAttributeEditorFactoryBaseVariableHeight
{
public:
	using CPropertyAttributeEditorFactoryBaseVariableHeight::CPropertyAttributeEditorFactoryBaseVariableHeight;
};
} // namespace

TEST( PropertyAttributeEditorFactory, RegistersByNameWithItsRowHeight )
{
	CPropertyEditorSystem system;
	IPropertyEditorSystem *pPrevious = GetPropertyEditorSystem();
	SetPropertyEditorSystem( &system );
	CFixedFactory picker( "TestPicker" );
	CVariableFactory curve( "TestCurve" );
	CVariableFactory twin( "testpicker" );
	EXPECT_TRUE( picker.RegisterWithPropertyEditorSystem() );
	EXPECT_TRUE( curve.RegisterWithPropertyEditorSystem() );
	EXPECT_FALSE( twin.RegisterWithPropertyEditorSystem() ) << "names compare ignoring case";
	EXPECT_EQ( system.FindAttributeEditorFactory( "TESTPICKER" ), &picker );
	EXPECT_EQ( system.FindAttributeEditorFactory( "TestPicker" )->GetFixedRowHeight(), 22 );
	EXPECT_EQ( system.FindAttributeEditorFactory( "TestCurve" )->GetFixedRowHeight(), -1 );
	SetPropertyEditorSystem( pPrevious );
}

TEST( PropertyAttributeEditorFactoryDeathTest, RegisteringUnconnectedStopsWithTheReason )
{
	GTEST_FLAG_SET( death_test_style, "threadsafe" );
	CFixedFactory picker( "TestPicker" );
	EXPECT_DEATH(
		{
			SetPropertyEditorSystem( nullptr );
			picker.RegisterWithPropertyEditorSystem();
		},
		"Cannot register an attribute editor factory before we're connected to the Property Editor System" );
}

// ---------------------------------------------------------------------------------------
// Autosave manager settings

TEST( AutosaveManagerSettings, RecentAndNewFilesRoundTripUnderTheirKeys )
{
	CAutosaveManager manager;
	manager.SetFileExists( []( const char *pPath ) { return strstr( pPath, "gone" ) == nullptr; } );
	manager.NoteFileOpened( "\\work\\content\\a.tfxs", true );
	manager.NoteFileOpened( "\\work\\content\\gone.tfxs", false );
	manager.NoteFileOpened( "\\work\\content\\b.tfxs", true );
	manager.NoteFileClosed( "\\WORK\\content\\B.tfxs" );
	manager.NoteNewFile( "\\work\\content\\untitled_particle_1" );
	manager.NoteNewFile( "\\work\\content\\untitled_particle_1" );

	KeyValues3 recent, newFiles;
	manager.WriteSettings( &recent, &newFiles );
	EXPECT_STREQ( recent.GetMemberString( "Filename 0" ), "\\work\\content\\b.tfxs" );
	EXPECT_TRUE( recent.GetMemberBool( "ClosedCorrectly 0", false ) );
	EXPECT_FALSE( recent.GetMemberBool( "DisplayInList 1", true ) );
	EXPECT_EQ( newFiles.GetMemberCount(), 1 );
	EXPECT_STREQ( newFiles.GetMemberString( "NewFilename 0" ), "\\work\\content\\untitled_particle_1" );

	CAutosaveManager restored;
	restored.SetFileExists( []( const char *pPath ) { return strstr( pPath, "gone" ) == nullptr; } );
	restored.ReadSettings( &recent, &newFiles );
	ASSERT_EQ( restored.GetRecentFiles().size(), 2u ) << "the missing file drops out";
	EXPECT_STREQ( restored.GetRecentFiles()[ 0 ].m_strFileName, "\\work\\content\\b.tfxs" );
	EXPECT_TRUE( restored.GetRecentFiles()[ 0 ].m_bClosedCorrectly );
	EXPECT_STREQ( restored.GetRecentFiles()[ 1 ].m_strFileName, "\\work\\content\\a.tfxs" );
	EXPECT_FALSE( restored.GetRecentFiles()[ 1 ].m_bClosedCorrectly );
	EXPECT_TRUE( restored.IsNewFile( "\\work\\content\\UNTITLED_particle_1" ) );
}

TEST( AutosaveManagerSettings, RecentListKeepsAtLeastTenNewestFirst )
{
	CAutosaveManager manager;
	manager.SetMaxRecentFiles( 3 );
	for ( int i = 0; i < 12; ++i )
	{
		CUtlString strPath;
		strPath.Format( "\\work\\content\\f%d.tfxs", i );
		manager.NoteFileOpened( strPath, true );
	}
	ASSERT_EQ( manager.GetRecentFiles().size(), 10u );
	EXPECT_STREQ( manager.GetRecentFiles()[ 0 ].m_strFileName, "\\work\\content\\f11.tfxs" );
	EXPECT_STREQ( manager.GetRecentFiles()[ 9 ].m_strFileName, "\\work\\content\\f2.tfxs" );
}
