#include "tools/zol/editor/inputs/particlevecinputeditor.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/text/bufferstring.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "tools/widgets/color/colorgradienteditor.h"
#include "tools/widgets/color/colorpainting.h"
#include "tools/widgets/color/colorswatch.h"
#include "tools/widgets/smartlineedit.h"
#include "tools/widgets/vectoredit.h"
#include "tools/zol/editor/inputs/particlefloatinputeditor.h"
#include "tools/zol/editor/inputs/vecinputeditlogic.h"

namespace
{
constexpr int INTERP_EDITOR = 3;
const char *const COMPONENT_NAMES[ 3 ] = { "X", "Y", "Z" };

CParticleFloatInput &FloatInputOf( CParticleVecInput &input, int nIndex )
{
	switch ( nIndex )
	{
	case 0: return input.m_FloatComponentX;
	case 1: return input.m_FloatComponentY;
	case 2: return input.m_FloatComponentZ;
	default: return input.m_FloatInterp;
	}
}
bool SameGradient( const CColorGradient &a, const CColorGradient &b )
{
	if ( a.GetStopCount() != b.GetStopCount() )
		return false;
	for ( int i = 0; i < a.GetStopCount(); ++i )
	{
		if ( a.GetStopPosition( i ) != b.GetStopPosition( i ) || !( a.GetStopColor( i ) == b.GetStopColor( i ) ) )
			return false;
	}
	return true;
}
} // namespace

CQParticleVecInputEditor::CQParticleVecInputEditor( QWidget *pParent, bool bPerParticle, bool bRenderer )
	: CQParticleInputEditorBase( pParent ), m_bPerParticle( bPerParticle ), m_bRenderer( bRenderer )
{
	auto *pOuter = new QVBoxLayout( this );
	pOuter->setContentsMargins( 0, 0, 0, 0 );
	pOuter->setSpacing( 0 );
	BuildWidgets();
	LayOut();
}

CQParticleVecInputEditor::~CQParticleVecInputEditor() = default;

CQVectorEdit *CQParticleVecInputEditor::MakeVector( const char *pName )
{
	auto *pVector = new CQVectorEdit( this );
	pVector->setObjectName( QString::fromLatin1( pName ) );
	pVector->setMinimumWidth( 150 );
	return pVector;
}

void CQParticleVecInputEditor::BuildWidgets()
{
	m_pTypeButton = MakeTypeButton( this );
	m_pTypeButton->setObjectName( QStringLiteral( "TypeButton" ) );
	m_pLiteral = MakeVector( "Literal" );
	m_pColor = new CQColorSwatch( this );
	m_pColor->setObjectName( QStringLiteral( "LiteralColor" ) );
	m_pColor->setFixedSize( 60, 18 );
	m_pColor->SetDialogTitle( QStringLiteral( "Literal Color" ) );
	m_pNamedValueCombo = new QComboBox( this );
	m_pNamedValueCombo->setObjectName( QStringLiteral( "NamedValue" ) );
	m_pNamedValueCombo->setMinimumWidth( 120 );
	m_pFollowValue = new QCheckBox( QStringLiteral( "Follow Value" ), this );
	m_pFollowValue->setObjectName( QStringLiteral( "FollowValue" ) );
	m_pAttributeCombo = new QComboBox( this );
	m_pAttributeCombo->setObjectName( QStringLiteral( "Attribute" ) );
	m_pAttributeScale = MakeVector( "AttributeScale" );
	m_pCPEdit = MakeNumberEdit( this, true, 40 );
	m_pCPEdit->setObjectName( QStringLiteral( "ControlPoint" ) );
	m_pDeltaCPEdit = MakeNumberEdit( this, true, 40 );
	m_pDeltaCPEdit->setObjectName( QStringLiteral( "DeltaControlPoint" ) );
	m_pCPScale = MakeVector( "CPScale" );
	m_pCPRelativePosition = MakeVector( "CPRelativePosition" );
	m_pCPRelativeDir = MakeVector( "CPRelativeDirection" );
	m_pRandomMin = MakeVector( "RandomMin" );
	m_pRandomMax = MakeVector( "RandomMax" );
	for ( int i = 0; i < 4; ++i )
	{
		auto *pFloat = new CQParticleFloatInputEditor( this, m_bPerParticle ? FLOAT_INPUT_EDITOR_PER_PARTICLE : FLOAT_INPUT_EDITOR_COLLECTION, m_bRenderer );
		pFloat->setObjectName( i == INTERP_EDITOR ? QStringLiteral( "FloatInterp" ) : QStringLiteral( "Component%1" ).arg( COMPONENT_NAMES[ i ] ) );
		pFloat->SetInlineOwner( this );
		// It takes the rest of its row, its type's name whole.
		pFloat->setSizePolicy( QSizePolicy::Expanding, pFloat->sizePolicy().verticalPolicy() );
		m_pFloatEditors[ i ] = pFloat;
		connect( pFloat, &CQParticleFloatInputEditor::OnEditInline, this,
				 i == INTERP_EDITOR ? &CQParticleVecInputEditor::OnFloatInterpEdit : &CQParticleVecInputEditor::OnFloatComponentEdit );
		// A slider drag inside is one step of the whole vector.
		connect( pFloat, &CQParticleFloatInputEditor::InlineGestureStarted, this, [ this ] { InitIncrementalOperation(); } );
		connect( pFloat, &CQParticleFloatInputEditor::InlineGestureEnded, this, [ this ] { TermIncrementalOperation(); } );
	}
	for ( int i = 0; i < 3; ++i )
	{
		m_pCollapseButtons[ i ] = new QToolButton( this );
		m_pCollapseButtons[ i ]->setObjectName( QStringLiteral( "Collapse%1" ).arg( COMPONENT_NAMES[ i ] ) );
		m_pCollapseButtons[ i ]->setAutoRaise( true );
		m_pCollapseButtons[ i ]->setFixedSize( TYPE_BUTTON_SIZE, TYPE_BUTTON_SIZE );
		m_pCollapseButtons[ i ]->setToolTip( QStringLiteral( "Fold or unfold the %1 input" ).arg( COMPONENT_NAMES[ i ] ) );
		connect( m_pCollapseButtons[ i ], &QToolButton::clicked, this, [ this, i ] { SetComponentCollapsed( i, !m_bCollapsed[ i ] ); } );
		m_pComponentSummaries[ i ] = new QLabel( this );
		m_pComponentSummaries[ i ]->setObjectName( QStringLiteral( "Summary%1" ).arg( COMPONENT_NAMES[ i ] ) );
	}
	m_pInterpInput0 = MakeNumberEdit( this, false );
	m_pInterpInput0->setObjectName( QStringLiteral( "InterpInput0" ) );
	m_pInterpInput1 = MakeNumberEdit( this, false );
	m_pInterpInput1->setObjectName( QStringLiteral( "InterpInput1" ) );
	m_pReverseInput = MakeTypeButton( this );
	m_pReverseInput->setObjectName( QStringLiteral( "ReverseInputRange" ) );
	m_pReverseInput->setIcon( ZolIcon( QStringLiteral( "reverse_values.png" ) ) );
	m_pReverseInput->setToolTip( QStringLiteral( "Reverse Input Range" ) );
	m_pInterpOutput0 = MakeVector( "InterpOutput0" );
	m_pInterpOutput1 = MakeVector( "InterpOutput1" );
	m_pReverseOutput = MakeTypeButton( this );
	m_pReverseOutput->setObjectName( QStringLiteral( "ReverseOutput" ) );
	m_pReverseOutput->setIcon( ZolIcon( QStringLiteral( "reverse_values.png" ) ) );
	m_pReverseOutput->setToolTip( QStringLiteral( "Reverse Output" ) );
	m_pGradient = new CQColorGradientEditor( this );
	m_pGradient->setObjectName( QStringLiteral( "Gradient" ) );
	m_pGradient->setFixedHeight( VEC_INPUT_GRADIENT_HEIGHT );

	connect( m_pTypeButton, &QToolButton::clicked, this, &CQParticleVecInputEditor::OnTypeButtonClicked );
	connect( m_pLiteral, &CQVectorEdit::VectorEdited, this, &CQParticleVecInputEditor::OnLiteralValueEdited );
	connect( m_pColor, &CQColorSwatch::ColorEdited, this, [ this ]( const QColor &color, bool bFinished ) {
		if ( !bFinished )
			return;
		Color value = FromQColor( color );
		value[ 3 ] = 255;
		if ( value == m_Input.m_LiteralColor )
			return;
		m_Input.m_LiteralColor = value;
		Commit();
	} );
	connect( m_pNamedValueCombo, &QComboBox::textActivated, this, &CQParticleVecInputEditor::OnNamedValueEdited );
	// A typed name counts when the field is left or Return is pressed.
	m_pNamedValueCombo->setEditable( true );
	connect( m_pNamedValueCombo->lineEdit(), &QLineEdit::editingFinished, this, [ this ] { OnNamedValueEdited( m_pNamedValueCombo->currentText() ); } );
	connect( m_pNamedValueCombo, QOverload<int>::of( &QComboBox::highlighted ), this, &CQParticleVecInputEditor::OnNamedValueHighlighted );
	connect( m_pFollowValue, &QCheckBox::clicked, this, [ this ]( bool bChecked ) {
		if ( bChecked == m_Input.m_bFollowNamedValue )
			return;
		m_Input.m_bFollowNamedValue = bChecked;
		Commit();
	} );
	connect( m_pAttributeCombo, QOverload<int>::of( &QComboBox::activated ), this, &CQParticleVecInputEditor::OnAttributeIndexChanged );
	connect( m_pAttributeScale, &CQVectorEdit::VectorEdited, this, &CQParticleVecInputEditor::OnVectorAttributeScaleEdited );
	connect( m_pCPEdit, &QLineEdit::editingFinished, this, &CQParticleVecInputEditor::OnCPNumberEdited );
	connect( m_pDeltaCPEdit, &QLineEdit::editingFinished, this, &CQParticleVecInputEditor::OnDeltaCPNumberEdited );
	for ( CQVectorEdit *pVector : { m_pCPScale, m_pCPRelativePosition, m_pCPRelativeDir } )
		connect( pVector, &CQVectorEdit::VectorEdited, this, &CQParticleVecInputEditor::OnCPVectorEdited );
	connect( m_pRandomMin, &CQVectorEdit::VectorEdited, this, &CQParticleVecInputEditor::OnRandomMinValueEdited );
	connect( m_pRandomMax, &CQVectorEdit::VectorEdited, this, &CQParticleVecInputEditor::OnRandomMaxValueEdited );
	connect( m_pInterpInput0, &QLineEdit::editingFinished, this, &CQParticleVecInputEditor::OnInterpInputEdited );
	connect( m_pInterpInput1, &QLineEdit::editingFinished, this, &CQParticleVecInputEditor::OnInterpInputEdited );
	connect( m_pReverseInput, &QToolButton::clicked, this, &CQParticleVecInputEditor::OnReverseInputClicked );
	connect( m_pInterpOutput0, &CQVectorEdit::VectorEdited, this, &CQParticleVecInputEditor::OnInterpOutputEdited );
	connect( m_pInterpOutput1, &CQVectorEdit::VectorEdited, this, &CQParticleVecInputEditor::OnInterpOutputEdited );
	connect( m_pReverseOutput, &QToolButton::clicked, this, &CQParticleVecInputEditor::OnReverseOutputClicked );
	connect( m_pGradient, &CQColorGradientEditor::GradientChanged, this, &CQParticleVecInputEditor::OnGradientEdited );
}

//-----------------------------------------------------------------------------
// Layout
//-----------------------------------------------------------------------------

int CQParticleVecInputEditor::ComponentRowHeight( int nComponent ) const
{
	if ( m_bCollapsed[ nComponent ] )
		return VEC_INPUT_ROW_HEIGHT;
	return qMax( VEC_INPUT_ROW_HEIGHT, m_pFloatEditors[ nComponent ]->GetPreferredHeight() );
}

int CQParticleVecInputEditor::GetPreferredHeight() const
{
	if ( IsMultiSelect() )
		return VEC_INPUT_ROW_HEIGHT;
	const int nComponents[ 3 ] = { ComponentRowHeight( 0 ), ComponentRowHeight( 1 ), ComponentRowHeight( 2 ) };
	return GetVecInputEditorHeight( m_Input.m_nType, nComponents, qMax( VEC_INPUT_ROW_HEIGHT, m_pFloatEditors[ INTERP_EDITOR ]->GetPreferredHeight() ) );
}

QWidget *CQParticleVecInputEditor::AddRow( QVBoxLayout *pLayout, QWidget *pParent, int nHeight, std::initializer_list<QWidget *> widgets, bool bIndent )
{
	auto *pRow = new QWidget( pParent );
	pRow->setFixedHeight( nHeight );
	auto *pRowLayout = new QHBoxLayout( pRow );
	pRowLayout->setContentsMargins( 0, 0, 0, 0 );
	pRowLayout->setSpacing( 3 );
	if ( bIndent )
		pRowLayout->addSpacing( TYPE_BUTTON_SIZE + 3 );
	bool bStretches = false;
	for ( QWidget *pWidget : widgets )
	{
		pWidget->setParent( pRow );
		pRowLayout->addWidget( pWidget, 0, Qt::AlignVCenter );
		pWidget->show();
		bStretches |= ( int( pWidget->sizePolicy().horizontalPolicy() ) & int( QSizePolicy::ExpandFlag ) ) != 0;
	}
	if ( !bStretches )
		pRowLayout->addStretch( 1 );
	pLayout->addWidget( pRow );
	return pRow;
}

void CQParticleVecInputEditor::LayOut()
{
	// The widgets that live across pages come home before the old page goes.
	QList<QWidget *> kept = { m_pTypeButton, m_pLiteral, m_pColor, m_pNamedValueCombo, m_pFollowValue, m_pAttributeCombo, m_pAttributeScale,
							  m_pCPEdit, m_pDeltaCPEdit, m_pCPScale, m_pCPRelativePosition, m_pCPRelativeDir, m_pRandomMin, m_pRandomMax,
							  m_pInterpInput0, m_pInterpInput1, m_pReverseInput, m_pInterpOutput0, m_pInterpOutput1, m_pReverseOutput, m_pGradient };
	for ( int i = 0; i < 4; ++i )
		kept << m_pFloatEditors[ i ];
	for ( int i = 0; i < 3; ++i )
		kept << m_pCollapseButtons[ i ] << m_pComponentSummaries[ i ];
	for ( QWidget *pWidget : kept )
	{
		pWidget->hide();
		pWidget->setParent( this );
	}
	delete m_pPage;
	// The float inputs first: their pages set the heights of the rows that hold them.
	for ( int i = 0; i < 4; ++i )
		m_pFloatEditors[ i ]->SetInput( FloatInputOf( m_Input, i ) );
	m_pPage = new QWidget( this );
	m_pLayout = new QVBoxLayout( m_pPage );
	m_pLayout->setContentsMargins( 0, 0, 0, 0 );
	m_pLayout->setSpacing( 0 );
	static_cast<QVBoxLayout *>( layout() )->addWidget( m_pPage );

	const int nInstances = qMax( 1, GetTargetCount() );
	m_nLaidOutType = m_Input.m_nType;
	m_nLaidOutInstances = nInstances;
	QWidget *pPage = m_pPage;
	auto label = [ pPage ]( const char *pText ) { return MakeLabel( QString::fromUtf8( pText ), pPage ); };
	const int h = VEC_INPUT_ROW_HEIGHT;
	if ( nInstances > 1 )
	{
		AddRow( m_pLayout, pPage, h, { label( "(Multiple-select not supported)" ) }, false );
		setFixedHeight( VEC_INPUT_ROW_HEIGHT );
		m_pPage->show();
		return;
	}

	const InputTypeMenuRow_t *pRow = FindVecInputType( m_Input.m_nType );
	m_pTypeButton->setIcon( ZolIcon( QString::fromUtf8( pRow ? pRow->m_pIcon : "" ) ) );
	m_pTypeButton->setToolTip( QString::fromUtf8( pRow ? pRow->m_pText : "" ) );
	m_pTypeButton->setEnabled( !IsReadOnly() );
	switch ( m_Input.m_nType )
	{
	case PVEC_TYPE_LITERAL: AddRow( m_pLayout, pPage, h, { m_pTypeButton, m_pLiteral }, false ); break;
	case PVEC_TYPE_LITERAL_COLOR: AddRow( m_pLayout, pPage, h, { m_pTypeButton, m_pColor }, false ); break;
	case PVEC_TYPE_NAMED_VALUE: AddRow( m_pLayout, pPage, h, { m_pTypeButton, m_pNamedValueCombo, m_pFollowValue }, false ); break;
	case PVEC_TYPE_PARTICLE_VECTOR:
	case PVEC_TYPE_PARTICLE_INITIAL_VECTOR:
		AddRow( m_pLayout, pPage, h, { m_pTypeButton, label( "Input Field: " ), m_pAttributeCombo }, false );
		AddRow( m_pLayout, pPage, h, { label( "Scale:" ), m_pAttributeScale }, true );
		AddRow( m_pLayout, pPage, h, {}, false );
		break;
	case PVEC_TYPE_PARTICLE_VELOCITY:
		AddRow( m_pLayout, pPage, h, { m_pTypeButton, label( "Scale:" ), m_pAttributeScale }, false );
		AddRow( m_pLayout, pPage, h, {}, false );
		break;
	case PVEC_TYPE_CP_VALUE:
	case PVEC_TYPE_CP_RELATIVE_POSITION:
	case PVEC_TYPE_CP_RELATIVE_DIR:
	{
		AddRow( m_pLayout, pPage, h, { m_pTypeButton, label( "CP#" ), m_pCPEdit }, false );
		if ( m_Input.m_nType == PVEC_TYPE_CP_VALUE )
			AddRow( m_pLayout, pPage, h, { label( "Scale:" ), m_pCPScale }, true );
		else if ( m_Input.m_nType == PVEC_TYPE_CP_RELATIVE_POSITION )
			AddRow( m_pLayout, pPage, h, { label( "Relative Position: " ), m_pCPRelativePosition }, true );
		else
			AddRow( m_pLayout, pPage, h, { label( "Relative Direction: " ), m_pCPRelativeDir }, true );
		break;
	}
	case PVEC_TYPE_CP_RELATIVE_RANDOM_DIR:
		AddRow( m_pLayout, pPage, h, { m_pTypeButton, label( "CP#" ), m_pCPEdit }, false );
		AddRow( m_pLayout, pPage, h, { label( "Random Min:" ), m_pRandomMin }, true );
		AddRow( m_pLayout, pPage, h, { label( "Random Max:" ), m_pRandomMax }, true );
		AddRow( m_pLayout, pPage, 2 * h, {}, false );
		break;
	case PVEC_TYPE_FLOAT_COMPONENTS:
		AddRow( m_pLayout, pPage, h, { m_pTypeButton, label( "3 Float Inputs" ) }, false );
		for ( int i = 0; i < 3; ++i )
		{
			QLabel *pName = label( COMPONENT_NAMES[ i ] );
			pName->setFixedWidth( 12 );
			m_pCollapseButtons[ i ]->setArrowType( m_bCollapsed[ i ] ? Qt::RightArrow : Qt::DownArrow );
			QWidget *pBody = m_bCollapsed[ i ] ? static_cast<QWidget *>( m_pComponentSummaries[ i ] ) : m_pFloatEditors[ i ];
			QWidget *pComponentRow = AddRow( m_pLayout, pPage, ComponentRowHeight( i ), { m_pCollapseButtons[ i ], pName, pBody }, false );
			static_cast<QHBoxLayout *>( pComponentRow->layout() )->setAlignment( m_pCollapseButtons[ i ], Qt::AlignTop );
			static_cast<QHBoxLayout *>( pComponentRow->layout() )->setAlignment( pName, Qt::AlignTop );
			static_cast<QHBoxLayout *>( pComponentRow->layout() )->setStretchFactor( pBody, 1 );
		}
		break;
	case PVEC_TYPE_FLOAT_INTERP_CLAMPED:
	case PVEC_TYPE_FLOAT_INTERP_OPEN:
	case PVEC_TYPE_FLOAT_INTERP_GRADIENT:
	{
		QWidget *pInterpRow = AddRow( m_pLayout, pPage, qMax( h, m_pFloatEditors[ INTERP_EDITOR ]->GetPreferredHeight() ),
									  { m_pTypeButton, m_pFloatEditors[ INTERP_EDITOR ] }, false );
		static_cast<QHBoxLayout *>( pInterpRow->layout() )->setAlignment( m_pTypeButton, Qt::AlignTop );
		static_cast<QHBoxLayout *>( pInterpRow->layout() )->setStretchFactor( m_pFloatEditors[ INTERP_EDITOR ], 1 );
		AddRow( m_pLayout, pPage, VEC_INPUT_INTERP_ROW_HEIGHT, { label( "Input:" ), m_pInterpInput0, m_pReverseInput, m_pInterpInput1 }, true );
		if ( m_Input.m_nType == PVEC_TYPE_FLOAT_INTERP_GRADIENT )
		{
			m_pGradient->setParent( pPage );
			m_pLayout->addWidget( m_pGradient );
			m_pGradient->show();
		}
		else
			AddRow( m_pLayout, pPage, VEC_INPUT_INTERP_ROW_HEIGHT, { label( "Output:" ), m_pInterpOutput0, m_pReverseOutput, m_pInterpOutput1 }, true );
		break;
	}
	case PVEC_TYPE_RANDOM_UNIFORM:
		AddRow( m_pLayout, pPage, h, { m_pTypeButton, label( "Random Uniform" ) }, false );
		AddRow( m_pLayout, pPage, h, { label( "Random Min:" ), m_pRandomMin }, true );
		AddRow( m_pLayout, pPage, h, { label( "Random Max:" ), m_pRandomMax }, true );
		break;
	case PVEC_TYPE_RANDOM_UNIFORM_OFFSET:
		AddRow( m_pLayout, pPage, h, { m_pTypeButton, m_pAttributeCombo }, false );
		AddRow( m_pLayout, pPage, h, { label( "Scale:" ), m_pAttributeScale }, true );
		AddRow( m_pLayout, pPage, h, { label( "Random Min:" ), m_pRandomMin }, true );
		AddRow( m_pLayout, pPage, h, { label( "Random Max:" ), m_pRandomMax }, true );
		AddRow( m_pLayout, pPage, h, {}, false );
		break;
	case PVEC_TYPE_CP_DELTA:
		AddRow( m_pLayout, pPage, h, { m_pTypeButton, label( "CP#" ), m_pCPEdit, label( "Delta CP#" ), m_pDeltaCPEdit }, false );
		AddRow( m_pLayout, pPage, h, {}, false );
		break;
	case PVEC_TYPE_CLOSEST_CAMERA_POSITION:
		AddRow( m_pLayout, pPage, h, { m_pTypeButton, label( "Closest Camera Position" ) }, false );
		AddRow( m_pLayout, pPage, h, { label( "Relative Position: " ), m_pCPRelativePosition }, true );
		break;
	default: AddRow( m_pLayout, pPage, h, { m_pTypeButton }, false ); break;
	}

	// The attribute combo holds vector attributes; the initial vector names their first values.
	{
		const QSignalBlocker block( m_pAttributeCombo );
		m_pAttributeCombo->clear();
		for ( const FloatInputAttributeChoice_t &choice :
			  GetFloatInputAttributeChoices( FLOAT_INPUT_VECTOR_ATTRIBUTES, m_Input.m_nType == PVEC_TYPE_PARTICLE_INITIAL_VECTOR ) )
			m_pAttributeCombo->addItem( QString::fromStdString( choice.m_Name ), choice.m_nAttribute );
	}
	setFixedHeight( GetPreferredHeight() );
	m_pPage->show();
	ShowValues();
}

void CQParticleVecInputEditor::UpdateComponentSummary( int nComponent )
{
	CBufferString text;
	BuildDisplayString( FloatInputOf( m_Input, nComponent ), &text, "" );
	m_pComponentSummaries[ nComponent ]->setText( QString::fromUtf8( text.Get() ) );
}

void CQParticleVecInputEditor::SetComponentCollapsed( int nComponent, bool bCollapsed )
{
	if ( m_bCollapsed[ nComponent ] == bCollapsed )
		return;
	m_bCollapsed[ nComponent ] = bCollapsed;
	LayOut();
}

void CQParticleVecInputEditor::ShowValues()
{
	const CParticleVecInput &in = m_Input;
	m_pLiteral->SetVector( in.m_vLiteralValue );
	m_pColor->SetAllowAlpha( false );
	m_pColor->SetColor( ToQColor( in.m_LiteralColor ) );
	if ( in.m_nType == PVEC_TYPE_NAMED_VALUE )
		FillVariableCombo( m_pNamedValueCombo, CPulseValueFullType( PVAL_VEC3 ), in.m_NamedValue.GetName() );
	{
		const QSignalBlocker blockFollow( m_pFollowValue );
		m_pFollowValue->setChecked( in.m_bFollowNamedValue );
		const QSignalBlocker blockAttribute( m_pAttributeCombo );
		m_pAttributeCombo->setCurrentIndex( m_pAttributeCombo->findData( int( in.m_nVectorAttribute ) ) );
	}
	m_pAttributeScale->SetVector( in.m_vVectorAttributeScale );
	ShowInteger( m_pCPEdit, in.m_nControlPoint );
	ShowInteger( m_pDeltaCPEdit, in.m_nDeltaControlPoint );
	m_pCPScale->SetVector( in.m_vCPValueScale );
	m_pCPRelativePosition->SetVector( in.m_vCPRelativePosition );
	m_pCPRelativeDir->SetVector( in.m_vCPRelativeDir );
	m_pRandomMin->SetVector( in.m_vRandomMin );
	m_pRandomMax->SetVector( in.m_vRandomMax );
	for ( int i = 0; i < 4; ++i )
	{
		m_pFloatEditors[ i ]->SetInput( FloatInputOf( m_Input, i ) );
		if ( i < 3 )
			UpdateComponentSummary( i );
	}
	ShowNumber( m_pInterpInput0, in.m_flInterpInput0 );
	ShowNumber( m_pInterpInput1, in.m_flInterpInput1 );
	m_pInterpOutput0->SetVector( in.m_vInterpOutput0 );
	m_pInterpOutput1->SetVector( in.m_vInterpOutput1 );
	// The gradient's editor keeps its selection and history through rereads of its own edits.
	if ( in.m_nType == PVEC_TYPE_FLOAT_INTERP_GRADIENT && !SameGradient( in.m_Gradient, m_pGradient->GetGradient() ) )
		m_pGradient->SetGradient( in.m_Gradient, false );
	const bool bWritable = !IsReadOnly();
	for ( CQVectorEdit *pVector : { m_pLiteral, m_pAttributeScale, m_pCPScale, m_pCPRelativePosition, m_pCPRelativeDir, m_pRandomMin, m_pRandomMax,
									m_pInterpOutput0, m_pInterpOutput1 } )
		pVector->SetReadOnly( !bWritable );
	m_pColor->setEnabled( bWritable );
	m_pGradient->setEnabled( bWritable );
}

//-----------------------------------------------------------------------------
// Reading and writing
//-----------------------------------------------------------------------------

void CQParticleVecInputEditor::ReadFromAttribute()
{
	if ( !GetHost() )
		return;
	CParticleVecInput loaded;
	if ( !IsMultiSelect() )
	{
		if ( m_bPerParticle )
		{
			CPerParticleVecInput input;
			LoadTargetInput( &input );
			loaded = input;
		}
		else
		{
			CParticleCollectionVecInput input;
			LoadTargetInput( &input );
			loaded = input;
		}
	}
	m_Input = loaded;
	for ( int i = 0; i < 4; ++i )
		m_pFloatEditors[ i ]->SetInput( FloatInputOf( m_Input, i ) );
	const int nInstances = qMax( 1, GetTargetCount() );
	if ( m_Input.m_nType == m_nLaidOutType && nInstances == m_nLaidOutInstances && GetPreferredHeight() == height() )
		ShowValues();
	else
		LayOut();
}

void CQParticleVecInputEditor::WriteToAttribute()
{
	if ( m_bPerParticle )
	{
		CPerParticleVecInput input;
		static_cast<CParticleVecInput &>( input ) = m_Input;
		SaveTargetInput( input );
	}
	else if ( m_bRenderer )
	{
		CParticleCollectionRendererVecInput input;
		static_cast<CParticleVecInput &>( input ) = m_Input;
		SaveTargetInput( input );
	}
	else
	{
		CParticleCollectionVecInput input;
		static_cast<CParticleVecInput &>( input ) = m_Input;
		SaveTargetInput( input );
	}
}

void CQParticleVecInputEditor::DisconnectAndClear()
{
	CQParticleInputEditorBase::DisconnectAndClear();
	m_Input = CParticleVecInput();
	m_nLaidOutType = INT32_MIN;
}

void CQParticleVecInputEditor::Commit()
{
	if ( IsReadOnly() || IsMultiSelect() )
		return;
	CommitToHost();
}

//-----------------------------------------------------------------------------
// Types
//-----------------------------------------------------------------------------

QMenu *CQParticleVecInputEditor::CreateTypeMenu()
{
	return CQParticleInputEditorBase::CreateTypeMenu( MenuRows( GetVecInputTypeMenu( m_bPerParticle, IsFieldOptional() ) ), m_Input.m_nType, [ this ]( int nType ) { OnSetType( nType ); } );
}

void CQParticleVecInputEditor::OnTypeButtonClicked()
{
	PopUpMenu( CreateTypeMenu() );
}

void CQParticleVecInputEditor::OnSetType( int nType )
{
	if ( nType == m_Input.m_nType )
		return;
	m_Input.m_nType = ParticleVecType_t( nType );
	// The page changes shape: written, then rebuilt at its new height.
	m_bChangingType = true;
	Commit();
	LayOut();
	m_bChangingType = false;
}

//-----------------------------------------------------------------------------
// Edits
//-----------------------------------------------------------------------------

void CQParticleVecInputEditor::OnLiteralValueEdited()
{
	const Vector v = m_pLiteral->GetVector();
	if ( v == m_Input.m_vLiteralValue )
		return;
	m_Input.m_vLiteralValue = v;
	Commit();
}

void CQParticleVecInputEditor::OnNamedValueEdited( const QString &text )
{
	if ( TakeVariableName( text, &m_Input.m_NamedValue ) )
		Commit();
}

void CQParticleVecInputEditor::OnNamedValueHighlighted( int nIndex )
{
	ShowHighlightedVariable( m_pNamedValueCombo, nIndex );
}

void CQParticleVecInputEditor::OnCPNumberEdited()
{
	if ( TakeControlPointNumber( m_pCPEdit, &m_Input.m_nControlPoint ) )
		Commit();
}

void CQParticleVecInputEditor::OnDeltaCPNumberEdited()
{
	if ( TakeControlPointNumber( m_pDeltaCPEdit, &m_Input.m_nDeltaControlPoint ) )
		Commit();
}

void CQParticleVecInputEditor::OnCPVectorEdited()
{
	const Vector vScale = m_pCPScale->GetVector(), vPosition = m_pCPRelativePosition->GetVector(), vDir = m_pCPRelativeDir->GetVector();
	if ( vScale == m_Input.m_vCPValueScale && vPosition == m_Input.m_vCPRelativePosition && vDir == m_Input.m_vCPRelativeDir )
		return;
	m_Input.m_vCPValueScale = vScale;
	m_Input.m_vCPRelativePosition = vPosition;
	m_Input.m_vCPRelativeDir = vDir;
	Commit();
}

void CQParticleVecInputEditor::OnFloatComponentEdit( bool bTopological )
{
	for ( int i = 0; i < 3; ++i )
	{
		if ( sender() != m_pFloatEditors[ i ] )
			continue;
		FloatInputOf( m_Input, i ) = m_pFloatEditors[ i ]->GetInput();
		UpdateComponentSummary( i );
	}
	Commit();
	// A component that changed its page changes the row's height.
	if ( bTopological )
		LayOut();
}

void CQParticleVecInputEditor::OnFloatInterpEdit( bool bTopological )
{
	m_Input.m_FloatInterp = m_pFloatEditors[ INTERP_EDITOR ]->GetInput();
	Commit();
	if ( bTopological )
		LayOut();
}

void CQParticleVecInputEditor::OnInterpInputEdited()
{
	const float flInput0 = m_pInterpInput0->text().trimmed().toFloat();
	const float flInput1 = m_pInterpInput1->text().trimmed().toFloat();
	ShowNumber( m_pInterpInput0, flInput0 );
	ShowNumber( m_pInterpInput1, flInput1 );
	if ( flInput0 == m_Input.m_flInterpInput0 && flInput1 == m_Input.m_flInterpInput1 )
		return;
	m_Input.m_flInterpInput0 = flInput0;
	m_Input.m_flInterpInput1 = flInput1;
	Commit();
}

void CQParticleVecInputEditor::OnInterpOutputEdited()
{
	const Vector v0 = m_pInterpOutput0->GetVector(), v1 = m_pInterpOutput1->GetVector();
	if ( v0 == m_Input.m_vInterpOutput0 && v1 == m_Input.m_vInterpOutput1 )
		return;
	m_Input.m_vInterpOutput0 = v0;
	m_Input.m_vInterpOutput1 = v1;
	Commit();
}

void CQParticleVecInputEditor::OnReverseInputClicked()
{
	std::swap( m_Input.m_flInterpInput0, m_Input.m_flInterpInput1 );
	ShowNumber( m_pInterpInput0, m_Input.m_flInterpInput0 );
	ShowNumber( m_pInterpInput1, m_Input.m_flInterpInput1 );
	Commit();
}

void CQParticleVecInputEditor::OnReverseOutputClicked()
{
	std::swap( m_Input.m_vInterpOutput0, m_Input.m_vInterpOutput1 );
	m_pInterpOutput0->SetVector( m_Input.m_vInterpOutput0 );
	m_pInterpOutput1->SetVector( m_Input.m_vInterpOutput1 );
	Commit();
}

void CQParticleVecInputEditor::OnGradientEdited( bool bFinished )
{
	// A drag in the gradient shows as it goes; the document takes it once, when it's done.
	if ( !bFinished )
		return;
	m_Input.m_Gradient = m_pGradient->GetGradient();
	Commit();
}

void CQParticleVecInputEditor::OnAttributeIndexChanged()
{
	const QVariant data = m_pAttributeCombo->currentData();
	if ( !data.isValid() || data.toInt() == m_Input.m_nVectorAttribute )
		return;
	m_Input.m_nVectorAttribute = data.toInt();
	Commit();
}

void CQParticleVecInputEditor::OnVectorAttributeScaleEdited()
{
	const Vector v = m_pAttributeScale->GetVector();
	if ( v == m_Input.m_vVectorAttributeScale )
		return;
	m_Input.m_vVectorAttributeScale = v;
	Commit();
}

void CQParticleVecInputEditor::OnRandomMinValueEdited()
{
	const Vector v = m_pRandomMin->GetVector();
	if ( v == m_Input.m_vRandomMin )
		return;
	m_Input.m_vRandomMin = v;
	Commit();
}

void CQParticleVecInputEditor::OnRandomMaxValueEdited()
{
	const Vector v = m_pRandomMax->GetVector();
	if ( v == m_Input.m_vRandomMax )
		return;
	m_Input.m_vRandomMax = v;
	Commit();
}
