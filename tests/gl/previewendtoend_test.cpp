// The editor's live preview drawn for real: an edit of a colour through the document shows
// in the next picture, and the mouse and keys move the camera and restart the system.

#include <gtest/gtest.h>

#include <QMouseEvent>
#include <QTest>
#include <QWheelEvent>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "core/particles/sim/iparticlecollection.h"
#include "tests/gl/previewgltestsupport.h"
#include "tools/toolscene/toolsceneparticlesystem.h"
#include "tools/toolscene/widgets/qtoolscenewidget.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolnode.h"
#include "zoldoc_lib/zolrootnode.h"

namespace
{
struct ColorCount_t
{
	int m_nReddish = 0;
	int m_nBluish = 0;
};

int ColorDistanceOf( QRgb a, QRgb b )
{
	return std::max( { std::abs( qRed( a ) - qRed( b ) ), std::abs( qGreen( a ) - qGreen( b ) ), std::abs( qBlue( a ) - qBlue( b ) ) } );
}

// Pixels that are clearly red-orange, and clearly blue, in a picture.
ColorCount_t CountColors( const QImage &image )
{
	ColorCount_t count;
	for ( int y = 0; y < image.height(); ++y )
		for ( int x = 0; x < image.width(); ++x )
		{
			QRgb p = image.pixel( x, y );
			if ( qRed( p ) > 150 && qRed( p ) > qBlue( p ) + 80 )
				++count.m_nReddish;
			if ( qBlue( p ) > 150 && qBlue( p ) > qRed( p ) + 80 )
				++count.m_nBluish;
		}
	return count;
}

} // namespace

TEST_F( ZolPreviewGLTest, AColourEditedInTheDocumentShowsInTheNextFrame )
{
	CZolSession *pSession = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pSession, nullptr );
	Frames( 40 );
	ColorCount_t before = CountColors( Picture() );
	EXPECT_GT( before.m_nReddish, 200 ) << "the fire burns orange";
	EXPECT_EQ( before.m_nBluish, 0 );

	// Its flames take their colour from the random colour initializer: make it blue.
	CZolDoc *pDoc = pSession->GetDoc();
	CZolRootNode *pRoot = pDoc->GetRoot();
	CBaseZolNode *pColor = nullptr;
	for ( int i = 0; i < pRoot->GetNodeCount( PARTICLE_FUNCTION_INITIALIZER ); ++i )
	{
		CBaseZolNode *pNode = pRoot->GetNode( PARTICLE_FUNCTION_INITIALIZER, i );
		if ( !strcmp( pNode->GetKV3()->GetMemberString( "_class" ), "C_INIT_RandomColor" ) )
			pColor = pNode;
	}
	ASSERT_NE( pColor, nullptr );
	pDoc->BeginEdit( "Colour", true );
	for ( const char *pMember : { "m_ColorMin", "m_ColorMax" } )
	{
		KeyValues3 *pValue = pColor->GetKV3ForModify()->FindOrCreateMember( pMember );
		pValue->SetToEmptyArray();
		for ( int nChannel : { 20, 60, 255, 255 } )
			pValue->ArrayAddToTail()->SetInt( nChannel );
	}
	pDoc->NoteNodeModified( pColor );
	Frames( 1 );
	// One frame: the new definition runs from the start, so let its flames rise.
	Frames( 30 );
	ColorCount_t after = CountColors( Picture() );
	EXPECT_GT( after.m_nBluish, 200 ) << "the fire burns blue";
	EXPECT_LT( after.m_nReddish, after.m_nBluish / 20 ) << "and not orange";
}

TEST_F( ZolPreviewGLTest, MouseOrbitsAndZoomsAndTheRestartKeyStartsOver )
{
	ASSERT_NE( Open( "particles/samples/smoke.tfxs" ), nullptr );
	Frames( 10 );
	CBindableCamera &camera = m_pScene->GetCamera();
	const float flYaw = camera.GetYaw(), flDistance = camera.GetDistance();
	QPoint centre = m_pScene->rect().center();
	QTest::mousePress( m_pScene, Qt::LeftButton, Qt::NoModifier, centre );
	QMouseEvent move( QEvent::MouseMove, centre + QPoint( 60, 0 ), Qt::NoButton, Qt::LeftButton, Qt::NoModifier );
	QCoreApplication::sendEvent( m_pScene, &move );
	QTest::mouseRelease( m_pScene, Qt::LeftButton, Qt::NoModifier, centre + QPoint( 60, 0 ) );
	EXPECT_NE( camera.GetYaw(), flYaw );
	EXPECT_TRUE( camera.IsFollowingScene() ) << "orbiting keeps the camera on the system";

	QWheelEvent wheel( QPointF( centre ), m_pScene->mapToGlobal( centre ), QPoint(), QPoint( 0, 240 ), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false );
	QCoreApplication::sendEvent( m_pScene, &wheel );
	EXPECT_LT( camera.GetDistance(), flDistance );

	// Middle drag pans: the camera stops following until it is reset.
	QTest::mousePress( m_pScene, Qt::MiddleButton, Qt::NoModifier, centre );
	QMouseEvent pan( QEvent::MouseMove, centre + QPoint( 0, 40 ), Qt::NoButton, Qt::MiddleButton, Qt::NoModifier );
	QCoreApplication::sendEvent( m_pScene, &pan );
	QTest::mouseRelease( m_pScene, Qt::MiddleButton, Qt::NoModifier, centre + QPoint( 0, 40 ) );
	EXPECT_FALSE( camera.IsFollowingScene() );
	m_pPreview->ResetCamera();
	EXPECT_TRUE( camera.IsFollowingScene() );

	CToolSceneParticleSystem *pSystem = m_pPreview->GetParticleSystem();
	const int nRestarts = pSystem->GetRestartCount();
	m_pScene->setFocus();
	ASSERT_EQ( QApplication::focusWidget(), m_pScene );
	QTest::keyClick( m_pScene, Qt::Key_F5 );
	EXPECT_EQ( pSystem->GetRestartCount(), nRestarts + 1 );
	Frames( 2 );
	EXPECT_FALSE( Picture().isNull() );
}

class ZolPreviewSampleTest : public ZolPreviewGLTest, public ::testing::WithParamInterface<const char *>
{
};

// What a screenshot of the editor shows: the picture with the system differs from the
// picture without it.
TEST_P( ZolPreviewSampleTest, EverySampleShowsItsParticles )
{
	ASSERT_NE( Open( ( std::string( "particles/samples/" ) + GetParam() + ".tfxs" ).c_str() ), nullptr );
	// Long enough for the slowest (smoke starts after a quarter of a second and fades in).
	Frames( 90 );
	QImage with = Picture();
	m_pPreview->GetParticleSystem()->SetVisible( false );
	QImage without = Picture();
	m_pPreview->GetParticleSystem()->SetVisible( true );
	ASSERT_EQ( with.size(), without.size() );
	int nChanged = 0;
	for ( int y = 0; y < with.height(); ++y )
		for ( int x = 0; x < with.width(); ++x )
			nChanged += ColorDistanceOf( with.pixel( x, y ), without.pixel( x, y ) ) > 12;
	EXPECT_GT( nChanged, 40 ) << GetParam() << " draws nothing a user would see in a picture of " << with.width() << "x" << with.height();
}

INSTANTIATE_TEST_SUITE_P( Samples, ZolPreviewSampleTest, ::testing::Values( "beacon", "beacon_glow", "brazier", "campfire", "fire", "old_dust", "smoke", "sparks" ) );
