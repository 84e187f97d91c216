// The float input editor: for every type and map type the pages and row height the editor
// shows, the variants' menus, what a type or map switch keeps, and edits through real
// events, each written once as one undo step; the range fields, the bias view's drag and
// the noise preview's timer.

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QSet>
#include <QSignalSpy>
#include <QTimer>
#include <QToolButton>

#include "tests/zoltool/inputeditortestsupport.h"
#include "tools/widgets/curveeditorwidget.h"
#include "tools/widgets/slider.h"
#include "tools/widgets/sliderlineeditfloat.h"
#include "tools/widgets/smartlineedit.h"
#include "tools/widgets/vectoredit.h"
#include "tools/zol/editor/inputs/biaseditor.h"
#include "tools/zol/editor/inputs/particlecurveeditor.h"
#include "tools/zol/editor/inputs/particlefloatinputeditor.h"

namespace
{
struct FloatTypeCase_t
{
	int m_nType;
	uint32_t m_nTypePages; // without the type button
	int m_nBaseHeight;     // with the direct map
	bool m_bWithMap;
};

// The per-particle editor's pages and heights by type.
const FloatTypeCase_t s_FloatTypes[] = {
	{ PF_TYPE_LITERAL, FLOAT_PAGE_LITERAL, 22, false },
	{ PF_TYPE_NAMED_VALUE, FLOAT_PAGE_NAMED_VALUE, 42, true },
	{ PF_TYPE_RANDOM_UNIFORM, FLOAT_PAGE_RANDOM, 44, false },
	{ PF_TYPE_RANDOM_BIASED, FLOAT_PAGE_RANDOM | FLOAT_PAGE_RANDOM_BIAS, 84, false },
	{ PF_TYPE_COLLECTION_AGE, FLOAT_PAGE_TYPE_LABEL, 42, true },
	{ PF_TYPE_ENDCAP_AGE, FLOAT_PAGE_TYPE_LABEL, 42, true },
	{ PF_TYPE_CONTROL_POINT_COMPONENT, FLOAT_PAGE_CONTROL_POINT | FLOAT_PAGE_COMPONENT, 42, true },
	{ PF_TYPE_CONTROL_POINT_CHANGE_AGE, FLOAT_PAGE_CP_CHANGE_TIME, 42, true },
	{ PF_TYPE_CONTROL_POINT_SPEED, FLOAT_PAGE_CONTROL_POINT, 42, true },
	{ PF_TYPE_PARTICLE_DETAIL_LEVEL, FLOAT_PAGE_DETAIL_LEVEL, 88, false },
	{ PF_TYPE_CONCURRENT_DEF_COUNT, FLOAT_PAGE_TYPE_LABEL, 42, true },
	{ PF_TYPE_CLOSEST_CAMERA_DISTANCE, FLOAT_PAGE_CAMERA_FALLBACK, 42, true },
	{ PF_TYPE_SNAPSHOT_COUNT, FLOAT_PAGE_SNAPSHOT | FLOAT_PAGE_CONTROL_POINT, 42, true },
	{ PF_TYPE_RENDERER_CAMERA_DISTANCE, FLOAT_PAGE_CONTROL_POINT | FLOAT_PAGE_CAMERA_BBOX, 62, true },
	{ PF_TYPE_RENDERER_CAMERA_DOT_PRODUCT, FLOAT_PAGE_CONTROL_POINT | FLOAT_PAGE_CAMERA_BBOX, 62, true },
	{ PF_TYPE_PARTICLE_NOISE, FLOAT_PAGE_NOISE | FLOAT_PAGE_NOISE_ATTRIBUTE, 332, true },
	{ PF_TYPE_PARTICLE_AGE, FLOAT_PAGE_TYPE_LABEL, 42, true },
	{ PF_TYPE_PARTICLE_AGE_NORMALIZED, FLOAT_PAGE_TYPE_LABEL, 42, true },
	{ PF_TYPE_PARTICLE_FLOAT, FLOAT_PAGE_ATTRIBUTE, 42, true },
	{ PF_TYPE_PARTICLE_INITIAL_FLOAT, FLOAT_PAGE_ATTRIBUTE, 42, true },
	{ PF_TYPE_PARTICLE_VECTOR_COMPONENT, FLOAT_PAGE_ATTRIBUTE | FLOAT_PAGE_COMPONENT, 42, true },
	{ PF_TYPE_PARTICLE_INITIAL_VECTOR_COMPONENT, FLOAT_PAGE_ATTRIBUTE | FLOAT_PAGE_COMPONENT, 42, true },
	{ PF_TYPE_PARTICLE_SPEED, FLOAT_PAGE_TYPE_LABEL, 42, true },
	{ PF_TYPE_PARTICLE_NUMBER, FLOAT_PAGE_REVERSE | FLOAT_PAGE_TYPE_LABEL, 42, true },
	{ PF_TYPE_PARTICLE_NUMBER_NORMALIZED, FLOAT_PAGE_TYPE_LABEL, 42, true },
	{ PF_TYPE_PARTICLE_ROPE_SEGMENT, FLOAT_PAGE_REVERSE | FLOAT_PAGE_TYPE_LABEL, 42, true },
	{ PF_TYPE_PARTICLE_ROPE_SEGMENT_NORMALIZED, FLOAT_PAGE_TYPE_LABEL, 42, true },
	{ PF_TYPE_PARTICLE_SCREENSPACE_CAMERA_DISTANCE, FLOAT_PAGE_TYPE_LABEL, 42, true },
	{ PF_TYPE_PARTICLE_SCREENSPACE_CAMERA_DOT_PRODUCT, FLOAT_PAGE_TYPE_LABEL, 42, true },
};

struct MapCase_t
{
	int m_nMapType;
	uint32_t m_nPages;
	int m_nAddition;
};
const MapCase_t s_MapTypes[] = {
	{ PF_MAP_TYPE_DIRECT, 0, 0 },
	{ PF_MAP_TYPE_MULT, FLOAT_PAGE_MULTIPLY, 0 },
	{ PF_MAP_TYPE_REMAP, FLOAT_PAGE_INPUT_RANGE | FLOAT_PAGE_OUTPUT_RANGE, 20 },
	{ PF_MAP_TYPE_REMAP_BIASED, FLOAT_PAGE_INPUT_RANGE | FLOAT_PAGE_OUTPUT_RANGE | FLOAT_PAGE_MAP_BIAS, 60 },
	{ PF_MAP_TYPE_CURVE, FLOAT_PAGE_INPUT_RANGE | FLOAT_PAGE_OUTPUT_RANGE | FLOAT_PAGE_CURVE, 160 },
	{ PF_MAP_TYPE_NOTCHED, FLOAT_PAGE_NOTCHED, 40 },
	{ PF_MAP_TYPE_ROUND, FLOAT_PAGE_ROUND, 0 },
};

// Every widget of a shown page is visible, and no widget of another page is.
void ExpectShownPages( const CQParticleFloatInputEditor &editor, uint32_t nPages )
{
	QSet<QWidget *> shown;
	for ( uint32_t nBit = 1; nBit; nBit <<= 1 )
	{
		if ( nPages & nBit )
		{
			for ( QWidget *pWidget : editor.GetPageWidgets( FloatInputPage_t( nBit ) ) )
				shown.insert( pWidget );
		}
	}
	for ( uint32_t nBit = 1; nBit; nBit <<= 1 )
	{
		for ( QWidget *pWidget : editor.GetPageWidgets( FloatInputPage_t( nBit ) ) )
			EXPECT_EQ( pWidget->isVisibleTo( &editor ), shown.contains( pWidget ) ) << "page bit " << nBit << " widget " << pWidget->objectName().toStdString();
	}
}

class FloatInputTypePages : public ::testing::TestWithParam<FloatTypeCase_t>
{
};

std::string TypeName( const ::testing::TestParamInfo<FloatTypeCase_t> &info )
{
	std::string name = GetParticleFloatTypeMenuLabel( info.param.m_nType );
	std::string out;
	for ( char c : name )
		if ( isalnum( static_cast<unsigned char>( c ) ) )
			out += c;
	return out;
}
} // namespace

TEST_P( FloatInputTypePages, EachMapTypeShowsItsWidgetsAtTheRowHeight )
{
	const FloatTypeCase_t &c = GetParam();
	CTestInputEditorHost host;
	for ( const MapCase_t &map : s_MapTypes )
	{
		CPerParticleFloatInput input;
		input.m_nType = ParticleFloatType_t( c.m_nType );
		input.m_nMapType = ParticleFloatMapType_t( map.m_nMapType );
		host.SetValue( input );
		auto pEditor = MakeInputEditor<CQPerParticleFloatInputEditor>( &host );
		// Types without a map stage show none, whatever map type is stored.
		uint32_t nExpected = c.m_nTypePages | FLOAT_PAGE_TYPE_BUTTON;
		if ( c.m_bWithMap )
			nExpected |= FLOAT_PAGE_MAP_BUTTON | map.m_nPages;
		EXPECT_EQ( pEditor->GetShownPages(), nExpected ) << "map " << map.m_nMapType;
		ExpectShownPages( *pEditor, nExpected );
		const int nHeight = c.m_bWithMap ? c.m_nBaseHeight + map.m_nAddition : c.m_nBaseHeight;
		EXPECT_EQ( pEditor->height(), nHeight ) << "map " << map.m_nMapType;
		EXPECT_EQ( GetFloatInputEditorHeight( input, FLOAT_INPUT_EDITOR_PER_PARTICLE, 1 ), nHeight );
		EXPECT_EQ( host.GetWriteCount(), 0 ) << "reading writes nothing";
	}
}

INSTANTIATE_TEST_SUITE_P( Types, FloatInputTypePages, ::testing::ValuesIn( s_FloatTypes ), TypeName );

TEST( FloatInputEditor, ARemapInputHasNoTypeButtonAndItsRowStartsFrom32 )
{
	CTestInputEditorHost host;
	for ( const MapCase_t &map : s_MapTypes )
	{
		CParticleRemapFloatInput input;
		input.m_nMapType = ParticleFloatMapType_t( map.m_nMapType );
		host.SetValue( input );
		auto pEditor = MakeInputEditor<CQParticleRemapFloatInput>( &host );
		EXPECT_FALSE( pEditor->Part<QToolButton>( "TypeButton" )->isVisibleTo( pEditor.get() ) );
		EXPECT_TRUE( pEditor->Part<QToolButton>( "MapButton" )->isVisibleTo( pEditor.get() ) );
		EXPECT_EQ( pEditor->height(), 32 + map.m_nAddition );
	}
}

TEST( FloatInputEditor, SeveralInstancesShowOnlyTheNoteAndWriteNothing )
{
	CTestInputEditorHost host;
	host.SetValue( CPerParticleFloatInput( 3.0f ) );
	auto pEditor = MakeInputEditor<CQPerParticleFloatInputEditor>( &host, 2 );
	EXPECT_EQ( pEditor->GetShownPages(), uint32_t( FLOAT_PAGE_MULTI_SELECT ) );
	EXPECT_EQ( pEditor->height(), 22 );
	pEditor->OnSetType( PF_TYPE_RANDOM_UNIFORM );
	EXPECT_EQ( host.GetWriteCount(), 0 );
}

TEST( FloatInputEditor, TheVariantsMenusOfferTheirTypes )
{
	EnsureTestQApplication();
	auto labels = []( CQParticleFloatInputEditor &editor ) {
		std::unique_ptr<QMenu> pMenu( editor.CreateTypeMenu() );
		QStringList texts;
		for ( QAction *pAction : pMenu->actions() )
			texts << pAction->text();
		return texts;
	};
	CQPerParticleFloatInputEditor perParticle;
	CQParticleCollectionRendererFloatInput renderer;
	CQParticleCollectionFloatInput collection;
	const QStringList perParticleTypes = labels( perParticle ), rendererTypes = labels( renderer ), collectionTypes = labels( collection );
	EXPECT_EQ( perParticleTypes.size(), 27 );
	EXPECT_FALSE( perParticleTypes.contains( "Camera Distance" ) );
	EXPECT_FALSE( perParticleTypes.contains( "Camera Dot Product" ) );
	EXPECT_TRUE( perParticleTypes.contains( "Per-Particle Float" ) );
	EXPECT_EQ( rendererTypes.size(), 16 );
	EXPECT_TRUE( rendererTypes.contains( "Camera Distance" ) );
	EXPECT_TRUE( rendererTypes.contains( "Noise" ) );
	EXPECT_FALSE( rendererTypes.contains( "Particle Age" ) );
	EXPECT_EQ( collectionTypes.size(), 14 );
	EXPECT_FALSE( collectionTypes.contains( "Camera Distance" ) );
	EXPECT_TRUE( GetFloatInputTypeMenu( FLOAT_INPUT_EDITOR_REMAP, false ).empty() );
	std::unique_ptr<QMenu> pMapMenu( perParticle.CreateMapMenu() );
	ASSERT_EQ( pMapMenu->actions().size(), 7 );
	EXPECT_EQ( pMapMenu->actions()[ 4 ]->text(), QStringLiteral( "Curve" ) );
}

TEST( FloatInputEditor, ASwitchKeepsTheOtherFieldsAndEachIsOneStep )
{
	CTestInputEditorHost host;
	CPerParticleFloatInput input( 2.5f );
	input.m_flRandomMin = 4.0f;
	host.SetValue( input );
	auto pEditor = MakeInputEditor<CQPerParticleFloatInputEditor>( &host );
	std::unique_ptr<QMenu> pMenu( pEditor->CreateTypeMenu() );
	pMenu->actions()[ PF_TYPE_RANDOM_UNIFORM ]->trigger();
	EXPECT_EQ( host.GetValue<CPerParticleFloatInput>().m_nType, PF_TYPE_RANDOM_UNIFORM );
	EXPECT_EQ( pEditor->height(), 44 ) << "the page is the random one at once";
	EXPECT_EQ( pEditor->Part<CQSmartLineEdit>( "RandomMin" )->text(), QStringLiteral( "4" ) );
	std::unique_ptr<QMenu> pBack( pEditor->CreateTypeMenu() );
	pBack->actions()[ PF_TYPE_LITERAL ]->trigger();
	const CPerParticleFloatInput back = host.GetValue<CPerParticleFloatInput>();
	EXPECT_EQ( back.m_nType, PF_TYPE_LITERAL );
	EXPECT_FLOAT_EQ( back.m_flLiteralValue, 2.5f );
	EXPECT_FLOAT_EQ( back.m_flRandomMin, 4.0f );
	EXPECT_EQ( host.GetUndoSteps(), 2 );
	// The same type again is no edit.
	pEditor->OnSetType( PF_TYPE_LITERAL );
	EXPECT_EQ( host.GetWriteCount(), 2 );
}

TEST( FloatInputEditor, CurveOnAnEmptyCurveIsALineFrom00To11AndAnExistingCurveStays )
{
	CParticleFloatInput input;
	input.m_nType = PF_TYPE_PARTICLE_AGE_NORMALIZED;
	ASSERT_TRUE( SetFloatInputMapType( &input, PF_MAP_TYPE_CURVE ) );
	ASSERT_EQ( input.m_Curve.GetKeyCount(), 2 );
	EXPECT_FLOAT_EQ( input.m_Curve.GetKey( 0 ).x, 0.0f );
	EXPECT_FLOAT_EQ( input.m_Curve.GetKey( 1 ).y, 1.0f );
	EXPECT_FLOAT_EQ( input.m_Curve.Evaluate( 0.5f ), 0.5f );
	EXPECT_EQ( input.m_Curve.GetTangents( 0 ).m_nOutgoingTangent, CURVE_TANGENT_SPLINE );
	EXPECT_FLOAT_EQ( input.m_Curve.m_vDomainMaxs.y, 1.0f );

	// A curve of three keys over 0..10 comes back as it was from a trip through Direct.
	input.m_Curve.Clear();
	input.m_Curve.SetDomain( Vector2D( -5.0f, 0.0f ), Vector2D( 10.0f, 4.0f ) );
	input.m_Curve.AddPoint( 0.0f, 1.0f, CURVE_TANGENT_LINEAR, CURVE_TANGENT_LINEAR, 0.0f, 0.0f );
	input.m_Curve.AddPoint( 5.0f, 3.0f, CURVE_TANGENT_LINEAR, CURVE_TANGENT_LINEAR, 0.0f, 0.0f );
	input.m_Curve.AddPoint( 10.0f, 2.0f, CURVE_TANGENT_LINEAR, CURVE_TANGENT_LINEAR, 0.0f, 0.0f );
	ASSERT_TRUE( SetFloatInputMapType( &input, PF_MAP_TYPE_DIRECT ) );
	ASSERT_TRUE( SetFloatInputMapType( &input, PF_MAP_TYPE_CURVE ) );
	ASSERT_EQ( input.m_Curve.GetKeyCount(), 3 );
	EXPECT_FLOAT_EQ( input.m_Curve.GetKey( 1 ).y, 3.0f );
	EXPECT_FLOAT_EQ( input.m_Curve.m_vDomainMins.x, -5.0f );
	EXPECT_FALSE( SetFloatInputMapType( &input, PF_MAP_TYPE_CURVE ) );
}

TEST( FloatInputEditor, TypedFieldsWriteOnceAsOneStepAndNumbersThatDontParseAreZero )
{
	struct Edit_t
	{
		int m_nType;
		const char *m_pField;
		const char *m_pText;
		std::function<float( const CParticleFloatInput & )> m_fnValue;
		float m_flExpected;
	};
	const Edit_t edits[] = {
		{ PF_TYPE_LITERAL, "Literal", "12.5", []( const CParticleFloatInput &in ) { return in.m_flLiteralValue; }, 12.5f },
		{ PF_TYPE_LITERAL, "Literal", "lots", []( const CParticleFloatInput &in ) { return in.m_flLiteralValue; }, 0.0f },
		{ PF_TYPE_RANDOM_UNIFORM, "RandomMax", "7", []( const CParticleFloatInput &in ) { return in.m_flRandomMax; }, 7.0f },
		{ PF_TYPE_RANDOM_UNIFORM, "RandomSeed", "42", []( const CParticleFloatInput &in ) { return float( in.m_nRandomSeed ); }, 42.0f },
		{ PF_TYPE_CONTROL_POINT_SPEED, "ControlPoint", "64", []( const CParticleFloatInput &in ) { return float( in.m_nControlPoint ); }, 63.0f },
		{ PF_TYPE_CONTROL_POINT_SPEED, "ControlPoint", "abc", []( const CParticleFloatInput &in ) { return float( in.m_nControlPoint ); }, 0.0f },
		{ PF_TYPE_PARTICLE_DETAIL_LEVEL, "DetailHigh", "3", []( const CParticleFloatInput &in ) { return in.m_flLOD2; }, 3.0f },
		{ PF_TYPE_CLOSEST_CAMERA_DISTANCE, "CameraFallback", "250", []( const CParticleFloatInput &in ) { return in.m_flNoCameraFallback; }, 250.0f },
		{ PF_TYPE_PARTICLE_NOISE, "NoiseMax", "9", []( const CParticleFloatInput &in ) { return in.m_flNoiseOutputMax; }, 9.0f },
	};
	for ( const Edit_t &edit : edits )
	{
		CTestInputEditorHost host;
		CPerParticleFloatInput input;
		input.m_nType = ParticleFloatType_t( edit.m_nType );
		input.m_nControlPoint = 5;
		input.m_flLiteralValue = 1.0f;
		host.SetValue( input );
		auto pEditor = MakeInputEditor<CQPerParticleFloatInputEditor>( &host );
		CQSmartLineEdit *pField = pEditor->Part<CQSmartLineEdit>( edit.m_pField );
		ASSERT_NE( pField, nullptr ) << edit.m_pField;
		ASSERT_TRUE( pField->isVisibleTo( pEditor.get() ) ) << edit.m_pField;
		TypeInto( pField, edit.m_pText );
		EXPECT_FLOAT_EQ( edit.m_fnValue( host.GetValue<CPerParticleFloatInput>() ), edit.m_flExpected ) << edit.m_pField << " " << edit.m_pText;
		EXPECT_EQ( host.GetWriteCount(), 1 ) << edit.m_pField << " " << edit.m_pText;
		EXPECT_EQ( host.GetUndoSteps(), 1 );
		// Leaving the field after Return writes nothing more.
		pEditor->setFocus();
		QApplication::processEvents();
		EXPECT_EQ( host.GetWriteCount(), 1 ) << edit.m_pField;
	}
}

TEST( FloatInputEditor, RangeFieldsApplyTogetherWhenFocusLeavesThemAndTheCurveFollows )
{
	CTestInputEditorHost host;
	CPerParticleFloatInput input;
	input.m_nType = PF_TYPE_PARTICLE_AGE_NORMALIZED;
	SetFloatInputMapType( &input, PF_MAP_TYPE_CURVE );
	host.SetValue( input );
	auto pEditor = MakeInputEditor<CQPerParticleFloatInputEditor>( &host );
	ASSERT_EQ( pEditor->height(), 42 + 160 );
	CQSmartLineEdit *pInputHigh = pEditor->Part<CQSmartLineEdit>( "InputHigh" );
	CQSmartLineEdit *pOutputHigh = pEditor->Part<CQSmartLineEdit>( "OutputHigh" );
	pInputHigh->setFocus();
	pInputHigh->selectAll();
	QTest::keyClicks( pInputHigh, "2" );
	EXPECT_TRUE( pEditor->IsRangeDirty() );
	EXPECT_TRUE( pInputHigh->styleSheet().contains( QStringLiteral( "110, 100, 70" ) ) );
	EXPECT_TRUE( pEditor->IsBeingEdited() ) << "a refresh leaves typed range text alone";
	// Into another range field: nothing is applied yet.
	pOutputHigh->setFocus();
	pOutputHigh->selectAll();
	QTest::keyClicks( pOutputHigh, "5" );
	QApplication::processEvents();
	EXPECT_EQ( host.GetWriteCount(), 0 );
	// Somewhere else: all four at once, one write.
	pEditor->Part<CQSmartLineEdit>( "MultFactor" )->setFocus();
	pEditor->setFocus();
	QApplication::processEvents();
	ASSERT_EQ( host.GetWriteCount(), 1 );
	const CPerParticleFloatInput written = host.GetValue<CPerParticleFloatInput>();
	EXPECT_FLOAT_EQ( written.m_Curve.m_vDomainMaxs.x, 2.0f );
	EXPECT_FLOAT_EQ( written.m_Curve.m_vDomainMaxs.y, 5.0f );
	EXPECT_FALSE( pEditor->IsRangeDirty() );
	EXPECT_TRUE( pInputHigh->styleSheet().isEmpty() );
	EXPECT_FLOAT_EQ( pEditor->Part<CQParticleCurveEditor>( "Curve" )->GetCurve().m_vDomainMaxs.x, 2.0f );

	// The reverse button swaps the input range and writes.
	QTest::mouseClick( pEditor->Part<QToolButton>( "ReverseInputRange" ), Qt::LeftButton );
	EXPECT_EQ( host.GetWriteCount(), 2 );
	EXPECT_FLOAT_EQ( host.GetValue<CPerParticleFloatInput>().m_Curve.m_vDomainMins.x, 2.0f );
}

TEST( FloatInputEditor, ABiasDragIsOneStepAndFourPixelsAreNoDrag )
{
	CTestInputEditorHost host;
	CPerParticleFloatInput input;
	input.m_nType = PF_TYPE_RANDOM_BIASED;
	host.SetValue( input );
	auto pEditor = MakeInputEditor<CQPerParticleFloatInputEditor>( &host );
	CQBiasCurveView *pView = pEditor->Part<CQBiasEditor>( "RandomBias" )->GetCurveView();
	const QPoint start( 40, 19 );
	SendMouse( pView, QEvent::MouseButtonPress, start, Qt::LeftButton, Qt::LeftButton );
	SendMouse( pView, QEvent::MouseMove, start + QPoint( 2, 2 ), Qt::NoButton, Qt::LeftButton );
	EXPECT_FALSE( pView->IsDragging() );
	for ( int i = 1; i <= 4; ++i )
		SendMouse( pView, QEvent::MouseMove, start + QPoint( 10 * i, 10 * i ), Qt::NoButton, Qt::LeftButton );
	EXPECT_TRUE( pView->IsDragging() );
	EXPECT_EQ( host.GetWriteCount(), 0 ) << "the drag writes at its end";
	EXPECT_EQ( pEditor->Part<CQBiasEditor>( "RandomBias" )->GetParameterEdit()->text(), QStringLiteral( "-0.400" ) );
	SendMouse( pView, QEvent::MouseButtonRelease, start + QPoint( 40, 40 ), Qt::LeftButton, Qt::NoButton );
	ASSERT_EQ( host.GetWriteCount(), 1 );
	EXPECT_FLOAT_EQ( host.GetValue<CPerParticleFloatInput>().m_flBiasParameter, -0.4f );
	// Typed, the parameter is clamped to -1..1 and shown with three decimals.
	TypeInto( pEditor->Part<CQBiasEditor>( "RandomBias" )->GetParameterEdit(), "7" );
	EXPECT_FLOAT_EQ( host.GetValue<CPerParticleFloatInput>().m_flBiasParameter, 1.0f );
	EXPECT_EQ( pEditor->Part<CQBiasEditor>( "RandomBias" )->GetParameterEdit()->text(), QStringLiteral( "1.000" ) );
	EXPECT_EQ( host.GetUndoSteps(), 2 );
}

TEST( FloatInputEditor, TheNoisePreviewMovesOnlyLiveAndWithARate )
{
	CTestInputEditorHost host;
	CParticleCollectionFloatInput input;
	input.m_nType = PF_TYPE_PARTICLE_NOISE;
	host.SetValue( input );
	auto pEditor = MakeInputEditor<CQParticleCollectionFloatInput>( &host );
	// A system-wide noise is placed by a control point.
	EXPECT_TRUE( pEditor->Part<CQSmartLineEdit>( "ControlPoint" )->isVisibleTo( pEditor.get() ) );
	EXPECT_FALSE( pEditor->Part<QComboBox>( "Attribute" )->isVisibleTo( pEditor.get() ) );
	EXPECT_FALSE( pEditor->GetNoiseTimer()->isActive() ) << "no rate, nothing moves";
	EXPECT_EQ( pEditor->GetNoiseTimer()->interval(), 33 );

	CQVectorEdit *pRate = pEditor->Part<CQVectorEdit>( "NoiseRate" );
	TypeInto( pRate->GetComponentEdit( 0 ), "1" );
	ASSERT_EQ( host.GetWriteCount(), 1 );
	EXPECT_TRUE( pEditor->GetNoiseTimer()->isActive() );
	pEditor->OnNoiseImgTimerUpdate();
	pEditor->OnNoiseImgTimerUpdate();
	EXPECT_NEAR( pEditor->GetNoiseTime(), 0.066f, 1e-5f );
	// Swapping the range keeps the preview running where it is.
	QTest::mouseClick( pEditor->Part<QToolButton>( "ReverseNoiseRange" ), Qt::LeftButton );
	EXPECT_NEAR( pEditor->GetNoiseTime(), 0.066f, 1e-5f );
	EXPECT_FLOAT_EQ( host.GetValue<CParticleCollectionFloatInput>().m_flNoiseOutputMin, 1.0f );
	EXPECT_FLOAT_EQ( host.GetValue<CParticleCollectionFloatInput>().m_flNoiseOutputMax, 0.0f );
	// A static preview stands still.
	QComboBox *pMode = pEditor->Part<QComboBox>( "NoisePreviewMode" );
	pMode->setCurrentIndex( 0 );
	emit pMode->activated( 0 );
	EXPECT_FALSE( pEditor->GetNoiseTimer()->isActive() );
	pEditor->OnNoiseImgTimerUpdate();
	EXPECT_EQ( pEditor->GetNoiseTime(), 0.0f );
	EXPECT_FALSE( host.GetValue<CParticleCollectionFloatInput>().m_bNoiseImgPreviewLive );
	// The picture is the preview's: 48 high, grey levels of the noise.
	const QPixmap picture = pEditor->Part<QLabel>( "NoiseImage" )->pixmap( Qt::ReturnByValue );
	EXPECT_EQ( picture.height(), 48 );
}

TEST( FloatInputEditor, ANoiseSliderDragIsOneStep )
{
	CTestInputEditorHost host;
	CPerParticleFloatInput input;
	input.m_nType = PF_TYPE_PARTICLE_NOISE;
	host.SetValue( input );
	auto pEditor = MakeInputEditor<CQPerParticleFloatInputEditor>( &host );
	CQSlider *pSlider = pEditor->Part<CQSliderLineEditFloat>( "NoiseOffset" )->GetSlider();
	DragMouse( pSlider, QPoint( 10, pSlider->height() / 2 ), QPoint( pSlider->width() - 10, pSlider->height() / 2 ) );
	ASSERT_GE( host.GetWriteCount(), 2 );
	EXPECT_EQ( host.GetUndoSteps(), 1 );
	EXPECT_EQ( host.m_Writes.front(), PROPED_MODIFY_BEGIN );
	EXPECT_EQ( host.m_Writes.back(), PROPED_MODIFY_END );
	EXPECT_GT( host.GetValue<CPerParticleFloatInput>().m_flNoiseOffset, 100.0f );
}

TEST( FloatInputEditor, AttributeCombosOfferTheirAttributesAndInitialFormsSayInitial )
{
	CTestInputEditorHost host;
	CPerParticleFloatInput input;
	input.m_nType = PF_TYPE_PARTICLE_INITIAL_FLOAT;
	input.m_nScalarAttribute = 7;
	host.SetValue( input );
	auto pEditor = MakeInputEditor<CQPerParticleFloatInputEditor>( &host );
	QComboBox *pCombo = pEditor->Part<QComboBox>( "Attribute" );
	EXPECT_EQ( pCombo->currentText(), QStringLiteral( "Initial Alpha" ) );
	for ( int i = 0; i < pCombo->count(); ++i )
	{
		EXPECT_TRUE( pCombo->itemText( i ).startsWith( QStringLiteral( "Initial " ) ) );
		EXPECT_TRUE( FLOAT_INPUT_FLOAT_ATTRIBUTES & ( uint64_t( 1 ) << pCombo->itemData( i ).toInt() ) );
	}
	const int nRadius = pCombo->findData( 3 );
	ASSERT_GE( nRadius, 0 );
	pCombo->setCurrentIndex( nRadius );
	emit pCombo->activated( nRadius );
	EXPECT_EQ( host.GetValue<CPerParticleFloatInput>().m_nScalarAttribute, 3 );
	EXPECT_EQ( host.GetWriteCount(), 1 );
}

TEST( FloatInputEditor, ControlPointTextIsClampedToTheControlPointNumbers )
{
	for ( auto [ pText, nExpected ] : std::initializer_list<std::pair<const char *, int>>{
			  { "64", 63 }, { "63", 63 }, { "12", 12 }, { "0", 0 }, { "-1", 0 }, { "abc", 0 }, { "", 0 }, { "7x", 7 } } )
		EXPECT_EQ( ParseControlPointNumber( pText ), nExpected ) << pText;
}
