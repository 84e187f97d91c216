// Control point configurations of a session: what selecting one applies to the preview,
// pinned points, storing and saving, copying to another session, and the names of new
// configurations.

#include <gtest/gtest.h>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "tests/zoldoc/zolrecordingpreview.h"
#include "tests/zoltool/zolapptestsupport.h"
#include "zoldoc_lib/zolcontrolpointconfiguration.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolpersistedcontrolpoints.h"
#include "zoldoc_lib/zolrootnode.h"

namespace
{
namespace fs = std::filesystem;

const ParticleParamID_t CP0 = ParticleParamID_t::ControlPoint( 0 );

struct CPreviewStateCounter
{
	void OnPreviewStateChanged( const ZolEvent_PreviewStateChanged_t & ) { ++m_nCount; }
	int m_nCount = 0;
};

class ZolConfigurations : public ZolAppTest
{
protected:
	void SetUp() override
	{
		ZolAppTest::SetUp();
		if ( HasFatalFailure() )
			return;
		// The crate's lid is where one configuration of the brazier stands.
		fs::copy( fs::path( ZOL_SOURCE_DIR ) / "content/content/models", m_Root / "content/models", fs::copy_options::recursive );
		m_Services.GetAssetSystem()->Rescan();
		CZolPersistedControlPoints::Get().Clear();
		Start();
		m_pBrazier = Open( "particles/samples/brazier.tfxs" );
		ASSERT_NE( m_pBrazier, nullptr );
		ASSERT_TRUE( m_pBrazier->IsKnownControlPoint( CP0 ) );
		m_Preview.m_SceneModel = "models/crate.tmsh";
	}
	void TearDown() override
	{
		for ( CBaseEditorSession *pSession : m_pApp->GetSessions() )
			static_cast<CZolSession *>( pSession )->SetPreviewTarget( nullptr );
		CZolPersistedControlPoints::Get().Clear();
		ZolAppTest::TearDown();
	}

	ZolControlPointConfiguration_t *Find( CZolSession *pSession, const char *pName ) { return pSession->GetDoc()->GetRoot()->FindConfiguration( pName ); }

	CZolSession *m_pBrazier = nullptr;
	CRecordingPreview m_Preview;
};
} // namespace

TEST_F( ZolConfigurations, SelectingAConfigurationAppliesItsModelAttachmentsAndPositions )
{
	EXPECT_STREQ( m_pBrazier->GetCurrentConfigName(), "ground" );
	m_pBrazier->SetPreviewTarget( &m_Preview );
	m_pBrazier->SelectConfiguration( Find( m_pBrazier, "on crate" ) );
	EXPECT_STREQ( m_pBrazier->GetPreviewState().m_previewModel.Get(), "models/crate.tmsh" );
	EXPECT_STREQ( m_pBrazier->GetEntityModel( ZOL_ATTACH_ENTITY_PARENT ), "models/crate.tmsh" );
	EXPECT_NE( m_Preview.Joined().find( "bind 0 to models/crate.tmsh:lid type 5 offset 0 0 0\n" ), std::string::npos ) << m_Preview.Joined();

	m_Preview.m_Calls.clear();
	m_pBrazier->SelectConfiguration( Find( m_pBrazier, "ground" ) );
	EXPECT_STREQ( m_pBrazier->GetPreviewState().m_previewModel.Get(), "" );
	EXPECT_NE( m_Preview.Joined().find( "node 0 at 0 0 0\n" ), std::string::npos ) << m_Preview.Joined();
	EXPECT_EQ( m_Preview.Joined().find( "bind 0 to" ), std::string::npos );
	EXPECT_FALSE( m_pBrazier->IsModified() ) << "selecting changes the preview, not the document";
}

TEST_F( ZolConfigurations, PinnedPointStaysWhereItWasWhenAnotherConfigurationIsSelected )
{
	CZolControlPointState *pState = m_pBrazier->GetControlPointState();
	pState->SetTransform( CP0, Vector( 5, 6, 7 ), QAngle() );
	m_pBrazier->SetControlPointPersisted( CP0, true );
	m_pBrazier->SelectConfiguration( Find( m_pBrazier, "on crate" ) );
	EXPECT_EQ( pState->GetPosition( CP0 ), Vector( 5, 6, 7 ) );
	// Another session opened later stands the point where it was pinned.
	CZolSession *pFire = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pFire, nullptr );
	EXPECT_EQ( pFire->GetControlPointState()->GetPosition( CP0 ), Vector( 5, 6, 7 ) );

	m_pBrazier->SetControlPointPersisted( CP0, false );
	m_pBrazier->SelectConfiguration( Find( m_pBrazier, "ground" ) );
	EXPECT_EQ( pState->GetPosition( CP0 ), Vector( 0, 0, 0 ) );
}

TEST_F( ZolConfigurations, StoredStateIsSavedWithTheFileAndComesBackOnReload )
{
	m_pBrazier->GetControlPointState()->SetTransform( CP0, Vector( 10, 0, 0 ), QAngle( 0, 45, 0 ) );
	m_pBrazier->GetPreviewStateForModify().m_flPlaybackSpeed = 0.5f;
	m_pBrazier->GetDoc()->BeginEdit( "Commit Control Point And Preview State", true );
	m_pBrazier->StoreStateInConfiguration( m_pBrazier->GetCurrentConfiguration() );
	EXPECT_TRUE( m_pBrazier->IsModified() );
	ASSERT_TRUE( m_pApp->SaveSession( m_pBrazier ) );

	std::string saved = ReadText( m_Root / "content/particles/samples/brazier.tfxs" );
	KeyValues3 file;
	CUtlString error;
	ASSERT_TRUE( LoadKV3FromText( &file, &error, saved.c_str(), saved.size(), KV3_FORMAT_TFXS ) ) << error.Get();
	const KeyValues3 *pGround = file.FindMember( "m_controlPointConfigurations" )->GetArrayElement( 0 );
	const KeyValues3 *pDriver = pGround->FindMember( "m_drivers" )->GetArrayElement( 0 );
	EXPECT_EQ( pDriver->FindMember( "m_vecOffset" )->GetArrayElement( 0 )->GetFloat(), 10.0f );
	EXPECT_EQ( pDriver->FindMember( "m_angOffset" )->GetArrayElement( 1 )->GetFloat(), 45.0f );
	EXPECT_EQ( pGround->FindMember( "m_previewState" )->GetMemberFloat( "m_flPlaybackSpeed" ), 0.5f );

	m_pBrazier->GetControlPointState()->SetTransform( CP0, Vector(), QAngle() );
	ASSERT_TRUE( m_pBrazier->Reload() );
	m_pBrazier->SelectConfiguration( m_pBrazier->GetCurrentConfiguration() );
	EXPECT_EQ( m_pBrazier->GetControlPointState()->GetPosition( CP0 ), Vector( 10, 0, 0 ) );
	EXPECT_EQ( m_pBrazier->GetPreviewState().m_flPlaybackSpeed, 0.5f );
}

TEST_F( ZolConfigurations, CopiedConfigurationPastesIntoAnotherSessionWithoutEditingEither )
{
	m_pBrazier->SelectConfiguration( Find( m_pBrazier, "on crate" ) );
	ASSERT_TRUE( m_pBrazier->CopyConfiguration() );
	CUtlString strClipboard;
	m_pApp->GetClipboardText( &strClipboard );
	EXPECT_NE( strstr( strClipboard, "ControlPointConfiguration" ), nullptr );

	CZolSession *pFire = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pFire, nullptr );
	int nConfigurations = pFire->GetDoc()->GetRoot()->GetConfigurationCount();
	pFire->SetPreviewTarget( &m_Preview );
	ASSERT_TRUE( pFire->PasteConfiguration() );
	EXPECT_STREQ( pFire->GetPreviewState().m_previewModel.Get(), "models/crate.tmsh" );
	EXPECT_EQ( pFire->GetControlPointState()->GetAttachType( CP0 ), PATTACH_POINT_FOLLOW );
	EXPECT_STREQ( pFire->GetControlPointState()->GetAttachmentName( CP0 ), "lid" );
	EXPECT_NE( m_Preview.Joined().find( "bind 0 to models/crate.tmsh:lid" ), std::string::npos ) << m_Preview.Joined();
	EXPECT_FALSE( m_pBrazier->IsModified() );
	EXPECT_FALSE( pFire->IsModified() ) << "the user commits a pasted setup with the preview controls";
	EXPECT_EQ( pFire->GetDoc()->GetRoot()->GetConfigurationCount(), nConfigurations );

	// Committing it stores it into the current configuration.
	pFire->GetDoc()->BeginEdit( "Commit Control Point And Preview State", true );
	pFire->StoreStateInConfiguration( pFire->GetCurrentConfiguration() );
	const KeyValues3 &stored = pFire->GetCurrentConfiguration()->m_KV3;
	EXPECT_STREQ( stored.FindMember( "m_previewState" )->GetMemberString( "m_previewModel" ), "models/crate.tmsh" );
	EXPECT_TRUE( pFire->IsModified() );
}

TEST_F( ZolConfigurations, ClipboardWithoutAConfigurationChangesNothingAndUnreadableTextBeeps )
{
	CZolControlPointState *pState = m_pBrazier->GetControlPointState();
	pState->SetTransform( CP0, Vector( 1, 1, 1 ), QAngle() );
	KeyValues3 other;
	other.SetToEmptyTable();
	other.SetMemberInt( "something", 1 );
	CUtlString strOther;
	ASSERT_TRUE( SaveKV3ToString( &other, &strOther, KV3_FORMAT_GENERIC ) );
	struct Case_t
	{
		const char *m_pText;
		bool m_bBeeps;
	};
	const Case_t cases[] = { { "", true }, { "{ this is not KV3", true }, { strOther.Get(), false } };
	for ( const Case_t &c : cases )
	{
		m_pApp->SetClipboardText( c.m_pText );
		int nBeeps = m_pApp->GetBeepCount();
		EXPECT_EQ( m_pBrazier->PasteConfiguration(), !c.m_bBeeps ) << c.m_pText;
		EXPECT_EQ( m_pApp->GetBeepCount(), nBeeps + ( c.m_bBeeps ? 1 : 0 ) ) << c.m_pText;
		EXPECT_EQ( pState->GetPosition( CP0 ), Vector( 1, 1, 1 ) ) << c.m_pText;
		EXPECT_FALSE( m_pBrazier->IsModified() );
	}
}

TEST_F( ZolConfigurations, NewConfigurationsTakeTheDefaultNamesAndAreSelectedOnce )
{
	CPreviewStateCounter counter;
	m_pBrazier->GetEventDispatcher()->AddListener( &counter, &CPreviewStateCounter::OnPreviewStateChanged );
	ZolControlPointConfiguration_t *pPreview = m_pBrazier->AddNewConfiguration();
	ASSERT_NE( pPreview, nullptr );
	EXPECT_STREQ( pPreview->GetName(), "preview" );
	EXPECT_STREQ( m_pBrazier->GetCurrentConfigName(), "preview" );
	EXPECT_EQ( counter.m_nCount, 1 );
	// Its drivers reached the state: every free point, at the world origin.
	const KeyValues3 *pDriver = pPreview->m_KV3.FindMember( "m_drivers" )->GetArrayElement( 0 );
	EXPECT_STREQ( pDriver->GetMemberString( "m_iAttachType" ), "PATTACH_WORLDORIGIN" );
	EXPECT_EQ( m_pBrazier->GetControlPointState()->GetAttachType( CP0 ), PATTACH_WORLDORIGIN );

	EXPECT_STREQ( m_pBrazier->AddNewConfiguration()->GetName(), "game" );
	EXPECT_STREQ( m_pBrazier->AddNewConfiguration()->GetName(), "Config 5" );
	EXPECT_EQ( counter.m_nCount, 3 );
	m_pBrazier->GetEventDispatcher()->RemoveListenersOf( &counter );
}

TEST_F( ZolConfigurations, OpenSessionsStandInTheWorkingSetNewestFirst )
{
	CZolSession *pFire = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pFire, nullptr );
	CUtlVector<IAsset *> assets;
	m_pApp->GetWorkingSet()->AppendTo( &assets );
	ASSERT_EQ( assets.Count(), 2 );
	EXPECT_EQ( assets[ 0 ], pFire->GetAsset() );
	EXPECT_EQ( assets[ 1 ], m_pBrazier->GetAsset() );
	ASSERT_TRUE( m_pApp->CloseSession( pFire ) );
	EXPECT_EQ( m_pApp->GetWorkingSet()->GetCount(), 1 );
	EXPECT_FALSE( m_pApp->GetWorkingSet()->Contains( Asset( "particles/samples/fire.tfxs" ) ) );
}
