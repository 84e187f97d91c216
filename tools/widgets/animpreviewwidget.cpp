#include "tools/widgets/animpreviewwidget.h"

#include <QComboBox>
#include <QFile>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QSlider>
#include <QToolButton>
#include <QVBoxLayout>

namespace
{
QIcon ImageIcon( const char *pPath )
{
	return QFile::exists( pPath ) ? QIcon( pPath ) : QIcon();
}
} // namespace

CQAnimPreviewWidget::CQAnimPreviewWidget( QWidget *pParent ) : QWidget( pParent )
{
	auto *pLayout = new QVBoxLayout( this );
	pLayout->setContentsMargins( 0, 0, 0, 0 );
	auto *pTop = new QHBoxLayout();
	m_pSelection = new QComboBox( this );
	m_pSelection->setObjectName( "AnimationSelection" );
	m_pSelection->addItems( { "Animation", "Activity", "Sequence (or Clip)", "Sequence" } );
	m_pSequence = new QComboBox( this );
	m_pSequence->setObjectName( "AnimationSequence" );
	m_pSequence->setMinimumWidth( 100 );
	m_pSequence->setInsertPolicy( QComboBox::NoInsert );
	pTop->addWidget( m_pSelection );
	pTop->addWidget( m_pSequence, 1 );
	pLayout->addLayout( pTop );

	auto *pBottom = new QHBoxLayout();
	m_pPlay = new QToolButton( this );
	m_pPlay->setObjectName( "AnimationPlay" );
	m_pPlay->setCheckable( true );
	m_pPlay->setChecked( true );
	m_pPlay->setToolTip( "Play / Pause" );
	QIcon playIcon;
	playIcon.addFile( "game:tools/images/common/control_pause_sm.png", QSize(), QIcon::Normal, QIcon::On );
	playIcon.addFile( "game:tools/images/common/control_play_sm.png", QSize(), QIcon::Normal, QIcon::Off );
	m_pPlay->setIcon( playIcon );
	if ( !QFile::exists( "game:tools/images/common/control_play_sm.png" ) )
		m_pPlay->setText( "Play" );
	m_pLoop = new QToolButton( this );
	m_pLoop->setObjectName( "AnimationLoop" );
	m_pLoop->setCheckable( true );
	m_pLoop->setChecked( true );
	m_pLoop->setToolTip( "Loop" );
	m_pLoop->setIcon( ImageIcon( "game:tools/images/common/reload_sm.png" ) );
	if ( m_pLoop->icon().isNull() )
		m_pLoop->setText( "Loop" );
	m_pFrame = new QSlider( Qt::Horizontal, this );
	m_pFrame->setObjectName( "AnimationFrame" );
	m_pFrame->setEnabled( false );
	m_pFrame->setToolTip( "The frame the sequence stands at" );
	pBottom->addWidget( m_pPlay );
	pBottom->addWidget( m_pLoop );
	pBottom->addWidget( m_pFrame, 1 );
	pLayout->addLayout( pBottom );

	m_pSelection->setCurrentIndex( SELECT_SEQUENCE );
	connect( m_pSelection, QOverload<int>::of( &QComboBox::currentIndexChanged ), this, &CQAnimPreviewWidget::OnSelectionModeChanged );
	connect( m_pSequence, QOverload<int>::of( &QComboBox::activated ), this, &CQAnimPreviewWidget::OnSequenceChosen );
	connect( m_pPlay, &QToolButton::toggled, this, [ this ]( bool bPlaying ) { emit PlaybackSpeedChanged( bPlaying ? 1.0f : 0.0f ); } );
	connect( m_pLoop, &QToolButton::toggled, this, &CQAnimPreviewWidget::AnimationLoopingChanged );
}

void CQAnimPreviewWidget::SetAcceptClipPath( bool bAccept )
{
	m_bAcceptClipPath = bAccept;
	OnSelectionModeChanged();
}

void CQAnimPreviewWidget::SetSelectionMode( int nMode )
{
	m_pSelection->setCurrentIndex( nMode );
}

void CQAnimPreviewWidget::OnSelectionModeChanged()
{
	// A clip is a path typed in; the other ways pick from the model's list.
	const bool bEditable = m_bAcceptClipPath && m_pSelection->currentIndex() == SELECT_SEQUENCE_OR_CLIP;
	if ( m_pSequence->isEditable() == bEditable )
		return;
	const QSignalBlocker blocker( m_pSequence );
	const QString current = m_pSequence->currentText();
	m_pSequence->setEditable( bEditable );
	if ( bEditable )
	{
		m_pSequence->setEditText( current );
		connect( m_pSequence->lineEdit(), &QLineEdit::editingFinished, this, &CQAnimPreviewWidget::OnSequenceChosen );
	}
}

void CQAnimPreviewWidget::SetModel( const ParticleModelPtr_t &pModel, const QString &sequenceName )
{
	m_pModel = pModel;
	const QSignalBlocker blocker( m_pSequence );
	m_pSequence->clear();
	if ( pModel )
	{
		for ( const ParticleModelSequence_t &sequence : pModel->GetSequences() )
			m_pSequence->addItem( QString::fromUtf8( sequence.m_Name.Get() ) );
	}
	const int nIndex = m_pSequence->findText( sequenceName, Qt::MatchFixedString );
	m_pSequence->setCurrentIndex( nIndex );
	if ( nIndex < 0 && m_pSequence->isEditable() )
		m_pSequence->setEditText( sequenceName );
	setEnabled( pModel != nullptr || m_bAcceptClipPath );
	UpdateFrameRange();
}

QString CQAnimPreviewWidget::GetSequenceName() const
{
	return m_pSequence->currentText();
}

void CQAnimPreviewWidget::OnSequenceChosen()
{
	const QString text = m_pSequence->currentText().trimmed();
	UpdateFrameRange();
	// Text that isn't one of the model's sequences is a clip's path.
	if ( m_pSequence->isEditable() && m_pSequence->findText( text, Qt::MatchFixedString ) < 0 )
	{
		if ( !text.isEmpty() )
			emit SelectedPreviewAnimationClipChanged( text );
		return;
	}
	emit SelectedAnimationChanged( text );
}

void CQAnimPreviewWidget::SetPlaying( bool bPlaying )
{
	const QSignalBlocker blocker( m_pPlay );
	m_pPlay->setChecked( bPlaying );
}

bool CQAnimPreviewWidget::IsPlaying() const
{
	return m_pPlay->isChecked();
}

void CQAnimPreviewWidget::SetLooping( bool bLooping )
{
	const QSignalBlocker blocker( m_pLoop );
	m_pLoop->setChecked( bLooping );
}

bool CQAnimPreviewWidget::IsLooping() const
{
	return m_pLoop->isChecked();
}

void CQAnimPreviewWidget::UpdateFrameRange()
{
	const ParticleModelSequence_t *pSequence = m_pModel ? m_pModel->FindSequence( m_pSequence->currentText().toUtf8().constData() ) : nullptr;
	m_pFrame->setRange( 0, pSequence ? pSequence->m_nFrameCount - 1 : 0 );
}

void CQAnimPreviewWidget::SetFrame( int nFrame )
{
	m_pFrame->setValue( nFrame < 0 ? 0 : nFrame );
}
