#include "tools/zol/editor/inputs/particlefloatinputeditor.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QSet>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include <cmath>

#include "particleslib/particlenoisepreview.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "tools/widgets/curveeditorwidget.h"
#include "tools/widgets/elidedcheckbox.h"
#include "tools/widgets/sliderlineeditfloat.h"
#include "tools/widgets/smartlineedit.h"
#include "tools/widgets/vectoredit.h"
#include "tools/zol/editor/inputs/biaseditor.h"
#include "tools/zol/editor/inputs/particlecurveeditor.h"

namespace
{
// A remap input's page starts a little down, under its label's line.
constexpr uint32_t FLOAT_PAGE_REMAP_PAD = 1u << 31;
constexpr int REMAP_PAD_HEIGHT = 12;
// The widest a noise value stands; in a narrower column it gives way down to its minimum.
constexpr int NOISE_VALUE_WIDTH = 160;
constexpr int NOISE_RANGE_EDIT_WIDTH = 66;
const QString RANGE_DIRTY_STYLE = QStringLiteral( "background-color: rgb(110, 100, 70);" );

QIcon IconOf( const char *pFile )
{
	return CQParticleInputEditorBase::ZolIcon( QString::fromUtf8( pFile ) );
}

void FitNoiseValue( QWidget *pWidget, int nMaxWidth = NOISE_VALUE_WIDTH )
{
	pWidget->setMaximumWidth( nMaxWidth );
	pWidget->setSizePolicy( QSizePolicy::Expanding, pWidget->sizePolicy().verticalPolicy() );
}

// A combo box that opens wider than it stands.
QComboBox *MakeNarrowCombo( QWidget *pParent, int nWidth, int nPopupWidth )
{
	auto *pCombo = new QComboBox( pParent );
	pCombo->setFixedWidth( nWidth );
	pCombo->setIconSize( QSize( 16, 16 ) );
	if ( nPopupWidth > 0 )
		pCombo->view()->setMinimumWidth( nPopupWidth );
	return pCombo;
}

template <typename C> void LoadAs( CQParticleFloatInputEditor *, CParticleFloatInput *pOut, const KeyValues3 &value )
{
	C input;
	CUtlString error;
	if ( LoadKV3ObjectInPlace( &input, &value, &error ) )
		*pOut = input;
	else
		*pOut = C();
}
} // namespace

CQParticleFloatInputEditor::CQParticleFloatInputEditor( QWidget *pParent, int nKind, bool bRenderer )
	: CQParticleInputEditorBase( pParent ), m_nKind( nKind ), m_bRenderer( bRenderer )
{
	if ( m_nKind == FLOAT_INPUT_EDITOR_REMAP )
		m_Input.m_nType = PF_TYPE_INVALID;
	m_pNoiseTimer = new QTimer( this );
	m_pNoiseTimer->setInterval( FLOAT_INPUT_NOISE_TIMER_MS );
	connect( m_pNoiseTimer, &QTimer::timeout, this, &CQParticleFloatInputEditor::OnNoiseImgTimerUpdate );
	BuildWidgets();
	LayOut();
}

CQParticleFloatInputEditor::~CQParticleFloatInputEditor()
{
	m_pNoiseTimer->stop();
}

template <typename W> W *CQParticleFloatInputEditor::OnPage( uint32_t nPages, W *pWidget, const char *pName )
{
	if ( pName )
		pWidget->setObjectName( QString::fromLatin1( pName ) );
	static_cast<QBoxLayout *>( m_pCurrentRow->layout() )->addWidget( pWidget );
	m_Rows.last().m_Widgets.append( pWidget );
	for ( uint32_t nBit = 1; nBit; nBit <<= 1 )
	{
		if ( nPages & nBit )
			m_Pages[ nBit ].append( pWidget );
	}
	return pWidget;
}

QWidget *CQParticleFloatInputEditor::AddRow( int nHeight )
{
	auto *pRow = new QWidget( this );
	pRow->setFixedHeight( nHeight );
	auto *pLayout = new QHBoxLayout( pRow );
	pLayout->setContentsMargins( 0, 0, 0, 0 );
	pLayout->setSpacing( 3 );
	m_pLayout->addWidget( pRow );
	m_Rows.append( Row_t{ pRow, {} } );
	m_pCurrentRow = pRow;
	return pRow;
}

CQSliderLineEditFloat *CQParticleFloatInputEditor::MakeSlider( double flMin, double flMax, bool bHardLimits, bool bIntegral )
{
	auto *pSlider = new CQSliderLineEditFloat( this );
	pSlider->SetSoftRange( flMin, flMax );
	if ( bHardLimits )
		pSlider->SetHardLimits( true, flMin, true, flMax );
	pSlider->SetIntegral( bIntegral );
	FitNoiseValue( pSlider );
	return pSlider;
}

void CQParticleFloatInputEditor::ConnectSlider( CQSliderLineEditFloat *pSlider, void ( CQParticleFloatInputEditor::*pfnSlot )( float ) )
{
	connect( pSlider, &CQSliderLineEditFloat::ValueChanged, this, [ this, pfnSlot ]( double flValue ) { ( this->*pfnSlot )( float( flValue ) ); } );
	// A slider drag, or a stay in its field, is one step.
	connect( pSlider, &CQSliderLineEditFloat::GestureStarted, this, [ this ] {
		if ( IsInline() )
			emit InlineGestureStarted();
		else
			InitIncrementalOperation();
	} );
	connect( pSlider, &CQSliderLineEditFloat::GestureEnded, this, [ this ] {
		if ( IsInline() )
			emit InlineGestureEnded();
		else
			TermIncrementalOperation();
	} );
}

void CQParticleFloatInputEditor::BuildWidgets()
{
	m_pLayout = new QVBoxLayout( this );
	m_pLayout->setContentsMargins( 0, 0, 0, 0 );
	m_pLayout->setSpacing( 0 );

	AddRow( REMAP_PAD_HEIGHT );
	OnPage( FLOAT_PAGE_REMAP_PAD, new QWidget( this ) );

	// The type's first row.
	AddRow( FLOAT_INPUT_ROW_HEIGHT );
	m_pTypeButton = OnPage( FLOAT_PAGE_TYPE_BUTTON, MakeTypeButton( this ), "TypeButton" );
	OnPage( FLOAT_PAGE_MULTI_SELECT, MakeLabel( QStringLiteral( "(Multiple-select not supported)" ), this ) );
	m_pLiteralEdit = OnPage( FLOAT_PAGE_LITERAL, MakeNumberEdit( this, false ), "Literal" );
	m_pNamedValueCombo = OnPage( FLOAT_PAGE_NAMED_VALUE, new QComboBox( this ), "NamedValue" );
	m_pNamedValueCombo->setMinimumWidth( 120 );
	m_pTypeLabel = OnPage( FLOAT_PAGE_TYPE_LABEL, MakeLabel( QString(), this ), "TypeLabel" );
	m_pReverseOrder = OnPage( FLOAT_PAGE_REVERSE, new QCheckBox( QStringLiteral( "Reverse Order" ), this ), "ReverseOrder" );
	m_pReverseOrder->setFixedHeight( 22 );
	OnPage( FLOAT_PAGE_RANDOM, MakeLabel( QStringLiteral( "Random:" ), this ) );
	m_pRandomMin = OnPage( FLOAT_PAGE_RANDOM, MakeNumberEdit( this, false, 52 ), "RandomMin" );
	OnPage( FLOAT_PAGE_RANDOM, MakeLabel( QStringLiteral( " - " ), this ) );
	m_pRandomMax = OnPage( FLOAT_PAGE_RANDOM, MakeNumberEdit( this, false, 52 ), "RandomMax" );
	m_pRandomMode = OnPage( FLOAT_PAGE_RANDOM, MakeNarrowCombo( this, 40, 120 ), "RandomMode" );
	m_pRandomMode->addItem( IconOf( "random_mode_constant.png" ), QStringLiteral( "Constant" ) );
	m_pRandomMode->addItem( IconOf( "random_mode_varying.png" ), QStringLiteral( "Varying" ) );
	OnPage( FLOAT_PAGE_SNAPSHOT, MakeLabel( QStringLiteral( "Subset" ), this ) );
	m_pSubsetEdit = OnPage( FLOAT_PAGE_SNAPSHOT, new CQSmartLineEdit( this ), "Subset" );
	m_pCPLabel = OnPage( FLOAT_PAGE_CONTROL_POINT | FLOAT_PAGE_CP_CHANGE_TIME, MakeLabel( QStringLiteral( "CP#" ), this ), "CPLabel" );
	m_pCPEdit = OnPage( FLOAT_PAGE_CONTROL_POINT | FLOAT_PAGE_CP_CHANGE_TIME, MakeNumberEdit( this, true, 40 ), "ControlPoint" );
	m_pCPEdit->SetMinimum( 0 );
	m_pCPEdit->SetMaximum( 63 );
	OnPage( FLOAT_PAGE_NOISE_ATTRIBUTE, MakeLabel( QStringLiteral( "Noise Input Vector:" ), this ) );
	m_pAttributeCombo = OnPage( FLOAT_PAGE_ATTRIBUTE | FLOAT_PAGE_NOISE_ATTRIBUTE, new QComboBox( this ), "Attribute" );
	m_pComponentCombo = OnPage( FLOAT_PAGE_COMPONENT, new QComboBox( this ), "Component" );
	m_pComponentCombo->addItems( { QStringLiteral( ".X" ), QStringLiteral( ".Y" ), QStringLiteral( ".Z" ) } );
	m_pComponentCombo->setMaximumWidth( 40 );
	OnPage( FLOAT_PAGE_CAMERA_FALLBACK, MakeLabel( QStringLiteral( "No Camera Fallback Value" ), this ) );
	m_pFallbackEdit = OnPage( FLOAT_PAGE_CAMERA_FALLBACK, MakeNumberEdit( this, false ), "CameraFallback" );
	OnPage( FLOAT_PAGE_DETAIL_LEVEL, MakeLabel( QStringLiteral( "Low:" ), this ) );
	m_pDetailEdits[ 0 ] = OnPage( FLOAT_PAGE_DETAIL_LEVEL, MakeNumberEdit( this, false, 120 ), "DetailLow" );
	static_cast<QBoxLayout *>( m_pCurrentRow->layout() )->addStretch( 1 );

	// Randoms' second row, and a biased random's curve.
	AddRow( FLOAT_INPUT_ROW_HEIGHT );
	// In a narrow column the box cuts its text with "..." first, never the seed field.
	m_pRandomSignFlip = OnPage( FLOAT_PAGE_RANDOM, new CQElidedCheckBox( QStringLiteral( "Randomly Flip Sign" ), this ), "RandomSignFlip" );
	m_pRandomSignFlip->setFixedHeight( 22 );
	OnPage( FLOAT_PAGE_RANDOM, MakeLabel( QStringLiteral( "Random Seed:" ), this ) );
	m_pRandomSeed = OnPage( FLOAT_PAGE_RANDOM, MakeNumberEdit( this, true ), "RandomSeed" );
	m_pRandomSeed->setPlaceholderText( QStringLiteral( "-1" ) );
	static_cast<QBoxLayout *>( m_pCurrentRow->layout() )->addStretch( 1 );
	AddRow( FLOAT_INPUT_BIAS_HEIGHT );
	m_pRandomBias = OnPage( FLOAT_PAGE_RANDOM_BIAS, new CQBiasEditor( this ), "RandomBias" );

	// The other detail levels.
	const char *const detailNames[ 3 ][ 2 ] = { { "Medium:", "DetailMedium" }, { "High:", "DetailHigh" }, { "Ultra:", "DetailUltra" } };
	for ( int i = 0; i < 3; ++i )
	{
		AddRow( FLOAT_INPUT_ROW_HEIGHT );
		OnPage( FLOAT_PAGE_DETAIL_LEVEL, MakeLabel( QString::fromLatin1( detailNames[ i ][ 0 ] ), this ) )->setFixedWidth( 44 );
		m_pDetailEdits[ i + 1 ] = OnPage( FLOAT_PAGE_DETAIL_LEVEL, MakeNumberEdit( this, false, 120 ), detailNames[ i ][ 1 ] );
		static_cast<QBoxLayout *>( m_pCurrentRow->layout() )->addStretch( 1 );
	}

	// The renderer's camera types.
	AddRow( 20 );
	m_pBBoxCheck = OnPage( FLOAT_PAGE_CAMERA_BBOX, new QCheckBox( QStringLiteral( "Use BBox Center, not CP" ), this ), "UseBBoxCenter" );

	// Noise: labels on the left, values 160 wide.
	// The labels stand in a column as wide as the longest of them.
	const int nNoiseLabelWidth = fontMetrics().horizontalAdvance( QStringLiteral( "Turbulence Freq Scale:" ) ) + 6;
	auto noiseRow = [ this, nNoiseLabelWidth ]( const char *pLabel ) {
		AddRow( FLOAT_INPUT_ROW_HEIGHT );
		QLabel *pLabelWidget = OnPage( FLOAT_PAGE_NOISE, MakeLabel( QString::fromLatin1( pLabel ), this ) );
		pLabelWidget->setFixedWidth( nNoiseLabelWidth );
	};
	auto endRow = [ this ] { static_cast<QBoxLayout *>( m_pCurrentRow->layout() )->addStretch( 1 ); };
	noiseRow( "Noise Range:" );
	m_pNoiseMin = OnPage( FLOAT_PAGE_NOISE, MakeNumberEdit( this, false ), "NoiseMin" );
	FitNoiseValue( m_pNoiseMin, NOISE_RANGE_EDIT_WIDTH );
	QToolButton *pReverseNoise = OnPage( FLOAT_PAGE_NOISE, MakeTypeButton( this ), "ReverseNoiseRange" );
	pReverseNoise->setIcon( IconOf( "reverse_values.png" ) );
	pReverseNoise->setToolTip( QStringLiteral( "Reverse Noise Range" ) );
	m_pNoiseMax = OnPage( FLOAT_PAGE_NOISE, MakeNumberEdit( this, false ), "NoiseMax" );
	FitNoiseValue( m_pNoiseMax, NOISE_RANGE_EDIT_WIDTH );
	endRow();
	noiseRow( "Noise Change Rate:" );
	m_pNoiseRate = OnPage( FLOAT_PAGE_NOISE, new CQVectorEdit( this ), "NoiseRate" );
	FitNoiseValue( m_pNoiseRate );
	endRow();
	noiseRow( "Noise Type:" );
	m_pNoiseType = OnPage( FLOAT_PAGE_NOISE, new QComboBox( this ), "NoiseType" );
	m_pNoiseType->addItems( { QStringLiteral( "Perlin" ), QStringLiteral( "Simplex" ), QStringLiteral( "Worley" ) } );
	FitNoiseValue( m_pNoiseType );
	endRow();
	noiseRow( "Noise Frequency:" );
	m_pNoiseScale = OnPage( FLOAT_PAGE_NOISE, MakeSlider( 0.001, 2.0, false, false ), "NoiseFrequency" );
	endRow();
	noiseRow( "Noise Offset:" );
	m_pNoiseOffset = OnPage( FLOAT_PAGE_NOISE, MakeSlider( -1000.0, 1000.0, false, false ), "NoiseOffset" );
	endRow();
	noiseRow( "Noise Octaves:" );
	m_pNoiseOctaves = OnPage( FLOAT_PAGE_NOISE, MakeSlider( 1.0, 4.0, true, true ), "NoiseOctaves" );
	endRow();
	noiseRow( "Noise Turbulence:" );
	m_pNoiseTurbulence = OnPage( FLOAT_PAGE_NOISE, new QComboBox( this ), "NoiseTurbulence" );
	m_pNoiseTurbulence->addItems( { QStringLiteral( "None" ), QStringLiteral( "Highlight" ), QStringLiteral( "Feedback" ), QStringLiteral( "Loopy" ),
									QStringLiteral( "Contrast" ), QStringLiteral( "Alternate" ) } );
	FitNoiseValue( m_pNoiseTurbulence );
	endRow();
	noiseRow( "Turbulence Freq Scale:" );
	m_pNoiseTurbulenceScale = OnPage( FLOAT_PAGE_NOISE, MakeSlider( -5.0, 5.0, false, false ), "TurbulenceScale" );
	endRow();
	noiseRow( "Turbulence Mix:" );
	m_pNoiseTurbulenceMix = OnPage( FLOAT_PAGE_NOISE, MakeSlider( -2.0, 2.0, false, false ), "TurbulenceMix" );
	endRow();
	noiseRow( "Noise Modifier:" );
	m_pNoiseModifier = OnPage( FLOAT_PAGE_NOISE, new QComboBox( this ), "NoiseModifier" );
	m_pNoiseModifier->addItems( { QStringLiteral( "None" ), QStringLiteral( "Zebra" ), QStringLiteral( "Sparse" ), QStringLiteral( "Blobby" ) } );
	FitNoiseValue( m_pNoiseModifier );
	endRow();
	AddRow( FLOAT_INPUT_ROW_HEIGHT );
	m_pNoisePreviewMode = OnPage( FLOAT_PAGE_NOISE, new QComboBox( this ), "NoisePreviewMode" );
	m_pNoisePreviewMode->addItems( { QStringLiteral( "Static Preview" ), QStringLiteral( "Live Preview" ) } );
	m_pNoisePreviewMode->setMaximumWidth( nNoiseLabelWidth - 3 );
	OnPage( FLOAT_PAGE_NOISE, MakeLabel( QStringLiteral( "Preview Scale:" ), this ) );
	m_pNoisePreviewScale = OnPage( FLOAT_PAGE_NOISE, MakeSlider( 0.1, 4.0, false, false ), "NoisePreviewScale" );
	endRow();
	AddRow( FLOAT_INPUT_NOISE_IMAGE_HEIGHT );
	m_pNoiseImage = OnPage( FLOAT_PAGE_NOISE, MakeLabel( QString(), this ), "NoiseImage" );
	m_pNoiseImage->setFixedHeight( FLOAT_INPUT_NOISE_IMAGE_HEIGHT );
	m_pNoiseImage->setMinimumWidth( 16 );
	m_pNoiseImage->setSizePolicy( QSizePolicy::Ignored, QSizePolicy::Fixed );
	QPixmap grey( 16, FLOAT_INPUT_NOISE_IMAGE_HEIGHT );
	grey.fill( QColor( 128, 128, 128 ) );
	m_pNoiseImage->setPixmap( grey );
	m_pNoiseImage->setScaledContents( true );

	// The map stage.
	AddRow( FLOAT_INPUT_MAP_ROW_HEIGHT );
	m_pMapButton = OnPage( FLOAT_PAGE_MAP_BUTTON, MakeTypeButton( this ), "MapButton" );
	OnPage( FLOAT_PAGE_MULTIPLY, MakeLabel( QStringLiteral( "Multiply By:" ), this ) );
	m_pMultEdit = OnPage( FLOAT_PAGE_MULTIPLY, MakeNumberEdit( this, false ), "MultFactor" );
	// The input and output fields stand one above the other.
	QLabel *pInputRangeLabel = OnPage( FLOAT_PAGE_INPUT_RANGE, MakeLabel( QStringLiteral( "Input Range:" ), this ) );
	const int nRangeLabelWidth = pInputRangeLabel->fontMetrics().horizontalAdvance( QStringLiteral( "Output Range:" ) ) + 4;
	pInputRangeLabel->setFixedWidth( nRangeLabelWidth );
	m_pRangeEdits[ 0 ] = OnPage( FLOAT_PAGE_INPUT_RANGE, MakeNumberEdit( this, false ), "InputLow" );
	QToolButton *pReverseInput = OnPage( FLOAT_PAGE_INPUT_RANGE, MakeTypeButton( this ), "ReverseInputRange" );
	pReverseInput->setIcon( IconOf( "reverse_values.png" ) );
	pReverseInput->setToolTip( QStringLiteral( "Reverse Input Range" ) );
	m_pRangeEdits[ 1 ] = OnPage( FLOAT_PAGE_INPUT_RANGE, MakeNumberEdit( this, false ), "InputHigh" );
	m_pInputMode = OnPage( FLOAT_PAGE_INPUT_RANGE, MakeNarrowCombo( this, 40, 120 ), "InputMode" );
	m_pInputMode->addItem( IconOf( "input_mode_clamped.png" ), QStringLiteral( "Clamped" ) );
	m_pInputMode->addItem( IconOf( "input_mode_looped.png" ), QStringLiteral( "Looping" ) );
	OnPage( FLOAT_PAGE_NOTCHED, MakeLabel( QStringLiteral( "Notched Range:" ), this ) );
	m_pNotchEdits[ 0 ] = OnPage( FLOAT_PAGE_NOTCHED, MakeNumberEdit( this, false ), "NotchLow" );
	OnPage( FLOAT_PAGE_NOTCHED, MakeLabel( QStringLiteral( " - " ), this ) );
	m_pNotchEdits[ 1 ] = OnPage( FLOAT_PAGE_NOTCHED, MakeNumberEdit( this, false ), "NotchHigh" );
	OnPage( FLOAT_PAGE_ROUND, MakeLabel( QStringLiteral( "Round Type:" ), this ) );
	m_pRoundType = OnPage( FLOAT_PAGE_ROUND, new QComboBox( this ), "RoundType" );
	m_pRoundType->addItem( IconOf( "round_type_nearest.png" ), QStringLiteral( "Round Nearest" ) );
	m_pRoundType->addItem( IconOf( "round_type_floor.png" ), QStringLiteral( "Round Down" ) );
	m_pRoundType->addItem( IconOf( "round_type_ceil.png" ), QStringLiteral( "Round Up" ) );
	m_pRoundType->setMaximumWidth( 120 );
	endRow();
	AddRow( FLOAT_INPUT_MAP_ROW_HEIGHT );
	static_cast<QBoxLayout *>( m_pCurrentRow->layout() )->addSpacing( TYPE_BUTTON_SIZE + 3 );
	OnPage( FLOAT_PAGE_OUTPUT_RANGE, MakeLabel( QStringLiteral( "Output Range:" ), this ) )->setFixedWidth( nRangeLabelWidth );
	m_pRangeEdits[ 2 ] = OnPage( FLOAT_PAGE_OUTPUT_RANGE, MakeNumberEdit( this, false ), "OutputLow" );
	QToolButton *pReverseOutput = OnPage( FLOAT_PAGE_OUTPUT_RANGE, MakeTypeButton( this ), "ReverseOutputRange" );
	pReverseOutput->setIcon( IconOf( "reverse_values.png" ) );
	pReverseOutput->setToolTip( QStringLiteral( "Reverse Output Range" ) );
	m_pRangeEdits[ 3 ] = OnPage( FLOAT_PAGE_OUTPUT_RANGE, MakeNumberEdit( this, false ), "OutputHigh" );
	// Keeps the output fields under the input fields.
	OnPage( FLOAT_PAGE_OUTPUT_RANGE, new QWidget( this ) )->setFixedWidth( 40 );
	OnPage( FLOAT_PAGE_NOTCHED, MakeLabel( QStringLiteral( "Value Outside Range:" ), this ) );
	m_pNotchEdits[ 2 ] = OnPage( FLOAT_PAGE_NOTCHED, MakeNumberEdit( this, false, 80 ), "NotchOutside" );
	endRow();
	AddRow( FLOAT_INPUT_MAP_ROW_HEIGHT );
	static_cast<QBoxLayout *>( m_pCurrentRow->layout() )->addSpacing( TYPE_BUTTON_SIZE + 3 );
	OnPage( FLOAT_PAGE_NOTCHED, MakeLabel( QStringLiteral( "Value Inside Range:" ), this ) );
	m_pNotchEdits[ 3 ] = OnPage( FLOAT_PAGE_NOTCHED, MakeNumberEdit( this, false, 80 ), "NotchInside" );
	endRow();
	AddRow( FLOAT_INPUT_BIAS_HEIGHT );
	m_pMapBias = OnPage( FLOAT_PAGE_MAP_BIAS, new CQBiasEditor( this ), "MapBias" );
	AddRow( FLOAT_INPUT_CURVE_HEIGHT );
	m_pCurve = OnPage( FLOAT_PAGE_CURVE, new CQParticleCurveEditor( this ), "Curve" );

	// The widgets' signals, connected once: the slots write only while a host or an owner
	// is there.
	connect( m_pTypeButton, &QToolButton::clicked, this, &CQParticleFloatInputEditor::OnTypeButtonClicked );
	connect( m_pMapButton, &QToolButton::clicked, this, &CQParticleFloatInputEditor::OnMapButtonClicked );
	connect( m_pLiteralEdit, &QLineEdit::editingFinished, this, &CQParticleFloatInputEditor::OnLiteralValueEdited );
	connect( m_pLiteralEdit, &CQSmartLineEdit::DragEnded, this, &CQParticleFloatInputEditor::OnLiteralValueEdited );
	connect( m_pNamedValueCombo, &QComboBox::textActivated, this, &CQParticleFloatInputEditor::OnNamedValueEdited );
	// A typed name counts when the field is left or Return is pressed.
	m_pNamedValueCombo->setEditable( true );
	connect( m_pNamedValueCombo->lineEdit(), &QLineEdit::editingFinished, this, [ this ] { OnNamedValueEdited( m_pNamedValueCombo->currentText() ); } );
	connect( m_pNamedValueCombo, QOverload<int>::of( &QComboBox::highlighted ), this, &CQParticleFloatInputEditor::OnNamedValueHighlighted );
	for ( CQSmartLineEdit *pEdit : { m_pRandomMin, m_pRandomMax } )
		connect( pEdit, &QLineEdit::editingFinished, this, &CQParticleFloatInputEditor::OnRandomMinMaxEdited );
	connect( m_pRandomSeed, &QLineEdit::editingFinished, this, &CQParticleFloatInputEditor::OnRandomSeedEdited );
	connect( m_pRandomMode, QOverload<int>::of( &QComboBox::activated ), this, &CQParticleFloatInputEditor::OnRandomModeChanged );
	connect( m_pRandomSignFlip, &QCheckBox::clicked, this, &CQParticleFloatInputEditor::OnRandomSignFlipChanged );
	connect( m_pReverseOrder, &QCheckBox::clicked, this, &CQParticleFloatInputEditor::OnReverseOrderChanged );
	connect( m_pCPEdit, &QLineEdit::editingFinished, this, &CQParticleFloatInputEditor::OnCPNumberEdited );
	connect( m_pMultEdit, &QLineEdit::editingFinished, this, &CQParticleFloatInputEditor::OnMultFactorEdited );
	connect( m_pFallbackEdit, &QLineEdit::editingFinished, this, &CQParticleFloatInputEditor::OnNoCameraFallbackValueEdited );
	connect( m_pBBoxCheck, &QCheckBox::clicked, this, &CQParticleFloatInputEditor::OnCamUseBBoxChanged );
	for ( CQSmartLineEdit *pEdit : m_pDetailEdits )
		connect( pEdit, &QLineEdit::editingFinished, this, &CQParticleFloatInputEditor::OnDetailLevelEdited );
	connect( m_pNoiseMin, &QLineEdit::editingFinished, this, &CQParticleFloatInputEditor::OnNoiseMinEdited );
	connect( m_pNoiseMax, &QLineEdit::editingFinished, this, &CQParticleFloatInputEditor::OnNoiseMaxEdited );
	connect( pReverseNoise, &QToolButton::clicked, this, &CQParticleFloatInputEditor::OnReverseNoiseInputClicked );
	connect( m_pNoiseRate, &CQVectorEdit::VectorEdited, this, &CQParticleFloatInputEditor::OnNoiseRateEdited );
	connect( m_pNoiseType, QOverload<int>::of( &QComboBox::activated ), this, &CQParticleFloatInputEditor::OnNoiseTypeChanged );
	connect( m_pNoiseTurbulence, QOverload<int>::of( &QComboBox::activated ), this, &CQParticleFloatInputEditor::OnNoiseTurbulenceChanged );
	connect( m_pNoiseModifier, QOverload<int>::of( &QComboBox::activated ), this, &CQParticleFloatInputEditor::OnNoiseModifierChanged );
	connect( m_pNoisePreviewMode, QOverload<int>::of( &QComboBox::activated ), this, &CQParticleFloatInputEditor::OnNoiseImgPreviewChanged );
	ConnectSlider( m_pNoiseScale, &CQParticleFloatInputEditor::OnNoiseScaleSliderEdited );
	ConnectSlider( m_pNoiseOffset, &CQParticleFloatInputEditor::OnNoiseOffsetSliderEdited );
	ConnectSlider( m_pNoiseOctaves, &CQParticleFloatInputEditor::OnNoiseOctaveSliderEdited );
	ConnectSlider( m_pNoiseTurbulenceScale, &CQParticleFloatInputEditor::OnNoiseTurbulenceScaleSliderEdited );
	ConnectSlider( m_pNoiseTurbulenceMix, &CQParticleFloatInputEditor::OnNoiseTurbulenceMixSliderEdited );
	ConnectSlider( m_pNoisePreviewScale, &CQParticleFloatInputEditor::OnNoiseImgPreviewScaleSliderEdited );
	connect( m_pInputMode, QOverload<int>::of( &QComboBox::activated ), this, &CQParticleFloatInputEditor::OnInputModeChanged );
	connect( pReverseInput, &QToolButton::clicked, this, &CQParticleFloatInputEditor::OnReverseInputClicked );
	connect( pReverseOutput, &QToolButton::clicked, this, &CQParticleFloatInputEditor::OnReverseOutputClicked );
	connect( m_pSubsetEdit, &QLineEdit::editingFinished, this, &CQParticleFloatInputEditor::OnSnapshotSubsetEdited );
	connect( m_pSubsetEdit, &CQSmartLineEdit::FocusOut, this, &CQParticleFloatInputEditor::OnSnapshotSubsetEdited );
	for ( CQSmartLineEdit *pEdit : m_pRangeEdits )
	{
		connect( pEdit, &QLineEdit::textEdited, this, [ this ] { MarkRangeUI( true ); } );
		connect( pEdit, &QLineEdit::returnPressed, this, &CQParticleFloatInputEditor::ApplyRange );
		connect( pEdit, &CQSmartLineEdit::FocusOut, this, &CQParticleFloatInputEditor::OnRangeFocusChanged );
	}
	for ( CQBiasEditor *pBias : { m_pRandomBias, m_pMapBias } )
	{
		connect( pBias, &CQBiasEditor::BiasParameterChanged, this, &CQParticleFloatInputEditor::OnBiasParameterChanged );
		connect( pBias, &CQBiasEditor::BiasTypeChanged, this, &CQParticleFloatInputEditor::OnBiasTypeChanged );
	}
	connect( m_pCurve, &CQParticleCurveEditor::CurveEdited, this, &CQParticleFloatInputEditor::OnCurveEdited );
	connect( m_pAttributeCombo, QOverload<int>::of( &QComboBox::activated ), this, &CQParticleFloatInputEditor::OnAttributeIndexChanged );
	connect( m_pComponentCombo, QOverload<int>::of( &QComboBox::activated ), this, &CQParticleFloatInputEditor::OnVectorComponentIndexChanged );
	for ( CQSmartLineEdit *pEdit : m_pNotchEdits )
		connect( pEdit, &QLineEdit::editingFinished, this, &CQParticleFloatInputEditor::OnNotchedChanged );
	connect( m_pRoundType, QOverload<int>::of( &QComboBox::activated ), this, &CQParticleFloatInputEditor::OnRoundTypeChanged );
}

const QList<QWidget *> &CQParticleFloatInputEditor::GetPageWidgets( FloatInputPage_t ePage ) const
{
	static const QList<QWidget *> s_None;
	auto it = m_Pages.find( ePage );
	return it == m_Pages.end() ? s_None : it.value();
}

//-----------------------------------------------------------------------------
// Layout and values
//-----------------------------------------------------------------------------

int CQParticleFloatInputEditor::GetPreferredHeight() const
{
	return GetFloatInputEditorHeight( m_Input, m_nKind, IsInline() ? 1 : qMax( 1, GetTargetCount() ) );
}

void CQParticleFloatInputEditor::LayOut()
{
	const int nInstances = IsInline() ? 1 : qMax( 1, GetTargetCount() );
	m_nShownPages = GetFloatInputPages( m_Input, m_nKind, nInstances );
	if ( m_nKind == FLOAT_INPUT_EDITOR_REMAP && nInstances == 1 )
		m_nShownPages |= FLOAT_PAGE_REMAP_PAD;
	QSet<QWidget *> shown;
	for ( auto it = m_Pages.begin(); it != m_Pages.end(); ++it )
	{
		if ( m_nShownPages & it.key() )
		{
			for ( QWidget *pWidget : it.value() )
				shown.insert( pWidget );
		}
	}
	for ( const Row_t &row : m_Rows )
	{
		bool bRowShown = false;
		for ( QWidget *pWidget : row.m_Widgets )
		{
			const bool bShown = shown.contains( pWidget );
			pWidget->setVisible( bShown );
			bRowShown |= bShown;
		}
		row.m_pRow->setVisible( bRowShown );
	}

	const int nType = m_Input.m_nType;
	m_pTypeButton->setIcon( IconOf( GetParticleFloatTypeIcon( nType ) ) );
	m_pTypeButton->setToolTip( QString::fromUtf8( GetParticleFloatTypeMenuLabel( nType ) ) );
	m_pTypeLabel->setText( QString::fromUtf8( GetParticleFloatTypeMenuLabel( nType ) ) );
	m_pMapButton->setIcon( IconOf( GetParticleFloatMapTypeIcon( m_Input.m_nMapType ) ) );
	m_pMapButton->setToolTip( QString::fromUtf8( GetParticleFloatMapTypeMenuLabel( m_Input.m_nMapType ) ) );
	m_pCPLabel->setText( nType == PF_TYPE_CONTROL_POINT_CHANGE_AGE ? QStringLiteral( "Last Changed Time CP#" ) : QStringLiteral( "CP#" ) );
	FillAttributeCombo();

	StopNoiseImage();
	setFixedHeight( GetFloatInputEditorHeight( m_Input, m_nKind, nInstances ) );
	m_nLaidOutType = m_Input.m_nType;
	m_nLaidOutMap = m_Input.m_nMapType;
	m_nLaidOutInstances = nInstances;
	MarkRangeUI( false );
	ShowValues();
}

void CQParticleFloatInputEditor::FillAttributeCombo()
{
	const int nType = m_Input.m_nType;
	const bool bNoise = nType == PF_TYPE_PARTICLE_NOISE;
	const QSignalBlocker block( m_pAttributeCombo );
	m_pAttributeCombo->clear();
	if ( !bNoise && !( m_nShownPages & FLOAT_PAGE_ATTRIBUTE ) )
		return;
	const uint64_t nMask = bNoise ? FLOAT_INPUT_VECTOR_ATTRIBUTES : GetFloatInputAttributeMask( nType );
	for ( const FloatInputAttributeChoice_t &choice : GetFloatInputAttributeChoices( nMask, !bNoise && IsFloatInputInitialAttributeType( nType ) ) )
		m_pAttributeCombo->addItem( QString::fromStdString( choice.m_Name ), choice.m_nAttribute );
}

void CQParticleFloatInputEditor::ShowValues()
{
	const CParticleFloatInput &in = m_Input;
	ShowNumber( m_pLiteralEdit, in.m_flLiteralValue );
	if ( m_nShownPages & FLOAT_PAGE_NAMED_VALUE )
		FillVariableCombo( m_pNamedValueCombo, CPulseValueFullType( PVAL_FLOAT ), in.m_NamedValue.GetName() );
	ShowNumber( m_pRandomMin, in.m_flRandomMin );
	ShowNumber( m_pRandomMax, in.m_flRandomMax );
	{
		const QSignalBlocker block( m_pRandomSeed );
		m_pRandomSeed->setText( in.m_nRandomSeed == -1 ? QString() : QString::number( in.m_nRandomSeed ) );
	}
	const QSignalBlocker blockers[] = { QSignalBlocker( m_pRandomMode ),		QSignalBlocker( m_pRandomSignFlip ), QSignalBlocker( m_pReverseOrder ),
										QSignalBlocker( m_pBBoxCheck ),			QSignalBlocker( m_pComponentCombo ), QSignalBlocker( m_pAttributeCombo ),
										QSignalBlocker( m_pNoiseType ),			QSignalBlocker( m_pNoiseTurbulence ), QSignalBlocker( m_pNoiseModifier ),
										QSignalBlocker( m_pNoisePreviewMode ), QSignalBlocker( m_pInputMode ),		 QSignalBlocker( m_pRoundType ) };
	m_pRandomMode->setCurrentIndex( qBound( 0, int( in.m_nRandomMode ), 1 ) );
	m_pRandomSignFlip->setChecked( in.m_bHasRandomSignFlip );
	m_pReverseOrder->setChecked( in.m_bReverseOrder );
	m_pBBoxCheck->setChecked( in.m_bUseBoundsCenter );
	ShowInteger( m_pCPEdit, in.m_nControlPoint );
	m_pComponentCombo->setCurrentIndex( qBound( 0, int( in.m_nVectorComponent ), 2 ) );
	{
		const int nAttribute = in.m_nType == PF_TYPE_PARTICLE_NOISE ? in.m_nNoiseInputVectorAttribute
							   : ( in.m_nType == PF_TYPE_PARTICLE_FLOAT || in.m_nType == PF_TYPE_PARTICLE_INITIAL_FLOAT ) ? in.m_nScalarAttribute
																														   : in.m_nVectorAttribute;
		m_pAttributeCombo->setCurrentIndex( m_pAttributeCombo->findData( nAttribute ) );
	}
	{
		const QSignalBlocker block( m_pSubsetEdit );
		m_pSubsetEdit->setText( QString::fromUtf8( in.m_strSnapshotSubset.Get() ) );
		m_pSubsetEdit->setModified( false );
	}
	ShowNumber( m_pFallbackEdit, in.m_flNoCameraFallback );
	const float detail[ 4 ] = { in.m_flLOD0, in.m_flLOD1, in.m_flLOD2, in.m_flLOD3 };
	for ( int i = 0; i < 4; ++i )
		ShowNumber( m_pDetailEdits[ i ], detail[ i ] );

	ShowNumber( m_pNoiseMin, in.m_flNoiseOutputMin );
	ShowNumber( m_pNoiseMax, in.m_flNoiseOutputMax );
	m_pNoiseRate->SetVector( in.m_vecNoiseOffsetRate );
	m_pNoiseType->setCurrentIndex( qBound( 0, int( in.m_nNoiseType ), 2 ) );
	m_pNoiseScale->SetValue( in.m_flNoiseScale );
	m_pNoiseOffset->SetValue( in.m_flNoiseOffset );
	m_pNoiseOctaves->SetValue( in.m_nNoiseOctaves );
	m_pNoiseTurbulence->setCurrentIndex( qBound( 0, int( in.m_nNoiseTurbulence ), 5 ) );
	m_pNoiseTurbulenceScale->SetValue( in.m_flNoiseTurbulenceScale );
	m_pNoiseTurbulenceMix->SetValue( in.m_flNoiseTurbulenceMix );
	m_pNoiseModifier->setCurrentIndex( qBound( 0, int( in.m_nNoiseModifier ), 3 ) );
	m_pNoisePreviewMode->setCurrentIndex( in.m_bNoiseImgPreviewLive ? 1 : 0 );
	m_pNoisePreviewScale->SetValue( in.m_flNoiseImgPreviewScale );

	ShowNumber( m_pMultEdit, in.m_flMultFactor );
	if ( in.m_nMapType == PF_MAP_TYPE_CURVE )
	{
		// A curve without a range gets one it can be edited in.
		const CPiecewiseCurve &curve = in.m_Curve;
		if ( curve.m_vDomainMaxs.x <= curve.m_vDomainMins.x || curve.m_vDomainMaxs.y <= curve.m_vDomainMins.y )
			WidenFloatInputCurveDomain( &m_Input );
		m_pCurve->SetCurve( m_Input.m_Curve, !IsReadOnly() && !IsMultiSelect() );
	}
	if ( !m_bRangeDirty )
	{
		float range[ 4 ];
		GetFloatInputRange( in, &range[ 0 ], &range[ 1 ], &range[ 2 ], &range[ 3 ] );
		for ( int i = 0; i < 4; ++i )
			ShowNumber( m_pRangeEdits[ i ], range[ i ] );
	}
	m_pInputMode->setCurrentIndex( qBound( 0, int( in.m_nInputMode ), 1 ) );
	m_pRandomBias->SetBias( in.m_nBiasType, in.m_flBiasParameter );
	m_pMapBias->SetBias( in.m_nBiasType, in.m_flBiasParameter );
	const float notch[ 4 ] = { in.m_flNotchedRangeMin, in.m_flNotchedRangeMax, in.m_flNotchedOutputOutside, in.m_flNotchedOutputInside };
	for ( int i = 0; i < 4; ++i )
		ShowNumber( m_pNotchEdits[ i ], notch[ i ] );
	m_pRoundType->setCurrentIndex( qBound( 0, int( in.m_nRoundType ), 2 ) );

	if ( m_nShownPages & FLOAT_PAGE_NOISE )
		ResetNoiseImage();
}

void CQParticleFloatInputEditor::SetInput( const CParticleFloatInput &input )
{
	m_Input = input;
	if ( m_Input.m_nType != m_nLaidOutType || m_Input.m_nMapType != m_nLaidOutMap || m_nLaidOutInstances != 1 )
		LayOut();
	else
		ShowValues();
}

void CQParticleFloatInputEditor::ReadFromAttribute()
{
	if ( IsInline() || !GetHost() )
		return;
	StopNoiseImage();
	CParticleFloatInput loaded;
	KeyValues3 value;
	const bool bSingle = !IsMultiSelect() && ReadTargetKV3( &value );
	if ( bSingle )
	{
		if ( m_nKind == FLOAT_INPUT_EDITOR_REMAP )
			LoadAs<CParticleRemapFloatInput>( this, &loaded, value );
		else if ( m_nKind == FLOAT_INPUT_EDITOR_PER_PARTICLE )
			LoadAs<CPerParticleFloatInput>( this, &loaded, value );
		else
			LoadAs<CParticleCollectionFloatInput>( this, &loaded, value );
	}
	else if ( m_nKind == FLOAT_INPUT_EDITOR_REMAP )
	{
		loaded.m_nType = PF_TYPE_INVALID;
	}
	m_Input = loaded;
	const int nInstances = qMax( 1, GetTargetCount() );
	if ( m_Input.m_nType == m_nLaidOutType && m_Input.m_nMapType == m_nLaidOutMap && nInstances == m_nLaidOutInstances )
		ShowValues();
	else
		LayOut();
	for ( QWidget *pWidget : findChildren<QWidget *>() )
	{
		if ( auto *pEdit = qobject_cast<QLineEdit *>( pWidget ) )
			pEdit->setReadOnly( IsReadOnly() || IsMultiSelect() );
	}
	m_pTypeButton->setEnabled( !IsReadOnly() );
	m_pMapButton->setEnabled( !IsReadOnly() );
}

void CQParticleFloatInputEditor::WriteToAttribute()
{
	if ( IsInline() )
		return;
	switch ( m_nKind )
	{
	case FLOAT_INPUT_EDITOR_REMAP:
	{
		CParticleRemapFloatInput input;
		static_cast<CParticleFloatInput &>( input ) = m_Input;
		SaveTargetInput( input );
		break;
	}
	case FLOAT_INPUT_EDITOR_PER_PARTICLE:
	{
		CPerParticleFloatInput input;
		static_cast<CParticleFloatInput &>( input ) = m_Input;
		SaveTargetInput( input );
		break;
	}
	default:
	{
		CParticleCollectionFloatInput input;
		static_cast<CParticleFloatInput &>( input ) = m_Input;
		SaveTargetInput( input );
		break;
	}
	}
}

void CQParticleFloatInputEditor::DisconnectAndClear()
{
	CQParticleInputEditorBase::DisconnectAndClear();
	StopNoiseImage();
	m_Input = CParticleFloatInput();
	if ( m_nKind == FLOAT_INPUT_EDITOR_REMAP )
		m_Input.m_nType = PF_TYPE_INVALID;
	m_bRangeDirty = false;
}

bool CQParticleFloatInputEditor::IsBeingEdited() const
{
	return m_bRangeDirty || CQParticleInputEditorBase::IsBeingEdited();
}

void CQParticleFloatInputEditor::ConnectSignals()
{
}

void CQParticleFloatInputEditor::Commit( bool bTopological )
{
	if ( IsReadOnly() || IsMultiSelect() )
		return;
	if ( IsInline() )
		emit OnEditInline( bTopological );
	else if ( GetHost() )
		CommitToHost();
	// The new page now; the panel's refresh reads the same input back.
	if ( bTopological )
		LayOut();
}

float CQParticleFloatInputEditor::ReadFloat( CQSmartLineEdit *pEdit ) const
{
	// Text that isn't a number reads 0, as QString::toFloat gives it.
	return pEdit->text().trimmed().toFloat();
}

void CQParticleFloatInputEditor::resizeEvent( QResizeEvent *pEvent )
{
	CQParticleInputEditorBase::resizeEvent( pEvent );
	if ( m_nShownPages & FLOAT_PAGE_NOISE )
		UpdateNoiseImage();
}

//-----------------------------------------------------------------------------
// Types and menus
//-----------------------------------------------------------------------------

QMenu *CQParticleFloatInputEditor::CreateTypeMenu()
{
	QVector<TypeMenuRow_t> rows;
	for ( int nType : GetFloatInputTypeMenu( m_nKind, m_bRenderer ) )
		rows.append( { nType, QString::fromUtf8( GetParticleFloatTypeMenuLabel( nType ) ), QString::fromUtf8( GetParticleFloatTypeIcon( nType ) ) } );
	return CQParticleInputEditorBase::CreateTypeMenu( rows, m_Input.m_nType, [ this ]( int nType ) { OnSetType( nType ); } );
}

QMenu *CQParticleFloatInputEditor::CreateMapMenu()
{
	QVector<TypeMenuRow_t> rows;
	for ( int nMap = PF_MAP_TYPE_DIRECT; nMap < PF_MAP_TYPE_COUNT; ++nMap )
		rows.append( { nMap, QString::fromUtf8( GetParticleFloatMapTypeMenuLabel( nMap ) ), QString::fromUtf8( GetParticleFloatMapTypeIcon( nMap ) ) } );
	return CQParticleInputEditorBase::CreateTypeMenu( rows, m_Input.m_nMapType, [ this ]( int nMap ) { OnSetMapType( nMap ); } );
}

void CQParticleFloatInputEditor::OnTypeButtonClicked()
{
	PopUpMenu( CreateTypeMenu() );
}

void CQParticleFloatInputEditor::OnMapButtonClicked()
{
	PopUpMenu( CreateMapMenu() );
}

void CQParticleFloatInputEditor::OnSetType( int nType )
{
	if ( SetFloatInputType( &m_Input, nType ) )
		Commit( true );
}

void CQParticleFloatInputEditor::OnSetMapType( int nMapType )
{
	if ( SetFloatInputMapType( &m_Input, nMapType ) )
		Commit( true );
}

//-----------------------------------------------------------------------------
// Edits
//-----------------------------------------------------------------------------

void CQParticleFloatInputEditor::OnLiteralValueEdited()
{
	const float flValue = ReadFloat( m_pLiteralEdit );
	ShowNumber( m_pLiteralEdit, flValue );
	if ( flValue == m_Input.m_flLiteralValue )
		return;
	m_Input.m_flLiteralValue = flValue;
	Commit( false );
}

void CQParticleFloatInputEditor::OnNamedValueEdited( const QString &text )
{
	if ( TakeVariableName( text, &m_Input.m_NamedValue ) )
		Commit( false );
}

void CQParticleFloatInputEditor::OnNamedValueHighlighted( int nIndex )
{
	ShowHighlightedVariable( m_pNamedValueCombo, nIndex );
}

void CQParticleFloatInputEditor::OnCPNumberEdited()
{
	if ( TakeControlPointNumber( m_pCPEdit, &m_Input.m_nControlPoint ) )
		Commit( false );
}

void CQParticleFloatInputEditor::OnMultFactorEdited()
{
	const float flValue = ReadFloat( m_pMultEdit );
	ShowNumber( m_pMultEdit, flValue );
	if ( flValue == m_Input.m_flMultFactor )
		return;
	m_Input.m_flMultFactor = flValue;
	Commit( false );
}

void CQParticleFloatInputEditor::OnRandomMinMaxEdited()
{
	const float flMin = ReadFloat( m_pRandomMin );
	const float flMax = ReadFloat( m_pRandomMax );
	ShowNumber( m_pRandomMin, flMin );
	ShowNumber( m_pRandomMax, flMax );
	if ( flMin == m_Input.m_flRandomMin && flMax == m_Input.m_flRandomMax )
		return;
	m_Input.m_flRandomMin = flMin;
	m_Input.m_flRandomMax = flMax;
	Commit( false );
}

void CQParticleFloatInputEditor::OnRandomSeedEdited()
{
	// An empty field is no fixed seed.
	const QString text = m_pRandomSeed->text().trimmed();
	const int nSeed = text.isEmpty() ? -1 : text.toInt();
	if ( nSeed == m_Input.m_nRandomSeed )
		return;
	m_Input.m_nRandomSeed = nSeed;
	Commit( false );
}

void CQParticleFloatInputEditor::OnRandomModeChanged()
{
	const int nMode = m_pRandomMode->currentIndex();
	if ( nMode == m_Input.m_nRandomMode )
		return;
	m_Input.m_nRandomMode = ParticleFloatRandomMode_t( nMode );
	Commit( false );
}

void CQParticleFloatInputEditor::OnRandomSignFlipChanged()
{
	if ( m_pRandomSignFlip->isChecked() == m_Input.m_bHasRandomSignFlip )
		return;
	m_Input.m_bHasRandomSignFlip = m_pRandomSignFlip->isChecked();
	Commit( false );
}

void CQParticleFloatInputEditor::OnReverseOrderChanged()
{
	if ( m_pReverseOrder->isChecked() == m_Input.m_bReverseOrder )
		return;
	m_Input.m_bReverseOrder = m_pReverseOrder->isChecked();
	Commit( false );
}

void CQParticleFloatInputEditor::OnNoCameraFallbackValueEdited()
{
	const float flValue = ReadFloat( m_pFallbackEdit );
	ShowNumber( m_pFallbackEdit, flValue );
	if ( flValue == m_Input.m_flNoCameraFallback )
		return;
	m_Input.m_flNoCameraFallback = flValue;
	Commit( false );
}

void CQParticleFloatInputEditor::OnCamUseBBoxChanged()
{
	if ( m_pBBoxCheck->isChecked() == m_Input.m_bUseBoundsCenter )
		return;
	m_Input.m_bUseBoundsCenter = m_pBBoxCheck->isChecked();
	Commit( false );
}

void CQParticleFloatInputEditor::OnDetailLevelEdited()
{
	float flValues[ 4 ];
	for ( int i = 0; i < 4; ++i )
	{
		flValues[ i ] = ReadFloat( m_pDetailEdits[ i ] );
		ShowNumber( m_pDetailEdits[ i ], flValues[ i ] );
	}
	if ( flValues[ 0 ] == m_Input.m_flLOD0 && flValues[ 1 ] == m_Input.m_flLOD1 && flValues[ 2 ] == m_Input.m_flLOD2 && flValues[ 3 ] == m_Input.m_flLOD3 )
		return;
	m_Input.m_flLOD0 = flValues[ 0 ];
	m_Input.m_flLOD1 = flValues[ 1 ];
	m_Input.m_flLOD2 = flValues[ 2 ];
	m_Input.m_flLOD3 = flValues[ 3 ];
	Commit( false );
}

void CQParticleFloatInputEditor::StoreNoise( std::function<void()> fnStore )
{
	fnStore();
	ResetNoiseImage();
	Commit( false );
}

void CQParticleFloatInputEditor::OnNoiseMinEdited()
{
	const float flValue = ReadFloat( m_pNoiseMin );
	ShowNumber( m_pNoiseMin, flValue );
	if ( flValue != m_Input.m_flNoiseOutputMin )
		StoreNoise( [ & ] { m_Input.m_flNoiseOutputMin = flValue; } );
}

void CQParticleFloatInputEditor::OnNoiseMaxEdited()
{
	const float flValue = ReadFloat( m_pNoiseMax );
	ShowNumber( m_pNoiseMax, flValue );
	if ( flValue != m_Input.m_flNoiseOutputMax )
		StoreNoise( [ & ] { m_Input.m_flNoiseOutputMax = flValue; } );
}

void CQParticleFloatInputEditor::OnNoiseRateEdited()
{
	const Vector vRate = m_pNoiseRate->GetVector();
	if ( vRate != m_Input.m_vecNoiseOffsetRate )
		StoreNoise( [ & ] { m_Input.m_vecNoiseOffsetRate = vRate; } );
}

void CQParticleFloatInputEditor::OnNoiseScaleSliderEdited( float flValue )
{
	if ( flValue != m_Input.m_flNoiseScale )
		StoreNoise( [ & ] { m_Input.SetNoiseScale( flValue ); } );
}

void CQParticleFloatInputEditor::OnNoiseOffsetSliderEdited( float flValue )
{
	if ( flValue != m_Input.m_flNoiseOffset )
		StoreNoise( [ & ] { m_Input.SetNoiseOffset( flValue ); } );
}

void CQParticleFloatInputEditor::OnNoiseOctaveSliderEdited( float flValue )
{
	const int32_t nOctaves = int32_t( std::lround( flValue ) );
	CParticleFloatInput probe = m_Input;
	probe.SetNoiseOctaves( nOctaves );
	if ( probe.m_nNoiseOctaves != m_Input.m_nNoiseOctaves )
		StoreNoise( [ & ] { m_Input.SetNoiseOctaves( nOctaves ); } );
	m_pNoiseOctaves->SetValue( m_Input.m_nNoiseOctaves );
}

void CQParticleFloatInputEditor::OnNoiseTurbulenceScaleSliderEdited( float flValue )
{
	if ( flValue != m_Input.m_flNoiseTurbulenceScale )
		StoreNoise( [ & ] { m_Input.m_flNoiseTurbulenceScale = flValue; } );
}

void CQParticleFloatInputEditor::OnNoiseTurbulenceMixSliderEdited( float flValue )
{
	if ( flValue != m_Input.m_flNoiseTurbulenceMix )
		StoreNoise( [ & ] { m_Input.m_flNoiseTurbulenceMix = flValue; } );
}

void CQParticleFloatInputEditor::OnNoiseImgPreviewScaleSliderEdited( float flValue )
{
	if ( flValue != m_Input.m_flNoiseImgPreviewScale )
		StoreNoise( [ & ] { m_Input.SetNoiseImgPreviewScale( flValue ); } );
}

void CQParticleFloatInputEditor::OnNoiseTypeChanged()
{
	StoreNoise( [ this ] { m_Input.m_nNoiseType = PFNoiseType_t( m_pNoiseType->currentIndex() ); } );
}

void CQParticleFloatInputEditor::OnNoiseModifierChanged()
{
	StoreNoise( [ this ] { m_Input.m_nNoiseModifier = PFNoiseModifier_t( m_pNoiseModifier->currentIndex() ); } );
}

void CQParticleFloatInputEditor::OnNoiseTurbulenceChanged()
{
	StoreNoise( [ this ] { m_Input.m_nNoiseTurbulence = PFNoiseTurbulence_t( m_pNoiseTurbulence->currentIndex() ); } );
}

void CQParticleFloatInputEditor::OnNoiseImgPreviewChanged()
{
	StoreNoise( [ this ] { m_Input.m_bNoiseImgPreviewLive = m_pNoisePreviewMode->currentIndex() != 0; } );
}

void CQParticleFloatInputEditor::OnReverseNoiseInputClicked()
{
	const float flMin = ReadFloat( m_pNoiseMin );
	const float flMax = ReadFloat( m_pNoiseMax );
	m_Input.m_flNoiseOutputMin = flMax;
	m_Input.m_flNoiseOutputMax = flMin;
	ShowNumber( m_pNoiseMin, flMax );
	ShowNumber( m_pNoiseMax, flMin );
	Commit( false );
}

void CQParticleFloatInputEditor::ResetNoiseImage()
{
	m_flNoiseTime = 0.0f;
	UpdateNoiseImage();
	// Only a live preview of a noise that changes over time moves.
	const bool bMoves = !( m_Input.m_vecNoiseOffsetRate == Vector( 0.0f, 0.0f, 0.0f ) ) && m_Input.m_bNoiseImgPreviewLive;
	if ( bMoves && ( m_nShownPages & FLOAT_PAGE_NOISE ) )
		m_pNoiseTimer->start();
	else
		m_pNoiseTimer->stop();
}

void CQParticleFloatInputEditor::UpdateNoiseImage()
{
	int nWidth = m_pNoiseImage->width();
	if ( nWidth < 16 )
		nWidth = qMax( 16, width() );
	std::vector<uint8_t> grey;
	BuildParticleNoisePreview( m_Input, nWidth, m_flNoiseTime, &grey );
	QImage image( grey.data(), nWidth, PARTICLE_NOISE_PREVIEW_HEIGHT, nWidth, QImage::Format_Grayscale8 );
	m_pNoiseImage->setPixmap( QPixmap::fromImage( image.copy() ) );
}

void CQParticleFloatInputEditor::StopNoiseImage()
{
	m_flNoiseTime = 0.0f;
	m_pNoiseTimer->stop();
}

void CQParticleFloatInputEditor::OnNoiseImgTimerUpdate()
{
	if ( !m_Input.m_bNoiseImgPreviewLive )
		return;
	m_flNoiseTime += float( m_pNoiseTimer->interval() ) / 1000.0f;
	UpdateNoiseImage();
}

void CQParticleFloatInputEditor::OnInputModeChanged()
{
	const int nMode = m_pInputMode->currentIndex();
	if ( nMode == m_Input.m_nInputMode )
		return;
	m_Input.m_nInputMode = ParticleFloatInputMode_t( nMode );
	Commit( false );
}

void CQParticleFloatInputEditor::OnReverseInputClicked()
{
	ApplyRangeValues( ReadFloat( m_pRangeEdits[ 1 ] ), ReadFloat( m_pRangeEdits[ 0 ] ), ReadFloat( m_pRangeEdits[ 2 ] ), ReadFloat( m_pRangeEdits[ 3 ] ) );
}

void CQParticleFloatInputEditor::OnReverseOutputClicked()
{
	ApplyRangeValues( ReadFloat( m_pRangeEdits[ 0 ] ), ReadFloat( m_pRangeEdits[ 1 ] ), ReadFloat( m_pRangeEdits[ 3 ] ), ReadFloat( m_pRangeEdits[ 2 ] ) );
}

void CQParticleFloatInputEditor::OnSnapshotSubsetEdited()
{
	const QByteArray text = m_pSubsetEdit->text().toUtf8();
	if ( text == QByteArray( m_Input.m_strSnapshotSubset.Get() ) )
		return;
	m_Input.m_strSnapshotSubset = text.constData();
	Commit( false );
}

void CQParticleFloatInputEditor::OnRangeFocusChanged()
{
	// Moving between the four fields applies nothing; leaving them applies all four.
	for ( CQSmartLineEdit *pEdit : m_pRangeEdits )
	{
		if ( pEdit->hasFocus() )
			return;
	}
	if ( m_bRangeDirty )
		ApplyRange();
}

void CQParticleFloatInputEditor::ApplyRange()
{
	ApplyRangeValues( ReadFloat( m_pRangeEdits[ 0 ] ), ReadFloat( m_pRangeEdits[ 1 ] ), ReadFloat( m_pRangeEdits[ 2 ] ), ReadFloat( m_pRangeEdits[ 3 ] ) );
}

void CQParticleFloatInputEditor::ApplyRangeValues( float flInput0, float flInput1, float flOutput0, float flOutput1 )
{
	const bool bChanged = SetFloatInputRange( &m_Input, flInput0, flInput1, flOutput0, flOutput1 );
	MarkRangeUI( false );
	float range[ 4 ];
	GetFloatInputRange( m_Input, &range[ 0 ], &range[ 1 ], &range[ 2 ], &range[ 3 ] );
	for ( int i = 0; i < 4; ++i )
		ShowNumber( m_pRangeEdits[ i ], range[ i ] );
	if ( !bChanged )
		return;
	if ( m_Input.m_nMapType == PF_MAP_TYPE_CURVE )
		m_pCurve->SetCurve( m_Input.m_Curve, !IsReadOnly() );
	Commit( false );
}

void CQParticleFloatInputEditor::MarkRangeUI( bool bDirty )
{
	m_bRangeDirty = bDirty;
	for ( CQSmartLineEdit *pEdit : m_pRangeEdits )
		pEdit->setStyleSheet( bDirty ? RANGE_DIRTY_STYLE : QString() );
}

void CQParticleFloatInputEditor::OnBiasParameterChanged()
{
	auto *pBias = qobject_cast<CQBiasEditor *>( sender() );
	if ( !pBias || pBias->GetParameter() == m_Input.m_flBiasParameter )
		return;
	m_Input.m_flBiasParameter = pBias->GetParameter();
	Commit( false );
}

void CQParticleFloatInputEditor::OnBiasTypeChanged()
{
	auto *pBias = qobject_cast<CQBiasEditor *>( sender() );
	if ( !pBias || pBias->GetBiasType() == m_Input.m_nBiasType )
		return;
	m_Input.m_nBiasType = ParticleFloatBiasType_t( pBias->GetBiasType() );
	Commit( false );
}

void CQParticleFloatInputEditor::OnCurveEdited()
{
	m_Input.m_Curve = m_pCurve->GetCurve();
	if ( !m_bRangeDirty )
	{
		float range[ 4 ];
		GetFloatInputRange( m_Input, &range[ 0 ], &range[ 1 ], &range[ 2 ], &range[ 3 ] );
		for ( int i = 0; i < 4; ++i )
			ShowNumber( m_pRangeEdits[ i ], range[ i ] );
	}
	Commit( false );
}

void CQParticleFloatInputEditor::OnAttributeIndexChanged()
{
	const QVariant data = m_pAttributeCombo->currentData();
	if ( !data.isValid() )
		return;
	const int nAttribute = data.toInt();
	ParticleAttributeIndex_t *pField = nullptr;
	switch ( m_Input.m_nType )
	{
	case PF_TYPE_PARTICLE_NOISE: pField = &m_Input.m_nNoiseInputVectorAttribute; break;
	case PF_TYPE_PARTICLE_FLOAT:
	case PF_TYPE_PARTICLE_INITIAL_FLOAT: pField = &m_Input.m_nScalarAttribute; break;
	case PF_TYPE_PARTICLE_VECTOR_COMPONENT:
	case PF_TYPE_PARTICLE_INITIAL_VECTOR_COMPONENT: pField = &m_Input.m_nVectorAttribute; break;
	default: return;
	}
	if ( *pField == nAttribute )
		return;
	*pField = nAttribute;
	Commit( false );
}

void CQParticleFloatInputEditor::OnVectorComponentIndexChanged()
{
	const int nComponent = m_pComponentCombo->currentIndex();
	if ( nComponent == m_Input.m_nVectorComponent )
		return;
	m_Input.m_nVectorComponent = nComponent;
	Commit( false );
}

void CQParticleFloatInputEditor::OnNotchedChanged()
{
	float flValues[ 4 ];
	for ( int i = 0; i < 4; ++i )
	{
		flValues[ i ] = ReadFloat( m_pNotchEdits[ i ] );
		ShowNumber( m_pNotchEdits[ i ], flValues[ i ] );
	}
	if ( flValues[ 0 ] == m_Input.m_flNotchedRangeMin && flValues[ 1 ] == m_Input.m_flNotchedRangeMax && flValues[ 2 ] == m_Input.m_flNotchedOutputOutside &&
		 flValues[ 3 ] == m_Input.m_flNotchedOutputInside )
		return;
	m_Input.m_flNotchedRangeMin = flValues[ 0 ];
	m_Input.m_flNotchedRangeMax = flValues[ 1 ];
	m_Input.m_flNotchedOutputOutside = flValues[ 2 ];
	m_Input.m_flNotchedOutputInside = flValues[ 3 ];
	Commit( false );
}

void CQParticleFloatInputEditor::OnRoundTypeChanged()
{
	const int nRound = m_pRoundType->currentIndex();
	if ( nRound == m_Input.m_nRoundType )
		return;
	m_Input.m_nRoundType = ParticleFloatRoundType_t( nRound );
	Commit( false );
}
