#include "tools/widgets/color/colordialog.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QRadioButton>
#include <QScrollArea>
#include <QSlider>
#include <QVBoxLayout>

#include <algorithm>

#include "tools/widgets/color/colordialoggrid.h"
#include "tools/widgets/color/colordialogplane.h"
#include "tools/widgets/color/colorpainting.h"
#include "tools/widgets/color/colorsampler.h"

namespace
{
// The mode lives for the process: the next picker opens as the last one was left.
int s_nRememberedMode = COLOR_DIALOG_MODE_H;

const char *const CHANNEL_LABELS[ 6 ] = { "H:", "S:", "V:", "R:", "G:", "B:" };

// One of the "Previous" and "New" samples.
class CQColorSample : public QWidget
{
public:
	explicit CQColorSample( QWidget *pParent ) : QWidget( pParent ) { setFixedSize( CQColorDialog::SAMPLE_WIDTH, CQColorDialog::SAMPLE_HEIGHT ); }
	void SetColor( const QColor &color )
	{
		m_Color = color;
		update();
	}

protected:
	void paintEvent( QPaintEvent * ) override
	{
		QPainter painter( this );
		PaintColorOverCheckerboard( painter, rect(), m_Color );
		painter.setPen( QColor( 73, 73, 73 ) );
		painter.drawRect( rect().adjusted( 0, 0, -1, -1 ) );
	}

private:
	QColor m_Color;
};

int ChannelValue( const FatColor_t &color, int nChannel )
{
	const int values[ 6 ] = { color.h, color.s, color.v, color.r, color.g, color.b };
	return values[ nChannel ];
}
} // namespace

CQColorDialog::CQColorDialog( const QColor &start, QWidget *pParent, const QString &title, bool bAlpha ) : QDialog( pParent ), m_bAlpha( bAlpha )
{
	setWindowTitle( title.isEmpty() ? QStringLiteral( "Color Picker" ) : title );
	setWindowIcon( QIcon( QStringLiteral( "game:tools/images/common/color_wheel_sm.png" ) ) );
	QColor rgb = start.isValid() ? start.toRgb() : QColor( Qt::white );
	m_Previous = rgb;
	if ( !m_bAlpha )
		m_Previous.setAlpha( 255 );
	m_Color = FatColor_t::FromRGB( rgb.red(), rgb.green(), rgb.blue(), m_bAlpha ? rgb.alpha() : 255 );
	m_nMode = s_nRememberedMode;

	// The grids.
	auto *pGridHolder = new QWidget;
	auto *pGridLayout = new QVBoxLayout( pGridHolder );
	pGridLayout->setContentsMargins( 0, 0, 0, 0 );
	m_pCustomGrid = new CQColorDialog_ColorGrid( true );
	m_pSharedGrid = new CQColorDialog_ColorGrid( false );
	pGridLayout->addWidget( m_pCustomGrid );
	pGridLayout->addWidget( m_pSharedGrid );
	pGridLayout->addStretch( 1 );
	auto *pScroll = new QScrollArea;
	pScroll->setFixedWidth( 326 );
	pScroll->setHorizontalScrollBarPolicy( Qt::ScrollBarAlwaysOff );
	pScroll->setWidgetResizable( true );
	pScroll->setWidget( pGridHolder );
	for ( CQColorDialog_ColorGrid *pGrid : { m_pCustomGrid, m_pSharedGrid } )
	{
		connect( pGrid, &CQColorDialog_ColorGrid::OnColorPicked, this, [ this ]( FatColor_t color ) {
			color.a = m_Color.a;
			SetColorInternal( color );
		} );
		connect( pGrid, &CQColorDialog_ColorGrid::OnColorAccepted, this, [ this ]( FatColor_t color ) {
			color.a = m_Color.a;
			AcceptColorInternal( color );
		} );
	}

	// The plane and strip, with alpha under them.
	m_pGradient = new CQColorDialog_ColorGradient;
	m_pGradient->SetMode( m_nMode );
	connect( m_pGradient, &CQColorDialog_ColorGradient::OnColorPicked, this, &CQColorDialog::SetColorInternal );
	auto *pMiddle = new QVBoxLayout;
	pMiddle->addWidget( m_pGradient );
	auto *pAlphaRow = new QHBoxLayout;
	auto *pAlphaLabel = new QLabel( QStringLiteral( "Alpha:" ) );
	m_pAlphaEdit = new QLineEdit;
	m_pAlphaEdit->setFixedWidth( CHANNEL_EDIT_WIDTH );
	m_pAlphaEdit->setValidator( new QIntValidator( 0, 255, m_pAlphaEdit ) );
	m_pAlphaSlider = new QSlider( Qt::Horizontal );
	m_pAlphaSlider->setRange( 0, 255 );
	m_pAlphaSlider->setFixedWidth( 256 );
	pAlphaRow->addWidget( pAlphaLabel );
	pAlphaRow->addWidget( m_pAlphaEdit );
	pAlphaRow->addWidget( m_pAlphaSlider );
	pAlphaRow->addStretch( 1 );
	pMiddle->addLayout( pAlphaRow );
	pMiddle->addStretch( 1 );
	for ( QWidget *pWidget : std::initializer_list<QWidget *>{ pAlphaLabel, m_pAlphaEdit, m_pAlphaSlider } )
		pWidget->setVisible( m_bAlpha );
	connect( m_pAlphaEdit, &QLineEdit::textEdited, this, &CQColorDialog::OnAlphaChanged );
	connect( m_pAlphaSlider, &QSlider::valueChanged, this, &CQColorDialog::SetAlphaEditFromSlider );

	// The sampler, the channels, the samples.
	auto *pRight = new QVBoxLayout;
	m_pSampler = new CQColorSampler;
	connect( m_pSampler, &CQColorSampler::ColorSamplePicked, this, &CQColorDialog::OnColorSamplePicked );
	pRight->addWidget( m_pSampler );
	auto *pChannels = new QGridLayout;
	m_pModeGroup = new QButtonGroup( this );
	for ( int i = 0; i < 6; ++i )
	{
		m_pModeButtons[ i ] = new QRadioButton( QString::fromLatin1( CHANNEL_LABELS[ i ] ) );
		m_pModeGroup->addButton( m_pModeButtons[ i ], i );
		m_pChannelEdits[ i ] = new QLineEdit;
		m_pChannelEdits[ i ]->setFixedWidth( CHANNEL_EDIT_WIDTH );
		m_pChannelEdits[ i ]->setValidator( new QIntValidator( 0, i == 0 ? 360 : 255, m_pChannelEdits[ i ] ) );
		pChannels->addWidget( m_pModeButtons[ i ], i, 0 );
		pChannels->addWidget( m_pChannelEdits[ i ], i, 1 );
		connect( m_pChannelEdits[ i ], &QLineEdit::textEdited, this, [ this, i ] { OnTextChanged( i ); } );
		connect( m_pChannelEdits[ i ], &QLineEdit::editingFinished, this, [ this ] {
			// Typing is over: the edit shows the value as the colour has it.
			m_nEditingChannel = -1;
			UpdateWidgets();
		} );
	}
	m_pModeButtons[ m_nMode ]->setChecked( true );
	connect( m_pModeGroup, &QButtonGroup::idClicked, this, &CQColorDialog::OnModeChanged );
	pRight->addLayout( pChannels );
	pRight->addSpacing( 8 );
	auto *pPrevious = new CQColorSample( this );
	auto *pNew = new CQColorSample( this );
	m_pPreviousSample = pPrevious;
	m_pNewSample = pNew;
	pPrevious->SetColor( m_Previous );
	pRight->addWidget( new QLabel( QStringLiteral( "Previous" ) ) );
	pRight->addWidget( pPrevious );
	pRight->addWidget( new QLabel( QStringLiteral( "New" ) ) );
	pRight->addWidget( pNew );
	pRight->addStretch( 1 );
	auto *pButtons = new QDialogButtonBox( QDialogButtonBox::Ok | QDialogButtonBox::Cancel );
	connect( pButtons, &QDialogButtonBox::accepted, this, &QDialog::accept );
	connect( pButtons, &QDialogButtonBox::rejected, this, &QDialog::reject );
	pRight->addWidget( pButtons );

	auto *pLayout = new QHBoxLayout( this );
	pLayout->addWidget( pScroll );
	pLayout->addLayout( pMiddle );
	pLayout->addLayout( pRight );

	UpdateWidgets();
}

CQColorDialog::~CQColorDialog()
{
	// Child edits tell their focus leaving as they go; this dialog is half gone by then.
	for ( QLineEdit *pEdit : m_pChannelEdits )
		pEdit->disconnect( this );
	m_pAlphaEdit->disconnect( this );
}

QColor CQColorDialog::PickColor( const QColor &start, QWidget *pParent, const QString &title, bool bAlpha, bool *pAccepted )
{
	CQColorDialog dialog( start, pParent, title, bAlpha );
	bool bAccepted = dialog.exec() == QDialog::Accepted;
	if ( pAccepted )
		*pAccepted = bAccepted;
	return bAccepted ? dialog.GetColor() : start;
}

int CQColorDialog::GetRememberedMode()
{
	return s_nRememberedMode;
}

QColor CQColorDialog::GetColor() const
{
	return QColor( m_Color.r, m_Color.g, m_Color.b, m_bAlpha ? m_Color.a : 255 );
}

void CQColorDialog::UpdateWidgets()
{
	m_pGradient->SetColor( m_Color );
	for ( int i = 0; i < 6; ++i )
	{
		if ( i != m_nEditingChannel )
			m_pChannelEdits[ i ]->setText( QString::number( ChannelValue( m_Color, i ) ) );
	}
	m_pAlphaEdit->setText( QString::number( m_Color.a ) );
	{
		QSignalBlocker block( m_pAlphaSlider );
		m_pAlphaSlider->setValue( m_Color.a );
	}
	static_cast<CQColorSample *>( m_pNewSample )->SetColor( GetColor() );
	m_pCustomGrid->SetCurrentColor( GetColor() );
	m_pSharedGrid->SetCurrentColor( GetColor() );
}

void CQColorDialog::SetColorInternal( FatColor_t color )
{
	if ( !m_bAlpha )
		color.a = 255;
	if ( color == m_Color )
		return;
	const QColor before = GetColor();
	m_Color = color;
	UpdateWidgets();
	if ( GetColor() != before )
		emit CurrentColorChanged( GetColor() );
}

void CQColorDialog::AcceptColorInternal( FatColor_t color )
{
	SetColorInternal( color );
	accept();
}

void CQColorDialog::OnModeChanged( int nMode )
{
	m_nMode = std::clamp( nMode, 0, COLOR_DIALOG_MODE_COUNT - 1 );
	s_nRememberedMode = m_nMode;
	m_pModeButtons[ m_nMode ]->setChecked( true );
	m_pGradient->SetMode( m_nMode );
}

void CQColorDialog::OnTextChanged( int nChannel )
{
	auto value = [ this ]( int i ) { return m_pChannelEdits[ i ]->text().toInt(); };
	FatColor_t color = m_Color;
	if ( nChannel < 3 )
	{
		color = FatColor_t::FromHSV( value( 0 ), value( 1 ), value( 2 ), m_Color.a );
	}
	else
	{
		// From the current colour, so that a grey keeps its hue.
		color.r = value( 3 );
		color.g = value( 4 );
		color.b = value( 5 );
		color.UpdateHSVFromRGB();
	}
	m_nEditingChannel = nChannel;
	SetColorInternal( color );
}

void CQColorDialog::OnAlphaChanged()
{
	FatColor_t color = m_Color;
	color.a = std::clamp( m_pAlphaEdit->text().toInt(), 0, 255 );
	SetColorInternal( color );
}

void CQColorDialog::SetAlphaEditFromSlider( int nAlpha )
{
	FatColor_t color = m_Color;
	color.a = std::clamp( nAlpha, 0, 255 );
	SetColorInternal( color );
}

void CQColorDialog::OnColorSamplePicked( QColor color )
{
	if ( !color.isValid() )
		return;
	QColor rgb = color.toRgb();
	SetColorInternal( FatColor_t::FromRGB( rgb.red(), rgb.green(), rgb.blue(), m_Color.a ) );
}

void CQColorDialog::done( int nResult )
{
	// Grids are kept whichever way the picker closes.
	for ( CQColorDialog_ColorGrid *pGrid : { m_pCustomGrid, m_pSharedGrid } )
	{
		if ( pGrid->HasChanges() )
			pGrid->Save();
	}
	QDialog::done( nResult );
}
