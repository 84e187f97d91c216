#include "tools/widgets/sliderlineeditfloat.h"

#include <QHBoxLayout>
#include <QSignalBlocker>

#include <algorithm>
#include <cmath>

#include "tools/widgets/slider.h"
#include "tools/widgets/smartlineedit.h"

namespace
{
constexpr int EDIT_MINIMUM_WIDTH = 40;
constexpr const char *MIXED_PLACEHOLDER = "(several values)";
} // namespace

CQSliderLineEditFloat::CQSliderLineEditFloat( QWidget *pParent ) : QWidget( pParent )
{
	QHBoxLayout *pLayout = new QHBoxLayout( this );
	pLayout->setContentsMargins( 0, 0, 0, 0 );
	pLayout->setSpacing( 4 );
	m_pSlider = new CQSlider( this );
	m_pSlider->SetRange( 0.0, SLIDER_RANGE );
	m_pEdit = new CQSmartLineEdit( this );
	m_pEdit->setMinimumWidth( EDIT_MINIMUM_WIDTH );
	m_pEdit->SetNumberKind( CQSmartLineEdit::NUMBER_KIND_FLOAT );
	m_pEdit->SetWhitespaceWarning( false );
	pLayout->addWidget( m_pSlider, 3 );
	pLayout->addWidget( m_pEdit, 2 );
	setFocusProxy( m_pEdit );

	connect( m_pSlider, &CQSlider::valueChanged, this, &CQSliderLineEditFloat::UpdateEditFromSlider );
	connect( m_pSlider, &CQSlider::sliderPressed, this, &CQSliderLineEditFloat::GestureStarted );
	connect( m_pSlider, &CQSlider::sliderReleased, this, &CQSliderLineEditFloat::GestureEnded );
	connect( m_pEdit, &QLineEdit::editingFinished, this, &CQSliderLineEditFloat::UpdateSliderFromEdit );
	connect( m_pEdit, &CQSmartLineEdit::DragStarted, this, &CQSliderLineEditFloat::GestureStarted );
	connect( m_pEdit, &CQSmartLineEdit::DragStepped, this, &CQSliderLineEditFloat::OnEditDragStepped );
	connect( m_pEdit, &CQSmartLineEdit::DragEnded, this, &CQSliderLineEditFloat::GestureEnded );
	connect( m_pEdit, &CQSmartLineEdit::FocusIn, this, &CQSliderLineEditFloat::FocusIn );
	connect( m_pEdit, &CQSmartLineEdit::FocusOut, this, &CQSliderLineEditFloat::FocusOut );
	ShowValue();
}

CQSliderLineEditFloat::~CQSliderLineEditFloat()
{
	// The field loses focus as it goes, and would finish its edit into a half-gone widget.
	m_pEdit->disconnect( this );
	m_pSlider->disconnect( this );
}

void CQSliderLineEditFloat::SetSoftRange( double flMinimum, double flMaximum )
{
	m_flSoftMinimum = std::min( flMinimum, flMaximum );
	m_flSoftMaximum = std::max( flMinimum, flMaximum );
	ShowValue();
}

void CQSliderLineEditFloat::SetHardLimits( bool bHasMinimum, double flMinimum, bool bHasMaximum, double flMaximum )
{
	m_bHasHardMinimum = bHasMinimum;
	m_bHasHardMaximum = bHasMaximum;
	m_flHardMinimum = flMinimum;
	m_flHardMaximum = flMaximum;
	m_pEdit->ClearLimits();
	if ( bHasMinimum )
		m_pEdit->SetMinimum( flMinimum );
	if ( bHasMaximum )
		m_pEdit->SetMaximum( flMaximum );
	m_flValue = Clamp( m_flValue );
	ShowValue();
}

void CQSliderLineEditFloat::SetIntegral( bool bIntegral )
{
	m_bIntegral = bIntegral;
	m_pEdit->SetNumberKind( bIntegral ? CQSmartLineEdit::NUMBER_KIND_INTEGER : CQSmartLineEdit::NUMBER_KIND_FLOAT );
	m_flValue = Clamp( m_flValue );
	ShowValue();
}

void CQSliderLineEditFloat::SetValue( double flValue )
{
	m_bMixed = false;
	m_flValue = Clamp( flValue );
	ShowValue();
}

void CQSliderLineEditFloat::SetMixed( bool bMixed )
{
	m_bMixed = bMixed;
	ShowValue();
}

void CQSliderLineEditFloat::SetReadOnly( bool bReadOnly )
{
	m_pEdit->setReadOnly( bReadOnly );
	m_pSlider->setEnabled( !bReadOnly );
}

double CQSliderLineEditFloat::Clamp( double flValue ) const
{
	if ( m_bIntegral )
		flValue = std::rint( flValue );
	if ( m_bHasHardMinimum )
		flValue = std::max( flValue, m_flHardMinimum );
	if ( m_bHasHardMaximum )
		flValue = std::min( flValue, m_flHardMaximum );
	return flValue;
}

void CQSliderLineEditFloat::ShowValue()
{
	{
		const QSignalBlocker blocker( m_pSlider );
		double flRange = m_flSoftMaximum - m_flSoftMinimum;
		double flPosition = flRange > 0.0 ? ( m_flValue - m_flSoftMinimum ) / flRange * SLIDER_RANGE : 0.0;
		m_pSlider->SetValue( std::clamp( flPosition, 0.0, SLIDER_RANGE ) );
	}
	m_pEdit->setPlaceholderText( m_bMixed ? MIXED_PLACEHOLDER : "" );
	QString text = m_bMixed ? QString() : m_bIntegral ? QString::number( qint64( m_flValue ) ) : QString::number( m_flValue, 'g', 6 );
	if ( m_pEdit->text() != text )
		m_pEdit->setText( text );
	m_pEdit->setModified( false );
}

void CQSliderLineEditFloat::Take( double flValue )
{
	flValue = Clamp( flValue );
	bool bChanged = m_bMixed || flValue != m_flValue;
	m_bMixed = false;
	m_flValue = flValue;
	ShowValue();
	if ( bChanged )
		emit ValueChanged( m_flValue );
}

void CQSliderLineEditFloat::UpdateSliderFromEdit()
{
	bool bOk = false;
	double flValue = m_pEdit->GetNumber( &bOk );
	if ( !bOk )
	{
		// Not a number: the field shows what the value is.
		ShowValue();
		return;
	}
	Take( flValue );
}

void CQSliderLineEditFloat::UpdateEditFromSlider()
{
	double flPosition = m_pSlider->GetValue() / SLIDER_RANGE;
	Take( m_flSoftMinimum + flPosition * ( m_flSoftMaximum - m_flSoftMinimum ) );
}

void CQSliderLineEditFloat::OnEditDragStepped()
{
	bool bOk = false;
	double flValue = m_pEdit->GetNumber( &bOk );
	if ( bOk )
		Take( flValue );
}
