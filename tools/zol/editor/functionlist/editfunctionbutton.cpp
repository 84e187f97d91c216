#include "tools/zol/editor/functionlist/editfunctionbutton.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QStyle>

#include "tools/widgets/draghandlewidget.h"
#include "tools/widgets/elidedlabel.h"
#include "tools/zol/editor/functionlist/writtenattributeslabel.h"
#include "tools/zol/editor/functionlist/particlefunctionbasewidget.h"

namespace
{
CQElidedLabel *MakeLabel( const char *pObjectName, int nPixelSize, bool bBold, QWidget *pParent )
{
	// Colours come from the list's style sheet, by object name. A narrow dock cuts the
	// texts with "..." rather than pushing the row's buttons out of sight.
	auto *pLabel = new CQElidedLabel( pParent );
	pLabel->setObjectName( pObjectName );
	pLabel->SetElideMode( Qt::ElideRight );
	pLabel->setSizePolicy( QSizePolicy::Preferred, QSizePolicy::Preferred );
	QFont font = pLabel->font();
	font.setPixelSize( nPixelSize );
	font.setBold( bBold );
	pLabel->setFont( font );
	// Clicks on the texts are clicks on the button.
	pLabel->setAttribute( Qt::WA_TransparentForMouseEvents );
	return pLabel;
}
} // namespace

CQEditFunctionButton::CQEditFunctionButton( CQParticleFunctionBaseWidget *pOwner, bool bWithCheckBox, QWidget *pParent )
	: QPushButton( pParent ), m_pOwner( pOwner )
{
	setObjectName( "ZOL_EditFunctionButton" );
	setCheckable( true );
	setFocusPolicy( Qt::NoFocus );
	setProperty( "bCurrentActiveFunction", false );
	// A push button would never be narrower than its texts; this one cuts them instead.
	setSizePolicy( QSizePolicy::Expanding, QSizePolicy::Fixed );

	auto *pLayout = new QHBoxLayout( this );
	pLayout->setContentsMargins( 3, 2, 0, 2 );
	pLayout->setSpacing( 4 );
	if ( bWithCheckBox )
	{
		pLayout->addSpacing( 2 );
		m_pCheckBox = new QCheckBox( this );
		m_pCheckBox->setObjectName( "ZOL_FunctionToggleEnabledCheckbox" );
		m_pCheckBox->setFixedSize( 16, 16 );
		m_pCheckBox->setFocusPolicy( Qt::NoFocus );
		m_pCheckBox->setToolTip( tr( "Disable" ) );
		m_pCheckBox->setChecked( true );
		connect( m_pCheckBox, &QCheckBox::stateChanged, this, &CQEditFunctionButton::EnableDisableBoxChanged );
		pLayout->addWidget( m_pCheckBox );
	}
	else if ( !pOwner )
	{
		pLayout->addSpacing( 4 );
	}
	m_pNameLabel = MakeLabel( "ZOL_FunctionNameLabel", 14, true, this );
	m_pValueLabel = MakeLabel( "ZOL_FunctionValueLabel", 12, false, this );
	m_pAttributeLabel = new CQWrittenAttributesLabel( this );
	m_pAttributeLabel->setObjectName( "ZOL_FunctionAttributeLabel" );
	QFont attributeFont = m_pAttributeLabel->font();
	attributeFont.setPixelSize( 10 );
	m_pAttributeLabel->setFont( attributeFont );
	pLayout->addWidget( m_pNameLabel );
	pLayout->addWidget( m_pValueLabel );
	// The attributes take what the texts leave, and fit themselves into it.
	pLayout->addWidget( m_pAttributeLabel, 1 );
	if ( pOwner )
	{
		m_pDragHandle = new CQDragHandleWidget( pOwner, this );
		pLayout->addWidget( m_pDragHandle );
	}
	pLayout->addSpacing( 2 );
}

void CQEditFunctionButton::SetTexts( const QString &name, const QString &value, const QString &hint )
{
	m_pNameLabel->SetText( name );
	// The name is what an artist looks for: in a narrow list the value beside it gives way
	// first, and the name keeps up to NAME_KEPT_WIDTH pixels before it is cut too.
	m_pNameLabel->setMinimumWidth( qMin( m_pNameLabel->sizeHint().width(), NAME_KEPT_WIDTH ) );
	m_pValueLabel->SetText( value );
	m_pValueLabel->setVisible( !value.isEmpty() );
	setToolTip( hint );
}

void CQEditFunctionButton::SetNameColor( const QColor &color )
{
	if ( color == m_NameColor )
		return;
	m_NameColor = color;
	// The label's own style sheet wins over the list's.
	m_pNameLabel->setStyleSheet( color.isValid() ? QStringLiteral( "color: %1;" ).arg( color.name() ) : QString() );
}

void CQEditFunctionButton::SetEnabledBoxQuietly( bool bChecked )
{
	if ( !m_pCheckBox )
		return;
	const bool bWasBlocked = m_pCheckBox->blockSignals( true );
	m_pCheckBox->setChecked( bChecked );
	m_pCheckBox->blockSignals( bWasBlocked );
}

void CQEditFunctionButton::SetActive( bool bActive )
{
	const bool bWasBlocked = blockSignals( true );
	setChecked( bActive );
	blockSignals( bWasBlocked );
	if ( property( "bCurrentActiveFunction" ).toBool() == bActive )
		return;
	setProperty( "bCurrentActiveFunction", bActive );
	// Style sheets read the property only when polished.
	style()->unpolish( this );
	style()->polish( this );
	update();
}

QSize CQEditFunctionButton::sizeHint() const
{
	// A push button measures its own text; this one is its layout.
	QSize hint = layout()->sizeHint();
	return QSize( hint.width() + 8, qMax( hint.height() + 4, 26 ) );
}

QSize CQEditFunctionButton::minimumSizeHint() const
{
	QSize hint = layout()->minimumSize();
	return QSize( qMin( hint.width(), 80 ), qMax( hint.height() + 4, 26 ) );
}

void CQEditFunctionButton::mousePressEvent( QMouseEvent *pEvent )
{
	m_ClickModifiers = pEvent->modifiers();
	QPushButton::mousePressEvent( pEvent );
}

void CQEditFunctionButton::mouseReleaseEvent( QMouseEvent *pEvent )
{
	m_ClickModifiers = pEvent->modifiers();
	QPushButton::mouseReleaseEvent( pEvent );
}

void CQEditFunctionButton::mouseDoubleClickEvent( QMouseEvent *pEvent )
{
	QPushButton::mouseDoubleClickEvent( pEvent );
	if ( pEvent->button() == Qt::LeftButton )
		emit DoubleClicked();
}
