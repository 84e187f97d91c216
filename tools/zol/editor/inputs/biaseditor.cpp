#include "tools/zol/editor/inputs/biaseditor.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cstdlib>

#include "particleslib/particlebiascurves.h"
#include "tools/widgets/smartlineedit.h"

CQBiasCurveView::CQBiasCurveView( QWidget *pParent ) : QWidget( pParent )
{
	setFixedSize( WIDTH, HEIGHT );
	setCursor( Qt::SizeFDiagCursor );
	setToolTip( QStringLiteral( "Drag to shape the curve" ) );
}

void CQBiasCurveView::SetBias( int nBiasType, float flParameter )
{
	m_nBiasType = nBiasType;
	m_flParameter = flParameter;
	update();
}

void CQBiasCurveView::mousePressEvent( QMouseEvent *pEvent )
{
	if ( pEvent->button() != Qt::LeftButton )
		return;
	m_bPressed = true;
	m_bDragging = false;
	m_PressPos = pEvent->pos();
}

void CQBiasCurveView::mouseMoveEvent( QMouseEvent *pEvent )
{
	if ( !m_bPressed )
		return;
	const QPoint delta = pEvent->pos() - m_PressPos;
	if ( !m_bDragging )
	{
		if ( std::abs( delta.x() ) + std::abs( delta.y() ) <= DRAG_THRESHOLD )
			return;
		m_bDragging = true;
		m_flDragStartParameter = m_flParameter;
	}
	// Right and down flatten the start of the curve, left and up steepen it.
	m_flParameter = std::clamp( m_flDragStartParameter - float( delta.x() + delta.y() ) * DRAG_STEP, -DRAG_LIMIT, DRAG_LIMIT );
	update();
	emit BiasParameterChanging();
}

void CQBiasCurveView::mouseReleaseEvent( QMouseEvent *pEvent )
{
	if ( pEvent->button() != Qt::LeftButton || !m_bPressed )
		return;
	m_bPressed = false;
	if ( m_bDragging )
	{
		m_bDragging = false;
		emit BiasParameterEdited();
	}
}

void CQBiasCurveView::paintEvent( QPaintEvent * )
{
	QPainter painter( this );
	painter.setRenderHint( QPainter::Antialiasing, true );
	painter.setPen( QPen( Qt::yellow, 1.0 ) );
	const int nSamples = 4 * ( width() / 16 );
	QVector<QPointF> points;
	points.reserve( nSamples );
	for ( int i = 0; i < nSamples; ++i )
	{
		float t = nSamples > 1 ? float( i ) / float( nSamples - 1 ) : 0.0f;
		float f = ParticleBiasCurve( ParticleFloatBiasType_t( m_nBiasType ), m_flParameter, t );
		points.append( QPointF( t * ( width() - 2 ) + 1, ( 1.0f - f ) * ( height() - 3 ) + 2 ) );
	}
	painter.drawPolyline( points.constData(), points.size() );
	painter.setRenderHint( QPainter::Antialiasing, false );
	painter.setPen( QColor( 73, 73, 73 ) );
	painter.setBrush( Qt::NoBrush );
	painter.drawRect( rect().adjusted( 0, 0, -1, -1 ) );
}

//-----------------------------------------------------------------------------
// The row
//-----------------------------------------------------------------------------

CQBiasEditor::CQBiasEditor( QWidget *pParent ) : QWidget( pParent )
{
	setFixedHeight( HEIGHT );
	auto *pLayout = new QHBoxLayout( this );
	pLayout->setContentsMargins( 0, 1, 0, 1 );
	pLayout->setSpacing( 1 );
	m_pTypeCombo = new QComboBox( this );
	m_pTypeCombo->addItem( QStringLiteral( "Bias:" ), 0 );
	m_pTypeCombo->addItem( QStringLiteral( "Gain:" ), 1 );
	m_pTypeCombo->addItem( QStringLiteral( "Exponent:" ), 2 );
	m_pEdit = new CQSmartLineEdit( this );
	m_pEdit->SetNumberKind( CQSmartLineEdit::NUMBER_KIND_FLOAT );
	m_pEdit->SetMinimum( -1.0 );
	m_pEdit->SetMaximum( 1.0 );
	m_pEdit->setFixedWidth( EDIT_WIDTH );
	QFont font = m_pEdit->font();
	font.setPixelSize( 14 );
	m_pEdit->setFont( font );
	m_pEdit->setAlignment( Qt::AlignRight | Qt::AlignVCenter );
	m_pView = new CQBiasCurveView( this );
	pLayout->addStretch( 1 );
	pLayout->addWidget( m_pTypeCombo );
	pLayout->addSpacing( 4 );
	pLayout->addWidget( m_pEdit );
	pLayout->addSpacing( 4 );
	pLayout->addWidget( m_pView );
	pLayout->addStretch( 1 );

	connect( m_pTypeCombo, QOverload<int>::of( &QComboBox::activated ), this, &CQBiasEditor::OnBiasTypeComboChanged );
	connect( m_pEdit, &CQSmartLineEdit::editingFinished, this, &CQBiasEditor::OnTextEdited );
	connect( m_pEdit, &CQSmartLineEdit::FocusOut, this, &CQBiasEditor::OnTextEdited );
	connect( m_pView, &CQBiasCurveView::BiasParameterChanging, this, &CQBiasEditor::OnCurveChanging );
	connect( m_pView, &CQBiasCurveView::BiasParameterEdited, this, &CQBiasEditor::OnCurveEdited );
	ShowParameter();
}

CQBiasEditor::~CQBiasEditor()
{
	// The edit tells its focus leaving as it goes; this row is half gone by then.
	m_pEdit->disconnect( this );
}

void CQBiasEditor::SetBias( int nBiasType, float flParameter )
{
	m_nBiasType = nBiasType;
	m_flParameter = std::clamp( flParameter, -1.0f, 1.0f );
	const QSignalBlocker blockCombo( m_pTypeCombo );
	m_pTypeCombo->setCurrentIndex( m_pTypeCombo->findData( nBiasType ) );
	ShowParameter();
}

void CQBiasEditor::ShowParameter()
{
	const QSignalBlocker blockEdit( m_pEdit );
	const QSignalBlocker blockView( m_pView );
	m_pEdit->setText( QString::number( double( m_flParameter ), 'f', 3 ) );
	m_pView->SetBias( m_nBiasType, m_flParameter );
}

void CQBiasEditor::SetParameter( float flParameter )
{
	flParameter = std::clamp( flParameter, -1.0f, 1.0f );
	const bool bChanged = flParameter != m_flParameter;
	m_flParameter = flParameter;
	ShowParameter();
	if ( bChanged )
		emit BiasParameterChanged();
}

void CQBiasEditor::OnBiasTypeComboChanged()
{
	const int nType = m_pTypeCombo->currentData().toInt();
	if ( nType == m_nBiasType )
		return;
	m_nBiasType = nType;
	m_pView->SetBias( m_nBiasType, m_flParameter );
	emit BiasTypeChanged();
}

void CQBiasEditor::OnTextEdited()
{
	SetParameter( m_pEdit->text().toFloat() );
}

void CQBiasEditor::OnCurveChanging()
{
	const QSignalBlocker block( m_pEdit );
	m_pEdit->setText( QString::number( double( m_pView->GetParameter() ), 'f', 3 ) );
}

void CQBiasEditor::OnCurveEdited()
{
	SetParameter( m_pView->GetParameter() );
}
