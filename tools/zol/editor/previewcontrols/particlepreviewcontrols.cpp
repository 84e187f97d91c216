#include "tools/zol/editor/previewcontrols/particlepreviewcontrols.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleValidator>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QAbstractItemView>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QEvent>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

#include "core/host/iasset.h"
#include "core/host/resourcetype.h"
#include "core/particles/particlemodelresource.h"
#include "tools/toolscene/particlesystemquery_toolscene.h"
#include "tools/widgets/animpreviewwidget.h"
#include "tools/widgets/assetpicker.h"
#include "tools/widgets/smartcombobox.h"
#include "tools/widgets/captionedvectoredit.h"
#include "tools/widgets/elidedcheckbox.h"
#include "tools/zol/editor/previewcontrols/controlpointeditor.h"
#include "tools/zol/editor/previewcontrols/namedvalueeditor.h"
#include "tools/zol/editor/previewcontrols/previewcontrolsupport.h"
#include "tools/zol/editor/zolapp.h"
#include "tools/zol/editor/zolsession.h"
#include "zoldoc_lib/zolcontrolpointconfiguration.h"
#include "zoldoc_lib/zolcontrolpointstate.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolrootnode.h"

namespace
{
// Bit 31 of the item data set: only the item itself, not its whole display set.
constexpr uint32_t ITEM_SINGLE_ONLY_BIT = 0x80000000u;
constexpr uint32_t ITEM_ID_MASK = 0x7FFFFFFFu;

QToolButton *MakeConfigButton( QWidget *pParent, const char *pIcon, const char *pToolTip, const char *pObjectName )
{
	QToolButton *pButton = new QToolButton( pParent );
	pButton->setObjectName( pObjectName );
	pButton->setAutoRaise( true );
	pButton->setToolTip( pToolTip );
	QIcon icon = PreviewControlsIcon( ( QString( "game:tools/images/common/" ) + pIcon ).toUtf8().constData() );
	pButton->setIcon( icon );
	if ( icon.isNull() )
		pButton->setText( pToolTip );
	return pButton;
}

// Sets a check box from data, telling no one.
void ShowChecked( QCheckBox *pBox, bool bChecked )
{
	const QSignalBlocker blocker( pBox );
	pBox->setChecked( bChecked );
}
} // namespace

CQParticlePreviewControls::CQParticlePreviewControls( CZolNamedValueContext *pContext, QWidget *pParent )
	: QWidget( pParent ), m_pContext( pContext ), m_EventMap( this )
{
	setObjectName( "ParticlePreviewControls" );
	auto *pLayout = new QVBoxLayout( this );
	pLayout->setContentsMargins( 4, 4, 4, 4 );
	pLayout->addWidget( BuildConfigurationRow() );

	QGroupBox *pPoints = new QGroupBox( "Control Points", this );
	pPoints->setMinimumSize( 325, 100 );
	auto *pPointsLayout = new QVBoxLayout( pPoints );
	pPointsLayout->setContentsMargins( 2, 2, 2, 2 );
	m_pScrollArea = new QScrollArea( pPoints );
	m_pScrollArea->setWidgetResizable( true );
	m_pScrollArea->setAlignment( Qt::AlignRight | Qt::AlignTop );
	QWidget *pRows = new QWidget( m_pScrollArea );
	pRows->setObjectName( "ControlPointRows" );
	m_pRowLayout = new QVBoxLayout( pRows );
	m_pRowLayout->setContentsMargins( 0, 0, 0, 0 );
	m_pRowLayout->addStretch( 1 );
	m_pScrollArea->setWidget( pRows );
	pPointsLayout->addWidget( m_pScrollArea );
	pLayout->addWidget( pPoints, 1 );

	pLayout->addWidget( BuildPreviewGroup() );
	pLayout->addStretch( 0 );

	m_EventMap.MapEvent( TOOL_EVENT_SLOT_HUB, &CQParticlePreviewControls::OnPreviewSessionChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CQParticlePreviewControls::OnDocumentReplaced );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_SESSION, &CQParticlePreviewControls::OnPreviewConfigSelectionChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_SESSION, &CQParticlePreviewControls::OnControlPointListChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_SESSION, &CQParticlePreviewControls::OnControlPointValueChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_SESSION, &CQParticlePreviewControls::OnPreviewStateChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_SESSION, &CQParticlePreviewControls::OnNamedValueChanged );
	CZolApp *pApp = ZolApp();
	if ( pApp && pApp->GetEventHub() )
		m_EventMap.Attach( TOOL_EVENT_SLOT_HUB, pApp->GetEventHub()->GetEventDispatcher() );
	SetSession( pApp ? pApp->GetPreviewSession() : nullptr );
}

CQParticlePreviewControls::~CQParticlePreviewControls()
{
	for ( int nSlot = 0; nSlot < TOOL_EVENT_SLOT_COUNT; ++nSlot )
		m_EventMap.Detach( nSlot );
}

QWidget *CQParticlePreviewControls::BuildConfigurationRow()
{
	QWidget *pRow = new QWidget( this );
	auto *pLayout = new QHBoxLayout( pRow );
	pLayout->setContentsMargins( 0, 0, 0, 0 );
	m_pConfigCombo = new QComboBox( pRow );
	m_pConfigCombo->setObjectName( "Configuration" );
	m_pConfigCombo->setEditable( true );
	// A typed name renames: it neither adds an entry nor jumps to one of the same name.
	m_pConfigCombo->setInsertPolicy( QComboBox::NoInsert );
	m_pConfigCombo->setDuplicatesEnabled( true );
	m_pConfigCombo->setEnabled( false );
	m_pConfigCombo->setToolTip( "The control point configuration; type to rename it" );
	pLayout->addWidget( m_pConfigCombo, 1 );
	m_pAddButton = MakeConfigButton( pRow, "add_sm.png", "Add Config", "AddConfig" );
	m_pRemoveButton = MakeConfigButton( pRow, "remove_sm.png", "Remove Config", "RemoveConfig" );
	m_pResetButton = MakeConfigButton( pRow, "reload_sm.png", "Reset Preview State", "ResetPreviewState" );
	m_pCommitButton = MakeConfigButton( pRow, "save_sm.png", "Commit Preview State", "CommitPreviewState" );
	m_pCopyButton = MakeConfigButton( pRow, "copy_sm.png", "Copy Preview State", "CopyPreviewState" );
	m_pPasteButton = MakeConfigButton( pRow, "paste_sm.png", "Paste Preview State", "PastePreviewState" );
	for ( QToolButton *pButton : { m_pAddButton, m_pRemoveButton, m_pResetButton, m_pCommitButton, m_pCopyButton, m_pPasteButton } )
		pLayout->addWidget( pButton );
	connect( m_pAddButton, &QToolButton::clicked, this, &CQParticlePreviewControls::OnAddConfiguration );
	connect( m_pRemoveButton, &QToolButton::clicked, this, &CQParticlePreviewControls::OnRemoveConfiguration );
	connect( m_pResetButton, &QToolButton::clicked, this, &CQParticlePreviewControls::OnLoadPreviewState );
	connect( m_pCommitButton, &QToolButton::clicked, this, &CQParticlePreviewControls::OnSavePreviewState );
	connect( m_pCopyButton, &QToolButton::clicked, this, &CQParticlePreviewControls::OnCopyPreviewState );
	connect( m_pPasteButton, &QToolButton::clicked, this, &CQParticlePreviewControls::OnPastePreviewState );
	connect( m_pConfigCombo, QOverload<int>::of( &QComboBox::activated ), this, &CQParticlePreviewControls::OnSelectedConfigurationChanged );
	connect( m_pConfigCombo->lineEdit(), &QLineEdit::editingFinished, this, &CQParticlePreviewControls::OnConfigurationNameChanged );
	connect( m_pConfigCombo->lineEdit(), &QLineEdit::textEdited, this, [ this ]( const QString &text ) {
		m_TypedConfigName = text;
		m_bConfigNameTyped = true;
	} );
	return pRow;
}

QGroupBox *CQParticlePreviewControls::BuildPreviewGroup()
{
	QGroupBox *pPreview = new QGroupBox( "Preview", this );
	auto *pLayout = new QVBoxLayout( pPreview );
	pLayout->setContentsMargins( 4, 4, 4, 4 );

	QGroupBox *pSystem = new QGroupBox( "Preview System", pPreview );
	auto *pSystemLayout = new QHBoxLayout( pSystem );
	pSystemLayout->setContentsMargins( 4, 2, 4, 2 );
	m_pPreviewSystemEdit = new QLineEdit( pSystem );
	m_pPreviewSystemEdit->setObjectName( "PreviewSystem" );
	m_pPreviewSystemEdit->setReadOnly( true );
	m_pPreviewSystemEdit->setEnabled( false );
	m_pLockPreviewSystem = new QToolButton( pSystem );
	m_pLockPreviewSystem->setObjectName( "LockPreviewSystem" );
	m_pLockPreviewSystem->setCheckable( true );
	m_pLockPreviewSystem->setChecked( false );
	m_pLockPreviewSystem->setAutoRaise( true );
	m_pLockPreviewSystem->setToolTip( "Keep previewing this system while another is edited" );
	QIcon lockIcon;
	lockIcon.addFile( "game:tools/images/common/lock_sm.png", QSize(), QIcon::Normal, QIcon::Off );
	lockIcon.addFile( "game:tools/images/common/unlock_sm.png", QSize(), QIcon::Normal, QIcon::On );
	m_pLockPreviewSystem->setIcon( lockIcon );
	connect( m_pLockPreviewSystem, &QToolButton::toggled, this, &CQParticlePreviewControls::OnLockPreviewSystemToggled );
	pSystemLayout->addWidget( m_pPreviewSystemEdit, 1 );
	pSystemLayout->addWidget( m_pLockPreviewSystem );
	pLayout->addWidget( pSystem );

	m_pModelPicker = new CQAssetPicker( "tmsh", "Models", "Zol Preview Model", pPreview );
	connect( m_pModelPicker, &CQAssetPicker::AssetPicked, this, &CQParticlePreviewControls::OnModelPicked );
	pLayout->addWidget( m_pModelPicker );

	m_pPreviewGrid = new QGridLayout();
	pLayout->addLayout( m_pPreviewGrid );
	int nRow = 0;
	auto addLabel = [ & ]( const char *pText, int nColumn ) { AddPreviewGridCell( new QLabel( pText, pPreview ), nullptr, nRow, nColumn ); };

	addLabel( "Item:", 0 );
	m_pItemCombo = new CQSmartComboBox( pPreview );
	m_pItemCombo->setObjectName( "Item" );
	m_pItemCombo->setMaxVisibleItems( 40 );
	m_pItemCombo->setMinimumWidth( 100 );
	connect( m_pItemCombo, QOverload<int>::of( &QComboBox::activated ), this, &CQParticlePreviewControls::OnEconItemChanged );
	AddPreviewGridCell( m_pItemCombo, nullptr, nRow, 1, 2 );
	m_pDisplaySet = MakeElidedCheckBox( "Display Set", pPreview );
	m_pDisplaySet->setChecked( true );
	connect( m_pDisplaySet, &QCheckBox::toggled, this, &CQParticlePreviewControls::OnEconItemDisplayTypeChanged );
	AddPreviewGridCell( m_pDisplaySet, nullptr, nRow++, 3 );

	addLabel( "Skin:", 0 );
	m_pSkinCombo = new CQSmartComboBox( pPreview );
	m_pSkinCombo->setObjectName( "Skin" );
	connect( m_pSkinCombo, QOverload<int>::of( &QComboBox::activated ), this, &CQParticlePreviewControls::OnSkinComboChanged );
	AddPreviewGridCell( m_pSkinCombo, nullptr, nRow, 1 );
	addLabel( "Body Part:", 2 );
	auto *pBodyPart = new QHBoxLayout();
	m_pBodyPartCombo = new CQSmartComboBox( pPreview );
	m_pBodyPartCombo->setObjectName( "BodyPart" );
	connect( m_pBodyPartCombo, QOverload<int>::of( &QComboBox::currentIndexChanged ), this, &CQParticlePreviewControls::OnBodyPartComboChanged );
	m_pBodyPartValue = new QLineEdit( "0", pPreview );
	m_pBodyPartValue->setObjectName( "BodyPartValue" );
	m_pBodyPartValue->setFixedWidth( 64 );
	m_pBodyPartValue->setValidator( new QIntValidator( 0, 1000, m_pBodyPartValue ) );
	connect( m_pBodyPartValue, &QLineEdit::editingFinished, this, &CQParticlePreviewControls::OnBodyPartValueChanged );
	pBodyPart->addWidget( m_pBodyPartCombo, 1 );
	pBodyPart->addWidget( m_pBodyPartValue );
	AddPreviewGridCell( nullptr, pBodyPart, nRow++, 3 );

	addLabel( "Simulation rate:", 0 );
	m_pSimulationRate = new QLineEdit( "1.00", pPreview );
	m_pSimulationRate->setObjectName( "SimulationRate" );
	auto *pRateValidator = new QDoubleValidator( 0.0, 100.0, 3, m_pSimulationRate );
	pRateValidator->setNotation( QDoubleValidator::StandardNotation );
	m_pSimulationRate->setValidator( pRateValidator );
	connect( m_pSimulationRate, &QLineEdit::editingFinished, this, &CQParticlePreviewControls::OnSimulationRateChanged );
	AddPreviewGridCell( m_pSimulationRate, nullptr, nRow, 1 );
	addLabel( "Ground:", 2 );
	auto *pGround = new QHBoxLayout();
	m_pGroundCombo = new CQSmartComboBox( pPreview );
	m_pGroundCombo->setObjectName( "Ground" );
	m_pGroundCombo->addItem( "None", int( ZOL_GROUND_NONE ) );
	m_pGroundCombo->addItem( "Grid", int( ZOL_GROUND_GRID ) );
	m_pGroundCombo->addItem( "Plane", int( ZOL_GROUND_PLANE ) );
	connect( m_pGroundCombo, QOverload<int>::of( &QComboBox::activated ), this, &CQParticlePreviewControls::OnGroundComboChanged );
	m_pDrawAxes = MakeElidedCheckBox( "Draw Control Point Axes", pPreview );
	connect( m_pDrawAxes, &QCheckBox::toggled, this, &CQParticlePreviewControls::OnAxesCheckBoxChanged );
	pGround->addWidget( m_pGroundCombo );
	pGround->addWidget( m_pDrawAxes );
	AddPreviewGridCell( nullptr, pGround, nRow++, 3 );

	addLabel( "World Gravity:", 0 );
	m_pGravity = new CQCaptionedVectorEdit( pPreview );
	m_pGravity->setObjectName( "WorldGravity" );
	m_pGravity->SetValue( Vector( 0.0f, 0.0f, -800.0f ) );
	connect( m_pGravity, &CQCaptionedVectorEdit::ValueChanged, this, &CQParticlePreviewControls::OnGravityChanged );
	AddPreviewGridCell( m_pGravity, nullptr, nRow, 1, 2 );
	m_pWater = MakeElidedCheckBox( "Groundplane is Water", pPreview );
	m_pWater->setChecked( false );
	connect( m_pWater, &QCheckBox::toggled, this, &CQParticlePreviewControls::OnWaterCheckBoxChanged );
	AddPreviewGridCell( m_pWater, nullptr, nRow++, 3 );

	m_pAnimation = new CQAnimPreviewWidget( pPreview );
	m_pAnimation->SetAcceptClipPath( true );
	connect( m_pAnimation, &CQAnimPreviewWidget::SelectedAnimationChanged, this, &CQParticlePreviewControls::OnNamedSequenceChanged );
	connect( m_pAnimation, &CQAnimPreviewWidget::SelectedPreviewAnimationClipChanged, this, &CQParticlePreviewControls::OnPreviewAnimClipChanged );
	connect( m_pAnimation, &CQAnimPreviewWidget::PlaybackSpeedChanged, this, &CQParticlePreviewControls::OnPlaybackSpeedChanged );
	connect( m_pAnimation, &CQAnimPreviewWidget::AnimationLoopingChanged, this, &CQParticlePreviewControls::OnAnimationLoopingChanged );
	AddPreviewGridCell( m_pAnimation, nullptr, nRow++, 0, 4 );

	addLabel( "Frame", 0 );
	auto *pFrame = new QHBoxLayout();
	m_pFrameEdit = new QLineEdit( "0", pPreview );
	m_pFrameEdit->setObjectName( "FireOnFrame" );
	m_pFrameEdit->setMaximumWidth( 32 );
	m_pFrameEdit->setValidator( new QIntValidator( 0, 1000, m_pFrameEdit ) );
	m_pFrameEdit->setEnabled( false );
	m_pFrameEdit->setToolTip( "The frame of a sequence that doesn't loop on which the system starts" );
	connect( m_pFrameEdit, &QLineEdit::editingFinished, this, &CQParticlePreviewControls::OnAnimationFrameChanged );
	pFrame->addWidget( m_pFrameEdit );
	pFrame->addStretch( 1 );
	AddPreviewGridCell( nullptr, pFrame, nRow, 1 );
	addLabel( "Hit Boxes", 2 );
	auto *pHitboxes = new QHBoxLayout();
	pHitboxes->addWidget( new QLabel( "Set:", pPreview ) );
	m_pHitboxSetCombo = new CQSmartComboBox( pPreview );
	m_pHitboxSetCombo->setObjectName( "HitboxSet" );
	m_pHitboxSetCombo->setMaxVisibleItems( 40 );
	m_pHitboxSetCombo->setMinimumWidth( 100 );
	connect( m_pHitboxSetCombo, QOverload<int>::of( &QComboBox::activated ), this, &CQParticlePreviewControls::OnHitboxSetChanged );
	m_pDrawHitboxes = MakeElidedCheckBox( "Draw", pPreview );
	connect( m_pDrawHitboxes, &QCheckBox::toggled, this, &CQParticlePreviewControls::EnableHitBoxes );
	pHitboxes->addWidget( m_pHitboxSetCombo, 1 );
	pHitboxes->addWidget( m_pDrawHitboxes );
	AddPreviewGridCell( nullptr, pHitboxes, nRow++, 3 );

	addLabel( "Attachments", 0 );
	m_pDrawAttachmentAxes = new QCheckBox( "Draw Axes", pPreview );
	connect( m_pDrawAttachmentAxes, &QCheckBox::toggled, this, &CQParticlePreviewControls::EnableAttachmentAxes );
	m_pDrawAttachmentNames = new QCheckBox( "Draw Names", pPreview );
	connect( m_pDrawAttachmentNames, &QCheckBox::toggled, this, &CQParticlePreviewControls::EnableAttachmentNames );
	AddPreviewGridCell( m_pDrawAttachmentAxes, nullptr, nRow, 1 );
	AddPreviewGridCell( m_pDrawAttachmentNames, nullptr, nRow++, 3 );
	ArrangePreviewGrid();
	return pPreview;
}

QCheckBox *CQParticlePreviewControls::MakeElidedCheckBox( const char *pText, QWidget *pParent )
{
	auto *pBox = new CQElidedCheckBox( pText, pParent );
	m_ElidedBoxes.push_back( pBox );
	return pBox;
}

void CQParticlePreviewControls::AddPreviewGridCell( QWidget *pWidget, QLayout *pLayout, int nRow, int nColumn, int nColumnSpan )
{
	m_PreviewGridCells.push_back( { pWidget, pLayout, nRow, nColumn, nColumnSpan } );
}

void CQParticlePreviewControls::ArrangePreviewGrid()
{
	for ( const PreviewGridCell_t &cell : m_PreviewGridCells )
	{
		if ( cell.m_pWidget )
			m_pPreviewGrid->removeWidget( cell.m_pWidget );
		else
			m_pPreviewGrid->removeItem( cell.m_pLayout );
	}
	// Narrow: each row's second label and field go to a row of their own below it, and a
	// field that spanned into the second pair keeps to the first.
	for ( const PreviewGridCell_t &cell : m_PreviewGridCells )
	{
		int nRow = cell.m_nRow, nColumn = cell.m_nColumn, nSpan = cell.m_nColumnSpan;
		if ( m_bPreviewGridNarrow )
		{
			nRow *= 2;
			if ( nColumn >= 2 )
			{
				nRow += 1;
				nColumn -= 2;
			}
			nSpan = std::min( nSpan, 2 - nColumn );
		}
		if ( cell.m_pWidget )
			m_pPreviewGrid->addWidget( cell.m_pWidget, nRow, nColumn, 1, nSpan );
		else
			m_pPreviewGrid->addLayout( cell.m_pLayout, nRow, nColumn, 1, nSpan );
	}
	m_pPreviewGrid->setColumnStretch( 1, 1 );
	m_pPreviewGrid->setColumnStretch( 3, m_bPreviewGridNarrow ? 0 : 1 );
	m_pPreviewGrid->invalidate();
}

void CQParticlePreviewControls::SetPreviewGridNarrow( bool bNarrow )
{
	if ( bNarrow == m_bPreviewGridNarrow )
		return;
	m_bPreviewGridNarrow = bNarrow;
	ArrangePreviewGrid();
}

int CQParticlePreviewControls::GetWidePreviewGridWidth()
{
	if ( m_nWidePreviewGridWidth == 0 )
	{
		// Measured with every text whole: the long check boxes would rather be cut than
		// make the panel scroll, but four columns are meant for a panel that holds them.
		const bool bWasNarrow = m_bPreviewGridNarrow;
		SetPreviewGridNarrow( false );
		for ( CQElidedCheckBox *pBox : m_ElidedBoxes )
			pBox->SetElides( false );
		layout()->activate();
		m_nWidePreviewGridWidth = minimumSizeHint().width();
		for ( CQElidedCheckBox *pBox : m_ElidedBoxes )
			pBox->SetElides( true );
		SetPreviewGridNarrow( bWasNarrow );
	}
	return m_nWidePreviewGridWidth;
}

void CQParticlePreviewControls::showEvent( QShowEvent *pEvent )
{
	QWidget::showEvent( pEvent );
	// In a scroll area the panel is never narrower than it asks to be: what counts is the
	// room its viewport has.
	QWidget *pViewport = parentWidget();
	if ( pViewport && pViewport != m_pWatchedViewport )
	{
		if ( m_pWatchedViewport )
			m_pWatchedViewport->removeEventFilter( this );
		m_pWatchedViewport = pViewport;
		pViewport->installEventFilter( this );
	}
	if ( pViewport )
		SetPreviewGridNarrow( pViewport->width() < GetWidePreviewGridWidth() );
}

bool CQParticlePreviewControls::eventFilter( QObject *pWatched, QEvent *pEvent )
{
	if ( pWatched == m_pWatchedViewport && pEvent->type() == QEvent::Resize )
		SetPreviewGridNarrow( m_pWatchedViewport->width() < GetWidePreviewGridWidth() );
	return QWidget::eventFilter( pWatched, pEvent );
}

// ---------------------------------------------------------------------------------------
// The session

void CQParticlePreviewControls::OnPreviewSessionChanged( const ZolEvent_PreviewSessionChanged_t &event )
{
	SetSession( event.m_pSession );
}

void CQParticlePreviewControls::SetSession( CZolSession *pSession )
{
	m_EventMap.Detach( TOOL_EVENT_SLOT_SESSION );
	m_EventMap.Detach( TOOL_EVENT_SLOT_DOCUMENT );
	if ( pSession )
	{
		m_EventMap.Attach( TOOL_EVENT_SLOT_SESSION, pSession->GetEventDispatcher() );
		if ( CZolDoc *pDoc = pSession->GetDoc() )
			m_EventMap.Attach( TOOL_EVENT_SLOT_DOCUMENT, pDoc->GetEventDispatcher() );
	}
	m_pSession = pSession;
	UpdateEnabledStates();
	RebuildConfigurationCombo();
	if ( m_pSession )
	{
		Refresh( true );
		RebuildRows();
	}
	else
	{
		ClearRows();
		m_pPreviewSystemEdit->clear();
	}
}

void CQParticlePreviewControls::UpdateEnabledStates()
{
	CZolApp *pApp = ZolApp();
	const bool bLocked = pApp && pApp->IsPreviewSessionLocked();
	{
		const QSignalBlocker blocker( m_pLockPreviewSystem );
		m_pLockPreviewSystem->setChecked( bLocked );
	}
	const CZolRootNode *pRoot = m_pSession && m_pSession->GetDoc() ? m_pSession->GetDoc()->GetRoot() : nullptr;
	const int nConfigs = pRoot ? pRoot->GetConfigurationCount() : 0;
	// Frozen on a session that isn't the one edited: its configurations stay as they are.
	m_pConfigCombo->setEnabled( !bLocked && nConfigs >= 1 );
	m_pRemoveButton->setEnabled( !bLocked && nConfigs > 1 );
	for ( QToolButton *pButton : { m_pAddButton, m_pCommitButton, m_pResetButton, m_pCopyButton, m_pPasteButton } )
		pButton->setEnabled( !bLocked && m_pSession );
}

void CQParticlePreviewControls::RebuildConfigurationCombo()
{
	const QSignalBlocker blocker( m_pConfigCombo );
	m_pConfigCombo->clear();
	const CZolRootNode *pRoot = m_pSession && m_pSession->GetDoc() ? m_pSession->GetDoc()->GetRoot() : nullptr;
	for ( int i = 0; pRoot && i < pRoot->GetConfigurationCount(); ++i )
		m_pConfigCombo->addItem( QString::fromUtf8( pRoot->GetConfiguration( i )->GetName() ), i );
	const QString current = m_pSession ? QString::fromUtf8( m_pSession->GetCurrentConfigName() ) : QString();
	m_pConfigCombo->setCurrentIndex( m_pConfigCombo->findText( current, Qt::MatchFixedString ) );
	m_pConfigCombo->setEditText( current );
}

void CQParticlePreviewControls::OnDocumentReplaced( const ZolEvent_DocumentReplaced_t & )
{
	RebuildConfigurationCombo();
	UpdateEnabledStates();
}

void CQParticlePreviewControls::OnPreviewConfigSelectionChanged( const ZolEvent_PreviewConfigSelectionChanged_t & )
{
	HighlightRows();
}

void CQParticlePreviewControls::OnControlPointListChanged( const ZolEvent_ControlPointListChanged_t & )
{
	RebuildRows();
}

void CQParticlePreviewControls::OnControlPointValueChanged( const ZolEvent_ControlPointValueChanged_t &event )
{
	for ( CQControlPointEditor *pRow : m_ControlPointEditors )
	{
		if ( pRow->GetKey() == event.m_ControlPoint )
			pRow->Refresh();
	}
	for ( CQNamedValueEditor *pRow : m_NamedValueEditors )
	{
		if ( pRow->GetKey() == event.m_ControlPoint )
			pRow->Refresh();
	}
}

void CQParticlePreviewControls::OnPreviewStateChanged( const ZolEvent_PreviewStateChanged_t &event )
{
	Refresh( !event.m_bModelStands );
}

void CQParticlePreviewControls::OnNamedValueChanged( const ZolEvent_NamedValueChanged_t &event )
{
	for ( CQNamedValueEditor *pRow : m_NamedValueEditors )
	{
		if ( pRow->GetKey() == event.m_NamedValue )
			pRow->Refresh();
	}
}

// ---------------------------------------------------------------------------------------
// Showing the state

void CQParticlePreviewControls::RebuildModelLists()
{
	const ParticlePreviewState_t &state = m_pSession->GetPreviewState();
	CUtlString strError;
	const char *pSelf = m_pSession->GetEntityModel( ZOL_ATTACH_ENTITY_SELF );
	const char *pParent = m_pSession->GetEntityModel( ZOL_ATTACH_ENTITY_PARENT );
	ParticleModelPtr_t pSelfModel = *pSelf ? FindParticleModel( pSelf, &strError ) : nullptr;
	ParticleModelPtr_t pParentModel = *pParent ? FindParticleModel( pParent, &strError ) : nullptr;

	m_pSkinCombo->clear();
	m_pBodyPartCombo->clear();
	if ( pSelfModel )
	{
		int nIndex = 0;
		for ( const ParticleModelMaterialGroup_t &group : pSelfModel->GetMaterialGroups() )
		{
			const QString name = QString::fromUtf8( group.m_Name.Get() );
			m_pSkinCombo->addItem( QString( "%1: \"%2\"" ).arg( nIndex++ ).arg( name ), name );
		}
		for ( const ParticleModelBodyGroup_t &group : pSelfModel->GetBodyGroups() )
		{
			const QString name = QString::fromUtf8( group.m_Name.Get() );
			m_pBodyPartCombo->addItem( name, name );
		}
	}
	m_pSkinCombo->setEnabled( m_pSkinCombo->count() > 0 );
	m_pBodyPartCombo->setEnabled( m_pBodyPartCombo->count() > 0 );
	m_pBodyPartValue->setEnabled( m_pBodyPartCombo->count() > 0 );

	m_pAnimation->SetModel( pParentModel, state.m_bSequenceNameIsAnimClipPath ? QString() : QString::fromUtf8( state.m_sequenceName.Get() ) );
	m_pAnimation->SetPlaying( state.m_flPlaybackSpeed != 0.0f );
	m_pAnimation->SetLooping( !state.m_bAnimationNonLooping );

	m_pHitboxSetCombo->clear();
	if ( pParentModel )
	{
		std::vector<CUtlString> sets;
		pParentModel->GetHitboxSetNames( &sets );
		for ( const CUtlString &set : sets )
			m_pHitboxSetCombo->addItem( QString::fromUtf8( set.Get() ) );
	}
	m_pHitboxSetCombo->setCurrentIndex( m_pHitboxSetCombo->findText( QString::fromUtf8( state.m_hitboxSetName.Get() ), Qt::MatchFixedString ) );
}

void CQParticlePreviewControls::Refresh( bool bLists )
{
	if ( !m_pSession )
		return;
	const ParticlePreviewState_t &state = m_pSession->GetPreviewState();
	// Nothing shown here may write back: every control's signals are held.
	const QSignalBlocker blockers[] = { QSignalBlocker( m_pModelPicker ), QSignalBlocker( m_pItemCombo ), QSignalBlocker( m_pSkinCombo ),
		QSignalBlocker( m_pBodyPartCombo ), QSignalBlocker( m_pBodyPartValue ), QSignalBlocker( m_pHitboxSetCombo ), QSignalBlocker( m_pAnimation ),
		QSignalBlocker( m_pGroundCombo ), QSignalBlocker( m_pSimulationRate ), QSignalBlocker( m_pFrameEdit ), QSignalBlocker( m_pGravity ) };
	if ( bLists )
	{
		m_pModelPicker->SetAssetName( QString::fromUtf8( state.m_previewModel.Get() ) );
		// The host offers no item service: no items to wear, only none.
		m_pItemCombo->clear();
		m_pItemCombo->addItem( "None", 0 );
		m_pItemCombo->setEnabled( false );
		m_pItemCombo->setToolTip( "No items: the host offers no item service" );
		RebuildModelLists();
	}
	m_pSkinCombo->setCurrentIndex( m_pSkinCombo->findData( QString::fromUtf8( state.m_materialGroupName.Get() ), Qt::UserRole, Qt::MatchFixedString ) );
	m_pBodyPartValue->setText( QString::number( m_pSession->GetBodyGroup( m_pBodyPartCombo->currentData().toString().toUtf8().constData() ) ) );
	ShowChecked( m_pDisplaySet, !( state.m_nModSpecificData & ITEM_SINGLE_ONLY_BIT ) );
	m_pGroundCombo->setCurrentIndex( m_pGroundCombo->findData( int( state.m_groundType ) ) );
	ShowChecked( m_pDrawAxes, state.m_bShouldDrawControlPointAxes );
	ShowChecked( m_pDrawAttachmentAxes, state.m_bShouldDrawAttachments );
	ShowChecked( m_pDrawAttachmentNames, state.m_bShouldDrawAttachmentNames );
	ShowChecked( m_pDrawHitboxes, state.m_bShouldDrawHitboxes );
	m_pSimulationRate->setText( QString::number( double( state.m_flParticleSimulationRate ), 'f', 2 ) );
	for ( CQControlPointEditor *pRow : m_ControlPointEditors )
		pRow->RefreshAttachmentList();
	m_pFrameEdit->setEnabled( state.m_bAnimationNonLooping );
	m_pFrameEdit->setText( QString::number( state.m_nFireParticleOnSequenceFrame ) );
	m_pGravity->SetValue( state.m_vecPreviewGravity );
	m_pAnimation->SetPlaying( state.m_flPlaybackSpeed != 0.0f );
	m_pAnimation->SetLooping( !state.m_bAnimationNonLooping );
}

void CQParticlePreviewControls::ClearRows()
{
	// A row may be the one whose signal rebuilds the list: it goes once control is back
	// in the event loop.
	for ( QWidget *pRow : std::vector<QWidget *>( m_ControlPointEditors.begin(), m_ControlPointEditors.end() ) )
	{
		m_pRowLayout->removeWidget( pRow );
		pRow->hide();
		pRow->deleteLater();
	}
	for ( QWidget *pRow : std::vector<QWidget *>( m_NamedValueEditors.begin(), m_NamedValueEditors.end() ) )
	{
		m_pRowLayout->removeWidget( pRow );
		pRow->hide();
		pRow->deleteLater();
	}
	m_ControlPointEditors.clear();
	m_NamedValueEditors.clear();
}

void CQParticlePreviewControls::RebuildRows()
{
	ClearRows();
	if ( !m_pSession )
		return;
	RebuildConfigurationCombo();
	std::vector<const ZolKnownControlPoint_t *> known;
	for ( const auto &[ key, entry ] : m_pSession->GetKnownControlPoints() )
		known.push_back( &entry );
	// Numbers first, ascending; then names, ignoring case.
	std::sort( known.begin(), known.end(), []( const ZolKnownControlPoint_t *a, const ZolKnownControlPoint_t *b ) {
		if ( a->m_Key.IsNamed() != b->m_Key.IsNamed() )
			return !a->m_Key.IsNamed();
		if ( !a->m_Key.IsNamed() )
			return a->m_Key.m_nNumber < b->m_Key.m_nNumber;
		return QString::fromUtf8( a->m_Key.m_pName ).compare( QString::fromUtf8( b->m_Key.m_pName ), Qt::CaseInsensitive ) < 0;
	} );
	QWidget *pRows = m_pScrollArea->widget();
	int nAt = 0;
	for ( const ZolKnownControlPoint_t *pKnown : known )
	{
		QWidget *pRow = nullptr;
		if ( pKnown->m_Key.IsNamed() )
		{
			auto *pEditor = new CQNamedValueEditor( m_pSession, m_pContext, *pKnown, pRows );
			m_NamedValueEditors.push_back( pEditor );
			pRow = pEditor;
		}
		else if ( pKnown->m_Key.m_nNumber >= 0 )
		{
			auto *pEditor = new CQControlPointEditor( m_pSession, *pKnown, pRows );
			m_ControlPointEditors.push_back( pEditor );
			pRow = pEditor;
		}
		if ( pRow )
			m_pRowLayout->insertWidget( nAt++, pRow );
	}
	IAsset *pAsset = m_pSession->GetAsset();
	m_pPreviewSystemEdit->setText( pAsset && pAsset->GetType() == RESOURCE_TYPE_PARTICLE_SYSTEM ? QString::fromUtf8( pAsset->GetResourceName() ) : QString() );
}

void CQParticlePreviewControls::HighlightRows()
{
	if ( !m_pSession )
		return;
	const ParticleParamID_t selected = m_pSession->GetSelectedControlPoint();
	for ( CQControlPointEditor *pRow : m_ControlPointEditors )
		pRow->SetHighlighted( pRow->GetKey() == selected );
	for ( CQNamedValueEditor *pRow : m_NamedValueEditors )
		pRow->SetHighlighted( pRow->GetKey() == selected );
}

CQControlPointEditor *CQParticlePreviewControls::FindControlPointEditor( int nPoint ) const
{
	for ( CQControlPointEditor *pRow : m_ControlPointEditors )
	{
		if ( pRow->GetKey() == ParticleParamID_t::ControlPoint( nPoint ) )
			return pRow;
	}
	return nullptr;
}

// ---------------------------------------------------------------------------------------
// The preview state

void CQParticlePreviewControls::SendPreviewStateChanged( bool bModelStands )
{
	ZolEvent_PreviewStateChanged_t event;
	event.m_bModelStands = bModelStands;
	m_pSession->SendEvent( event );
}

void CQParticlePreviewControls::OnModelPicked( IAsset *pAsset )
{
	if ( !m_pSession || ( pAsset && pAsset->GetType() != RESOURCE_TYPE_MESH ) )
		return;
	if ( m_pSession->SetPreviewModel( pAsset ? pAsset->GetResourceName() : "", false ) )
		SendPreviewStateChanged( false );
}

void CQParticlePreviewControls::OnGroundComboChanged()
{
	if ( !m_pSession )
		return;
	ParticlePreviewState_t &state = m_pSession->GetPreviewStateForModify();
	const auto eGround = ParticlePreviewGroundType_t( m_pGroundCombo->currentData().toInt() );
	if ( state.m_groundType == eGround )
		return;
	state.m_groundType = eGround;
	SendPreviewStateChanged( true );
}

// A text field of the state that compares ignoring case.
static bool StoreName( CUtlString *pField, const QString &value )
{
	const QByteArray utf8 = value.toUtf8();
	if ( pField->IsEqual_CaseInsensitive( utf8.constData() ) )
		return false;
	*pField = utf8.constData();
	return true;
}

void CQParticlePreviewControls::OnSkinComboChanged()
{
	if ( m_pSession && StoreName( &m_pSession->GetPreviewStateForModify().m_materialGroupName, m_pSkinCombo->currentData().toString() ) )
		SendPreviewStateChanged( true );
}

void CQParticlePreviewControls::OnBodyPartComboChanged()
{
	if ( !m_pSession )
		return;
	const QSignalBlocker blocker( m_pBodyPartValue );
	m_pBodyPartValue->setText( QString::number( m_pSession->GetBodyGroup( m_pBodyPartCombo->currentData().toString().toUtf8().constData() ) ) );
}

void CQParticlePreviewControls::OnBodyPartValueChanged()
{
	if ( !m_pSession || m_pBodyPartCombo->currentIndex() < 0 )
		return;
	bool bOk = false;
	const int nValue = m_pBodyPartValue->text().toInt( &bOk );
	if ( !bOk )
		return;
	m_pSession->SetBodyGroup( m_pBodyPartCombo->currentData().toString().toUtf8().constData(), nValue );
}

// A flag of the state: stored and told when it changed.
#define STORE_PREVIEW_FLAG( field, value )                                 \
	if ( !m_pSession )                                                     \
		return;                                                            \
	if ( m_pSession->GetPreviewStateForModify().field == ( value ) )       \
		return;                                                            \
	m_pSession->GetPreviewStateForModify().field = ( value );              \
	SendPreviewStateChanged( true )

void CQParticlePreviewControls::OnAxesCheckBoxChanged( bool bChecked )
{
	STORE_PREVIEW_FLAG( m_bShouldDrawControlPointAxes, bChecked );
}

void CQParticlePreviewControls::EnableHitBoxes( bool bEnable )
{
	STORE_PREVIEW_FLAG( m_bShouldDrawHitboxes, bEnable );
}

void CQParticlePreviewControls::OnHitboxSetChanged()
{
	if ( m_pSession && StoreName( &m_pSession->GetPreviewStateForModify().m_hitboxSetName, m_pHitboxSetCombo->currentText() ) )
		SendPreviewStateChanged( true );
}

void CQParticlePreviewControls::EnableAttachmentAxes( bool bEnable )
{
	STORE_PREVIEW_FLAG( m_bShouldDrawAttachments, bEnable );
}

void CQParticlePreviewControls::EnableAttachmentNames( bool bEnable )
{
	STORE_PREVIEW_FLAG( m_bShouldDrawAttachmentNames, bEnable );
}

void CQParticlePreviewControls::OnPlaybackSpeedChanged( float flSpeed )
{
	STORE_PREVIEW_FLAG( m_flPlaybackSpeed, flSpeed );
}

void CQParticlePreviewControls::OnAnimationLoopingChanged( bool bLooping )
{
	STORE_PREVIEW_FLAG( m_bAnimationNonLooping, !bLooping );
}

void CQParticlePreviewControls::OnNamedSequenceChanged( const QString seqName )
{
	if ( !m_pSession )
		return;
	ParticlePreviewState_t &state = m_pSession->GetPreviewStateForModify();
	if ( !state.m_bSequenceNameIsAnimClipPath && state.m_sequenceName.IsEqual_CaseInsensitive( seqName.toUtf8().constData() ) )
		return;
	state.m_sequenceName = seqName.toUtf8().constData();
	state.m_bSequenceNameIsAnimClipPath = false;
	SendPreviewStateChanged( true );
}

void CQParticlePreviewControls::OnPreviewAnimClipChanged( const QString clipPath )
{
	if ( !m_pSession )
		return;
	ParticlePreviewState_t &state = m_pSession->GetPreviewStateForModify();
	if ( state.m_bSequenceNameIsAnimClipPath && state.m_sequenceName.IsEqual_CaseInsensitive( clipPath.toUtf8().constData() ) )
		return;
	state.m_sequenceName = clipPath.toUtf8().constData();
	state.m_bSequenceNameIsAnimClipPath = true;
	SendPreviewStateChanged( true );
}

void CQParticlePreviewControls::OnEconItemChanged()
{
	if ( !m_pSession )
		return;
	const uint32_t nItem = m_pItemCombo->count() > 0 ? m_pItemCombo->currentData().toUInt() & ITEM_ID_MASK : 0;
	ParticlePreviewState_t &state = m_pSession->GetPreviewStateForModify();
	const uint32_t nNew = ( state.m_nModSpecificData & ITEM_SINGLE_ONLY_BIT ) | nItem;
	if ( nNew == state.m_nModSpecificData )
		return;
	state.m_nModSpecificData = nNew;
	SendPreviewStateChanged( false );
}

void CQParticlePreviewControls::OnEconItemDisplayTypeChanged( bool bDisplaySets )
{
	if ( !m_pSession )
		return;
	ParticlePreviewState_t &state = m_pSession->GetPreviewStateForModify();
	const bool bShowsSet = !( state.m_nModSpecificData & ITEM_SINGLE_ONLY_BIT );
	if ( bShowsSet == bDisplaySets )
		return;
	state.m_nModSpecificData = bDisplaySets ? state.m_nModSpecificData & ITEM_ID_MASK : state.m_nModSpecificData | ITEM_SINGLE_ONLY_BIT;
	SendPreviewStateChanged( false );
}

void CQParticlePreviewControls::OnLockPreviewSystemToggled()
{
	CZolApp *pApp = ZolApp();
	if ( !pApp )
		return;
	const bool bLocked = m_pLockPreviewSystem->isChecked();
	pApp->SetPreviewSessionLocked( bLocked );
	// Unlocked, the preview follows the edited session again at once.
	if ( !bLocked )
		pApp->SetPreviewSession( pApp->GetActiveZolSession() );
	UpdateEnabledStates();
}

void CQParticlePreviewControls::OnSimulationRateChanged()
{
	if ( !m_pSession )
		return;
	bool bOk = false;
	const float flRate = m_pSimulationRate->text().toFloat( &bOk );
	ParticlePreviewState_t &state = m_pSession->GetPreviewStateForModify();
	if ( !bOk || flRate < 0.0f || flRate > 100.0f )
	{
		// Not a rate: what stood there comes back.
		const QSignalBlocker blocker( m_pSimulationRate );
		m_pSimulationRate->setText( QString::number( double( state.m_flParticleSimulationRate ), 'f', 2 ) );
		return;
	}
	if ( state.m_flParticleSimulationRate == flRate )
		return;
	state.m_flParticleSimulationRate = flRate;
	SendPreviewStateChanged( true );
}

void CQParticlePreviewControls::OnGravityChanged()
{
	bool bOk = false;
	const Vector vGravity = m_pGravity->GetValue( &bOk );
	if ( !bOk )
		return;
	// The particles feel it through the console variable, with or without a change.
	zol_preview_gravity.SetValue( QString::asprintf( "%g %g %g", double( vGravity.x ), double( vGravity.y ), double( vGravity.z ) ).toUtf8().constData() );
	if ( !m_pSession )
		return;
	ParticlePreviewState_t &state = m_pSession->GetPreviewStateForModify();
	if ( state.m_vecPreviewGravity == vGravity )
		return;
	state.m_vecPreviewGravity = vGravity;
	SendPreviewStateChanged( true );
}

void CQParticlePreviewControls::OnWaterCheckBoxChanged( bool bUnderwater )
{
	// Not part of the preview state: it holds with or without a session.
	zol_preview_underwater.SetValue( bUnderwater );
}

void CQParticlePreviewControls::OnAnimationFrameChanged()
{
	if ( !m_pSession )
		return;
	bool bOk = false;
	const int nFrame = m_pFrameEdit->text().toInt( &bOk );
	if ( !bOk )
		return;
	STORE_PREVIEW_FLAG( m_nFireParticleOnSequenceFrame, nFrame );
}

#undef STORE_PREVIEW_FLAG

// ---------------------------------------------------------------------------------------
// Configurations

void CQParticlePreviewControls::OnSavePreviewState()
{
	if ( !m_pSession )
		return;
	ZolControlPointConfiguration_t *pConfig = m_pSession->GetCurrentConfiguration();
	if ( !pConfig )
		return;
	m_pSession->GetDoc()->BeginEdit( "Commit Control Point And Preview State", true );
	// The undo snapshot made the configurations anew: find the current one again.
	m_pSession->StoreStateInConfiguration( m_pSession->GetCurrentConfiguration() );
}

void CQParticlePreviewControls::OnLoadPreviewState()
{
	if ( m_pSession )
		m_pSession->SelectConfiguration( m_pSession->GetCurrentConfiguration() );
}

void CQParticlePreviewControls::OnCopyPreviewState()
{
	if ( m_pSession )
		m_pSession->CopyConfiguration();
}

void CQParticlePreviewControls::OnPastePreviewState()
{
	if ( m_pSession )
		m_pSession->PasteConfiguration();
}

void CQParticlePreviewControls::OnAddConfiguration()
{
	if ( m_pSession )
		m_pSession->AddNewConfiguration();
}

void CQParticlePreviewControls::OnRemoveConfiguration()
{
	if ( m_pSession )
		m_pSession->RemoveConfiguration( m_pSession->GetCurrentConfiguration() );
}

void CQParticlePreviewControls::OnConfigurationNameChanged()
{
	if ( !m_pSession )
		return;
	if ( !m_bConfigNameTyped )
		return;
	const QByteArray name = m_TypedConfigName.trimmed().toUtf8();
	m_bConfigNameTyped = false;
	// Refused (empty, or another configuration's name), the name that stands comes back.
	m_pSession->RenameCurrentConfiguration( name.constData() );
	RebuildConfigurationCombo();
}

void CQParticlePreviewControls::OnSelectedConfigurationChanged()
{
	if ( !m_pSession )
		return;
	// The combo itself picks the entry that a typed name matches; that is a rename the
	// name handler refuses, not a choice.
	if ( m_bConfigNameTyped && !m_pConfigCombo->view()->isVisible() )
		return;
	m_bConfigNameTyped = false;
	const QByteArray name = m_pConfigCombo->currentText().toUtf8();
	m_pSession->SelectConfigurationByName( name.constData() );
}
