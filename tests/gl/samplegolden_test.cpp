// Each shipped sample drawn at one second with seed 1, as `zol render` draws it, against
// a committed picture (tests/data/golden/). A picture matches when no more than 0.5% of
// its pixels differ by more than 24 in a channel and the mean difference stays under 2.
// A mismatch writes the picture drawn and a picture of the differences beside the test's
// temporary files and names them. ZOL_UPDATE_GOLDEN=1 writes the goldens anew.

#include <gtest/gtest.h>

#include <QImage>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "core/host/assetsystem.h"
#include "core/host/hostservices.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "core/particles/particlesystemresource.h"
#include "rendertestsupport.h"
#include "tools/toolscene/toolsceneparticlerun.h"
#include "tools/toolscene/toolsceneparticlesystem.h"

namespace
{
namespace fs = std::filesystem;

constexpr int GOLDEN_WIDTH = 320;
constexpr int GOLDEN_HEIGHT = 240;
constexpr int PIXEL_TOLERANCE = 24;
constexpr double MAX_DIFFERING_SHARE = 0.005;
constexpr double MAX_MEAN_DIFFERENCE = 2.0;

const fs::path s_ContentRoot = fs::path( ZOL_SOURCE_DIR ) / "content/content";

struct Comparison_t
{
	double m_flDifferingShare = 1.0;
	double m_flMeanDifference = 255.0;
	QImage m_Difference;
};

Comparison_t Compare( const QImage &actual, const QImage &golden )
{
	Comparison_t result;
	if ( actual.size() != golden.size() )
		return result;
	result.m_Difference = QImage( actual.size(), QImage::Format_RGB32 );
	long long nDiffering = 0;
	double flSum = 0.0;
	for ( int y = 0; y < actual.height(); ++y )
		for ( int x = 0; x < actual.width(); ++x )
		{
			QRgb a = actual.pixel( x, y ), g = golden.pixel( x, y );
			int d = ColorDistance( a, qRed( g ), qGreen( g ), qBlue( g ) );
			flSum += std::abs( qRed( a ) - qRed( g ) ) + std::abs( qGreen( a ) - qGreen( g ) ) + std::abs( qBlue( a ) - qBlue( g ) );
			nDiffering += d > PIXEL_TOLERANCE;
			// Differences show bright on black, beyond the tolerance in red.
			int v = std::min( 255, d * 4 );
			result.m_Difference.setPixel( x, y, d > PIXEL_TOLERANCE ? qRgb( 255, 0, 0 ) : qRgb( v, v, v ) );
		}
	const double flPixels = double( actual.width() ) * actual.height();
	result.m_flDifferingShare = double( nDiffering ) / flPixels;
	result.m_flMeanDifference = flSum / ( flPixels * 3.0 );
	return result;
}

class SampleGoldenTest : public ::testing::TestWithParam<const char *>
{
};
} // namespace

TEST_P( SampleGoldenTest, SampleAtOneSecondMatchesItsPicture )
{
	const std::string name = GetParam();
	COffscreenToolSceneWindow *pWindow = RenderWindow( GOLDEN_WIDTH, GOLDEN_HEIGHT );
	ASSERT_NE( pWindow, nullptr );
	pWindow->GetRenderer().SetClearColor( 0.16f, 0.16f, 0.18f );

	// The services `zol render` sets up: textures and children from the content root.
	CHostServices services;
	CUtlString strError;
	ASSERT_TRUE( services.Init( ZOL_SOURCE_DIR "/content/game", s_ContentRoot.c_str(), &strError ) ) << strError.Get();
	CParticleAssetCompiler compiler;
	services.GetAssetSystem()->RegisterCompiler( RESOURCE_TYPE_PARTICLE_SYSTEM, &compiler );
	services.SetParticleSystemMgr( HostParticleSystemMgr() );
	ParticleDefinitionPtr_t pDefinition = FindParticleSystemDefinition( ( "particles/samples/" + name + ".tfxs" ).c_str(), &strError );
	ASSERT_NE( pDefinition, nullptr ) << strError.Get();

	QImage actual;
	{
		CToolSceneParticleRun run( pDefinition, 1 );
		run.RunFor( 1.0, 60 );
		actual = pWindow->Render( run.GetScene(), run.GetFramingView( GOLDEN_WIDTH, GOLDEN_HEIGHT ) );
	}
	services.GetAssetSystem()->RegisterCompiler( RESOURCE_TYPE_PARTICLE_SYSTEM, nullptr );
	services.SetParticleSystemMgr( nullptr );
	ASSERT_FALSE( actual.isNull() );

	const fs::path golden = fs::path( ZOL_SOURCE_DIR ) / "tests/data/golden" / ( name + ".png" );
	if ( getenv( "ZOL_UPDATE_GOLDEN" ) )
	{
		fs::create_directories( golden.parent_path() );
		ASSERT_TRUE( actual.save( QString::fromStdString( golden.string() ), "PNG" ) );
		return;
	}
	QImage expected( QString::fromStdString( golden.string() ) );
	ASSERT_FALSE( expected.isNull() ) << golden << " is missing; ZOL_UPDATE_GOLDEN=1 writes it";
	Comparison_t comparison = Compare( actual, expected.convertToFormat( QImage::Format_RGB32 ) );
	const bool bMatches = comparison.m_flDifferingShare <= MAX_DIFFERING_SHARE && comparison.m_flMeanDifference < MAX_MEAN_DIFFERENCE;
	if ( !bMatches )
	{
		const fs::path out = fs::path( ::testing::TempDir() ) / "zol_golden";
		fs::create_directories( out );
		const fs::path actualPath = out / ( name + ".actual.png" ), differencePath = out / ( name + ".difference.png" );
		actual.save( QString::fromStdString( actualPath.string() ), "PNG" );
		if ( !comparison.m_Difference.isNull() )
			comparison.m_Difference.save( QString::fromStdString( differencePath.string() ), "PNG" );
		ADD_FAILURE() << name << ": " << comparison.m_flDifferingShare * 100.0 << "% of pixels differ (at most " << MAX_DIFFERING_SHARE * 100.0
					  << "%), mean difference " << comparison.m_flMeanDifference << " (under " << MAX_MEAN_DIFFERENCE << "); drawn: " << actualPath
					  << ", differences: " << differencePath;
	}
}

INSTANTIATE_TEST_SUITE_P( Samples, SampleGoldenTest, ::testing::Values( "beacon", "beacon_glow", "brazier", "campfire", "fire", "old_dust", "smoke", "sparks" ) );
