#include "tools/zol/editor/particlepreview.h"

#include <QCheckBox>
#include <QCursor>
#include <QDoubleValidator>
#include <QFile>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <functional>
#include <iterator>

#include "core/console/convar.h"
#include "core/host/iasset.h"
#include "core/kv3/keyvalues3.h"
#include "core/logging/logging.h"
#include "core/particles/particleattachment.h"
#include "core/particles/sim/iparticlecollection.h"
#include "core/text/strtools.h"
#include "particleslib/particlemgr.h"
#include "core/particles/controlpointusagekind.h"
#include "tools/toolscene/gizmoevents.h"
#include "tools/toolscene/toolsceneaxis.h"
#include "tools/toolscene/toolscenegizmolibgizmo.h"
#include "tools/toolscene/toolsceneview.h"
#include "tools/toolutils2/toolevents/tooleventdispatcher.h"
#include "tools/toolscene/toolscenegrid.h"
#include "tools/toolscene/toolscenemath.h"
#include "tools/toolscene/toolscenemodel.h"
#include "tools/toolscene/toolsceneparticlesystem.h"
#include "tools/toolscene/widgets/qtoolscenewidget.h"
#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"
#include "tools/toolutils2/widgets/inputbind/bindablecommandaction.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"
#include "tools/zol/editor/zolapp.h"
#include "tools/zol/editor/zolsession.h"
#include "particleslib/particleeffect.h"
#include "zoldoc_lib/zolcollectionpreviewtarget.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolnamedvalue.h"

ConVar r_particle_max_detail_level( "r_particle_max_detail_level", "3", FCVAR_NONE, "The highest detail level that previewed particle systems run at (0 low to 3 ultra).",
	true, 0.0f, true, 3.0f );

namespace
{
constexpr float CONTROL_POINT_AXIS_SIZE = 12.0f;
constexpr float MAX_RESTART_TIME = 600.0f;
const char *const s_DetailLevelNames[ PARTICLE_DETAIL_LEVEL_COUNT ] = { "Low", "Medium", "High", "Ultra" };

// An icon of the game's tool images, or none when the file isn't there.
QIcon GameIcon( const char *pPath )
{
	QString path = QString( "game:" ) + pPath;
	return QFile::exists( path ) ? QIcon( path ) : QIcon();
}

// A tool bar entry that runs one of the application's commands, so a click, a key and a
// menu entry are one path.
QAction *AddCommandAction( QToolBar *pToolBar, IBindTarget *pTarget, const char *pCommand, const char *pLabel, const char *pIcon )
{
	QIcon icon = GameIcon( pIcon );
	auto *pAction = new CQBindableCommandAction( pTarget, pCommand, pLabel, pToolBar, icon.isNull() ? COMMAND_TEXT_MODE_BUTTON : COMMAND_TEXT_MODE_ICON );
	pAction->setIcon( icon );
	pToolBar->addAction( pAction );
	return pAction;
}

QLineEdit *AddTimeEdit( QToolBar *pToolBar, const char *pLabel )
{
	const char *pStyle = "padding-left: 5px; padding-right: 1px;";
	auto *pText = new QLabel( pLabel, pToolBar );
	pText->setStyleSheet( pStyle );
	pToolBar->addWidget( pText );
	auto *pEdit = new QLineEdit( "0.00", pToolBar );
	pEdit->setMaximumWidth( 40 );
	pEdit->setStyleSheet( pStyle );
	auto *pValidator = new QDoubleValidator( 0.0, MAX_RESTART_TIME, 3, pEdit );
	pValidator->setNotation( QDoubleValidator::StandardNotation );
	pEdit->setValidator( pValidator );
	pToolBar->addWidget( pEdit );
	return pEdit;
}

// The text as seconds from 0 to 600; anything else keeps the old value.
float ParseRestartTime( QLineEdit *pEdit, float flOld )
{
	bool bOk = false;
	float flValue = pEdit->text().toFloat( &bOk );
	if ( !bOk || !( flValue >= 0.0f ) || flValue > MAX_RESTART_TIME )
		flValue = flOld;
	pEdit->setText( QString::number( double( flValue ), 'f', 2 ) );
	return flValue;
}

void BuildParticlePreviewCommands( CBindTargetDescriptor<CQParticlePreview> &d )
{
	d.AddClickCommand( "GizmoRotate", []( CQParticlePreview *pPreview ) { pPreview->SetGizmoRotating( true ); } );
	d.AddClickCommand( "GizmoTranslate", []( CQParticlePreview *pPreview ) { pPreview->SetGizmoRotating( false ); } );
	d.AddClickCommand( "HideGizmo", []( CQParticlePreview *pPreview ) { pPreview->HideGizmo(); } );
	// Keyboard steps of the gizmo, repeating while the key is held.
	static const char *const s_Nudges[ 4 ] = { "GizmoNudgeRight", "GizmoNudgeLeft", "GizmoNudgeUp", "GizmoNudgeDown" };
	for ( int nDirection = 0; nDirection < 4; ++nDirection )
	{
		auto fnNudge = [ nDirection ]( CQParticlePreview *pPreview ) { pPreview->NudgeGizmo( nDirection ); };
		d.AddCommand( s_Nudges[ nDirection ] ).SetHandler( BIND_STAGE_PRESS, fnNudge ).SetHandler( BIND_STAGE_REPEAT, fnNudge );
	}
	// A click (no drag) on a control point's axes selects it.
	d.AddClickCommand( "PickControlPoint", []( CQParticlePreview *pPreview ) { pPreview->PickControlPointAtPointer(); } );
}

CBindTargetDescriptor<CQParticlePreview> s_ParticlePreviewCommands( "ParticlePreview", "CQParticlePreview", &BuildParticlePreviewCommands );
} // namespace

const char *GetParticleDetailLevelName( int nLevel )
{
	return nLevel >= 0 && nLevel < PARTICLE_DETAIL_LEVEL_COUNT ? s_DetailLevelNames[ nLevel ] : "";
}

const CBindTargetDescriptorBase *CQParticlePreview::GetBindTargetDescriptor() const
{
	return &s_ParticlePreviewCommands;
}

CQParticlePreview::CQParticlePreview( QWidget *pParent ) : QWidget( pParent ), m_EventMap( this )
{
	setObjectName( "ParticlePreview" );
	CZolApp *pApp = ZolApp();
	IBindTarget *pAppTarget = pApp ? static_cast<IBindTarget *>( pApp ) : nullptr;

	auto *pLayout = new QVBoxLayout( this );
	pLayout->setContentsMargins( 0, 0, 0, 0 );
	pLayout->setSpacing( 0 );

	m_pToolBar = new QToolBar( this );
	m_pToolBar->setIconSize( QSize( 16, 16 ) );
	pLayout->addWidget( m_pToolBar );

	m_pPlayButton = new QToolButton( m_pToolBar );
	m_pPlayButton->setCheckable( true );
	m_pPlayButton->setChecked( true );
	QIcon playIcon;
	playIcon.addFile( "game:tools/images/common/control_pause_sm.png", QSize(), QIcon::Normal, QIcon::On );
	playIcon.addFile( "game:tools/images/common/control_play_sm.png", QSize(), QIcon::Normal, QIcon::Off );
	m_pPlayButton->setIcon( playIcon );
	m_pPlayButton->setToolTip( "Play / Pause" );
	if ( !QFile::exists( "game:tools/images/common/control_play_sm.png" ) )
		m_pPlayButton->setText( "Play" );
	connect( m_pPlayButton, &QToolButton::toggled, this, &CQParticlePreview::PlayModeChanged );
	m_pToolBar->addWidget( m_pPlayButton );
	if ( pAppTarget )
	{
		AddCommandAction( m_pToolBar, pAppTarget, "RestartPreview", "Restart Sim", "tools/images/common/control_first_sm.png" );
		AddCommandAction( m_pToolBar, pAppTarget, "RestartGlobal", "Restart Across All Tools", "tools/images/zol/restart_global.png" );
		AddCommandAction( m_pToolBar, pAppTarget, "StopSim", "Stop Sim", "tools/images/common/control_stop_sm.png" );
		AddCommandAction( m_pToolBar, pAppTarget, "StopSimWithEndcap", "Stop Sim With Endcap", "tools/images/zol/stop_with_endcap.png" );
	}
	m_pAutoRestartAction = m_pToolBar->addAction( GameIcon( "tools/images/common/reload_sm.png" ), "AutoRestart" );
	m_pAutoRestartAction->setCheckable( true );
	m_pAutoRestartAction->setChecked( true );
	connect( m_pAutoRestartAction, &QAction::toggled, this, &CQParticlePreview::AutoRestartChanged );
	m_pToolBar->addSeparator();
	connect( m_pToolBar->addAction( GameIcon( "tools/images/zol/reset_cam.png" ), "Reset Camera" ), &QAction::triggered, this, &CQParticlePreview::ResetCamera );
	connect( m_pToolBar->addAction( GameIcon( "tools/images/zol/move_cam_to_origin.png" ), "Move Camera To Origin" ), &QAction::triggered, this,
		&CQParticlePreview::MoveCameraToOrigin );
	m_pToolBar->addSeparator();
	m_pDetailLevelButton = new QToolButton( m_pToolBar );
	m_pDetailLevelButton->setToolButtonStyle( Qt::ToolButtonTextBesideIcon );
	m_pDetailLevelButton->setToolTip( "Set Detail Level" );
	connect( m_pDetailLevelButton, &QToolButton::clicked, this, &CQParticlePreview::OnDetailLevelButtonClicked );
	m_pToolBar->addWidget( m_pDetailLevelButton );
	m_pAutoRestartTimeEdit = AddTimeEdit( m_pToolBar, "  Auto-Restart Time: " );
	connect( m_pAutoRestartTimeEdit, &QLineEdit::editingFinished, this, &CQParticlePreview::OnAutoRestartTimeChanged );
	connect( m_pAutoRestartTimeEdit, &QLineEdit::returnPressed, this, &CQParticlePreview::OnAutoRestartTimeChanged );
	m_pForcedRestartTimeEdit = AddTimeEdit( m_pToolBar, "  Forced-Restart Time: " );
	connect( m_pForcedRestartTimeEdit, &QLineEdit::editingFinished, this, &CQParticlePreview::OnForcedRestartTimeChanged );
	connect( m_pForcedRestartTimeEdit, &QLineEdit::returnPressed, this, &CQParticlePreview::OnForcedRestartTimeChanged );
	m_pForcedRestartEndcap = new QCheckBox( "Forced-Restart Play Endcap", m_pToolBar );
	m_pForcedRestartEndcap->setStyleSheet( "padding-left: 5px; padding-right: 1px;" );
	m_pForcedRestartEndcap->setChecked( true );
	connect( m_pForcedRestartEndcap, &QCheckBox::toggled, this, &CQParticlePreview::OnForcedRestartEndcapChanged );
	m_pToolBar->addWidget( m_pForcedRestartEndcap );

	m_pSceneWidget = new CQToolSceneWidget( &m_Scene, this );
	pLayout->addWidget( m_pSceneWidget, 1 );
	m_nWillNotEndIndicator = m_pSceneWidget->AddOverlayIndicator( "System will not end on stop!", "game:tools/images/common/generic_hud_warning.png" );

	m_pParticleSystem = std::make_unique<CToolSceneParticleSystem>( &m_Scene );
	m_pParticleSystem->SetListener( this );
	m_pParticleSystem->SetApplyDefaultControlPoints( true );
	m_pPreviewModel = std::make_unique<CToolSceneModel>( &m_Scene );
	m_Scene.SetMainModel( m_pPreviewModel.get() );
	m_pGizmo = std::make_unique<CToolSceneGizmoLibGizmo>( &m_Scene );
	m_pGizmo->SetWindow( m_pSceneWidget );
	m_pGizmo->GetGizmo().SetListeners( this, &m_GizmoSnapper );
	m_pGizmo->SetVisible( false );
	m_pSceneWidget->SetPointerListener( m_pGizmo.get() );
	m_pSceneWidget->SetKeyHandler( [ this ]( QKeyEvent *pEvent ) { return OnSceneKey( pEvent ); } );
	m_pGround = std::make_unique<CToolSceneGrid>( &m_Scene );
	CopyRestartTimesToSystem();
	SetParticleDetailLevel( r_particle_max_detail_level.GetInt() );

	CQInputBindManager::Get()->RegisterTarget( this, this );
	CQInputBindManager::Get()->RegisterTarget( m_pSceneWidget, m_pSceneWidget );
	CQInputBindManager::Get()->RegisterTarget( m_pSceneWidget, m_pGizmo.get() );
	GizmoEventDispatcher().AddListener( this, &CQParticlePreview::OnGizmoLengthChanged );
	GizmoEventDispatcher().AddListener( this, &CQParticlePreview::OnGizmoAngleChanged );
	GizmoEventDispatcher().AddListener( this, &CQParticlePreview::OnGizmoScaleChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_HUB, &CQParticlePreview::OnPreviewSessionChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_SESSION, &CQParticlePreview::OnPreviewConfigSelectionChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_SESSION, &CQParticlePreview::OnControlPointListChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_SESSION, &CQParticlePreview::OnControlPointValueChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_SESSION, &CQParticlePreview::OnPreviewStateChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_SESSION, &CQParticlePreview::OnNamedValueChanged );
	if ( pApp && pApp->GetEventHub() )
		m_EventMap.Attach( TOOL_EVENT_SLOT_HUB, pApp->GetEventHub()->GetEventDispatcher() );
	SetSession( pApp ? pApp->GetPreviewSession() : nullptr );
}

CQParticlePreview::~CQParticlePreview()
{
	if ( m_pSession && m_pSession->GetPreviewTarget() == this )
		m_pSession->SetPreviewTarget( nullptr );
	CQInputBindManager::Get()->UnregisterTarget( this );
	CQInputBindManager::Get()->UnregisterTarget( m_pSceneWidget );
	CQInputBindManager::Get()->UnregisterTarget( m_pGizmo.get() );
	GizmoEventDispatcher().RemoveListenersOf( this );
	m_pSceneWidget->SetPointerListener( nullptr );
	m_pSceneWidget->SetKeyHandler( nullptr );
	m_EventMap.Detach( TOOL_EVENT_SLOT_SESSION );
	m_EventMap.Detach( TOOL_EVENT_SLOT_HUB );
	// Nodes go before the scene that the widget draws; the widget goes with its parent.
	m_ControlPointAxes.clear();
	m_pGizmo.reset();
	m_pParticleSystem.reset();
	if ( m_Scene.GetMainModel() == m_pPreviewModel.get() )
		m_Scene.SetMainModel( nullptr );
	m_pPreviewModel.reset();
	m_pGround.reset();
	delete m_pSceneWidget;
	m_pSceneWidget = nullptr;
}

// ---------------------------------------------------------------------------------------
// Sessions

void CQParticlePreview::OnPreviewSessionChanged( const ZolEvent_PreviewSessionChanged_t &event )
{
	SetSession( event.m_pSession );
}

void CQParticlePreview::SetSession( CZolSession *pSession )
{
	m_EventMap.Detach( TOOL_EVENT_SLOT_SESSION );
	m_EventMap.Detach( TOOL_EVENT_SLOT_DOCUMENT );
	if ( m_pSession && m_pSession->GetPreviewTarget() == this )
		m_pSession->SetPreviewTarget( nullptr );
	m_pSession = pSession;
	m_pParticleSystem->ClearControlPoints();
	if ( m_pSession )
	{
		// The session's control point state is applied to this preview.
		m_pSession->SetPreviewTarget( this );
		m_EventMap.Attach( TOOL_EVENT_SLOT_SESSION, m_pSession->GetEventDispatcher() );
		if ( CZolDoc *pDoc = m_pSession->GetDoc() )
			m_EventMap.Attach( TOOL_EVENT_SLOT_DOCUMENT, pDoc->GetEventDispatcher() );
	}
	RefreshSession();
}

void CQParticlePreview::RefreshSession()
{
	m_pGizmo->SetVisible( false );
	m_bGizmoShown = false;
	m_nPeakActive = 0;
	m_nPeakTotalActive = 0;
	const CResourceHandle *pResource = m_pSession ? &m_pSession->GetResource() : nullptr;
	if ( pResource && *pResource && ( *pResource )->GetType() == RESOURCE_TYPE_PARTICLE_SYSTEM )
	{
		m_pParticleSystem->SetDefinitionResource( *pResource );
		UpdateStatusIndicators();
		RebuildPreview( true );
		ApplyControlPoints();
	}
	else
	{
		m_pParticleSystem->SetDefinitionResource( CResourceHandle() );
		UpdateStatusIndicators();
		RebuildPreview( true );
	}
	m_pSceneWidget->SetMessage( m_pSession && !( pResource && *pResource ) ? NO_RESOURCE_MESSAGE : "", QColor( 255, 0, 0 ) );
	m_pSceneWidget->ResetCamera( true, true );
	UpdateGizmo();
}

void CQParticlePreview::RebuildPreview( bool bReloadModels )
{
	// No session: no model, the grid, rate 1.
	const ParticlePreviewState_t state = m_pSession ? m_pSession->GetPreviewState() : ParticlePreviewState_t();
	if ( bReloadModels )
	{
		if ( V_stricmp_fast( state.m_previewModel.Get(), m_pPreviewModel->GetModelName() ) )
		{
			m_pPreviewModel->SetModelName( state.m_previewModel.Get() );
			m_pParticleSystem->Restart();
		}
		ApplyControlPoints();
	}
	// Skin, body parts and the sequence of the preview model.
	m_pPreviewModel->SetMaterialGroup( state.m_materialGroupName.Get() );
	std::vector<std::pair<CUtlString, int>> bodyGroups;
	for ( const ParticlePreviewBodyGroup_t &group : state.m_vecBodyGroups )
		bodyGroups.emplace_back( group.m_bodyGroupName, group.m_nValue );
	m_pPreviewModel->SetBodyGroups( bodyGroups );
	// An animation clip path names nothing the models here have.
	m_pPreviewModel->SetSequence( state.m_bSequenceNameIsAnimClipPath ? "" : ( state.m_sequenceName.IsEmpty() ? "idle" : state.m_sequenceName.Get() ) );
	m_pPreviewModel->SetPlaybackSpeed( state.m_flPlaybackSpeed );
	m_pPreviewModel->SetLooping( !state.m_bAnimationNonLooping );
	m_pPreviewModel->SetDrawAttachments( state.m_bShouldDrawAttachments );
	m_pGround->SetGroundType( state.m_groundType == ZOL_GROUND_PLANE  ? TOOLSCENE_GROUND_PLANE
							  : state.m_groundType == ZOL_GROUND_NONE ? TOOLSCENE_GROUND_NONE
																	  : TOOLSCENE_GROUND_GRID );
	// The axes follow on the next frame; every set point gets a marker with them.
	m_bDrawControlPointAxes = state.m_bShouldDrawControlPointAxes;
	m_pParticleSystem->SetDrawControlPoints( m_bDrawControlPointAxes );
	m_flSimulationRate = state.m_flParticleSimulationRate >= 0.0f && state.m_flParticleSimulationRate <= 100.0f ? state.m_flParticleSimulationRate : 1.0f;
	// A non-looping sequence that fires the system on a frame restarts it (Update); the
	// node's own rule stands down meanwhile.
	const bool bFiresOnFrame = state.m_bAnimationNonLooping && state.m_nFireParticleOnSequenceFrame != 0;
	m_pParticleSystem->SetAutoRestart( !bFiresOnFrame && m_pAutoRestartAction->isChecked() );
	m_bNonLoopingSequenceRunning = false;
}

void CQParticlePreview::ApplyControlPoints()
{
	if ( m_pSession && m_pSession->GetPreviewTarget() == this )
		m_pSession->ApplyToPreview();
}

// ---------------------------------------------------------------------------------------
// The session's control point state lands here

bool CQParticlePreview::HasRunningCollection() const
{
	return m_pParticleSystem->GetCollection() != nullptr;
}

void CQParticlePreview::SetCollectionControlPoint( int nPoint, const Vector &vPosition, const QAngle &angles )
{
	CNewParticleEffect *pEffect = m_pParticleSystem->GetEffect();
	if ( !pEffect || nPoint < 0 || nPoint >= MAX_PARTICLE_CONTROL_POINTS )
		return;
	Vector vForward, vRight, vUp;
	ToolSceneMath::AngleVectors( angles, &vForward, &vRight, &vUp );
	pEffect->SetControlPointOrientation( nPoint, vForward, vRight, vUp );
	pEffect->SetControlPoint( nPoint, m_pParticleSystem->LocalToWorld( vPosition ) );
}

void CQParticlePreview::SetCollectionNamedValue( const ParticleParamID_t &key, const CPulseValueFullType &type, const KeyValues3 &value )
{
	// The same conversion of a value to the collection as a headless run's.
	CZolCollectionPreviewTarget target( m_pParticleSystem->GetCollection() );
	if ( target.HasRunningCollection() )
		target.SetCollectionNamedValue( key, type, value );
}

void CQParticlePreview::ClearControlPointBinding( int nPoint )
{
	m_pParticleSystem->ClearControlPoint( nPoint );
}

void CQParticlePreview::SetNodeControlPoint( int nPoint, const Vector &vPosition, const QAngle &angles )
{
	Vector vForward, vRight, vUp;
	ToolSceneMath::AngleVectors( angles, &vForward, &vRight, &vUp );
	m_pParticleSystem->SetControlPointOrientation( nPoint, vForward, vRight, vUp );
	m_pParticleSystem->SetControlPoint( nPoint, vPosition );
}

bool CQParticlePreview::BindControlPointToModel( int nPoint, const char *pModelName, bool, int nAttachType, const char *pAttachmentName, const Vector &vOffset,
	const QAngle &angOffset )
{
	// The scene's one model is the preview model; it has no child models to search.
	if ( !pModelName || !m_pPreviewModel->GetModel() || V_stricmp_fast( pModelName, m_pPreviewModel->GetModelName() ) )
		return false;
	int nAttachment = -1;
	if ( pAttachmentName && *pAttachmentName )
	{
		nAttachment = m_pPreviewModel->LookupAttachment( pAttachmentName );
		if ( nAttachment < 0 )
			return false;
	}
	// Without an attachment the point follows the model's origin.
	ParticleAttachment_t eType = ParticleAttachment_t( nAttachType );
	if ( nAttachment < 0 && ( eType == PATTACH_POINT || eType == PATTACH_POINT_FOLLOW ) )
		eType = PATTACH_ABSORIGIN_FOLLOW;
	m_pParticleSystem->SetControlPointAttachment( nPoint, m_pPreviewModel.get(), eType, std::max( nAttachment, 0 ), vOffset, angOffset );
	return true;
}

void CQParticlePreview::UpdateStatusIndicators()
{
	if ( m_nImportedIndicator < 0 )
	{
		m_nImportedIndicator = m_pSceneWidget->AddOverlayIndicator( "Model imported from tessel1", "game:tools/images/model_editor/tessel1_import.png" );
		m_nNoContentIndicator = m_pSceneWidget->AddOverlayIndicator( "No Content Found", "game:tools/images/common/not_editable.png" );
	}
	IAsset *pAsset = m_pSession ? m_pSession->GetAsset() : nullptr;
	m_pSceneWidget->SetOverlayIndicatorVisible( m_nImportedIndicator, pAsset && V_stristr_fast( pAsset->GetPath(), "_imported/" ) );
	m_pSceneWidget->SetOverlayIndicatorVisible( m_nNoContentIndicator, m_pSession && !pAsset );
}

void CQParticlePreview::OnControlPointListChanged( const ZolEvent_ControlPointListChanged_t & )
{
	ApplyControlPoints();
}

void CQParticlePreview::OnControlPointValueChanged( const ZolEvent_ControlPointValueChanged_t &event )
{
	if ( m_pSession )
	{
		const ZolKnownControlPoint_t *pKnown = m_pSession->GetControlPointState()->FindKnown( event.m_ControlPoint );
		if ( pKnown && pKnown->m_bDriven )
			return;
		if ( m_bGizmoShown && event.m_ControlPoint == m_pSession->GetSelectedControlPoint() )
			PlaceGizmo();
	}
	ApplyControlPoints();
}

void CQParticlePreview::OnNamedValueChanged( const ZolEvent_NamedValueChanged_t &event )
{
	if ( m_pSession && m_bGizmoShown && event.m_NamedValue == m_pSession->GetSelectedControlPoint() )
		PlaceGizmo();
	ApplyControlPoints();
}

void CQParticlePreview::OnPreviewConfigSelectionChanged( const ZolEvent_PreviewConfigSelectionChanged_t & )
{
	UpdateGizmo();
}

void CQParticlePreview::OnPreviewStateChanged( const ZolEvent_PreviewStateChanged_t &event )
{
	RebuildPreview( !event.m_bModelStands );
}

// ---------------------------------------------------------------------------------------
// The frame

void CQParticlePreview::Update()
{
	// A sequence that doesn't loop plays again once the system has ended; with a fire
	// frame, the system starts over when the sequence reaches it.
	if ( m_pSession && m_pSession->GetPreviewState().m_bAnimationNonLooping )
	{
		const ParticlePreviewState_t &state = m_pSession->GetPreviewState();
		if ( !m_bNonLoopingSequenceRunning && ( !m_pParticleSystem->GetEffect() || m_pParticleSystem->IsEnded() ) )
		{
			m_pPreviewModel->RestartSequence();
			m_bNonLoopingSequenceRunning = state.m_nFireParticleOnSequenceFrame != 0;
		}
		if ( m_bNonLoopingSequenceRunning && m_pPreviewModel->GetSequenceFrame() >= state.m_nFireParticleOnSequenceFrame )
		{
			m_pParticleSystem->Restart();
			m_pParticleSystem->SetAutoRestart( false );
			m_bNonLoopingSequenceRunning = false;
			ApplyControlPoints();
		}
	}
	m_pSceneWidget->Tick( m_flSimulationRate );
	UpdateInformationText();
	const IParticleCollection *pCollection = m_pParticleSystem->GetCollection();
	m_pSceneWidget->SetOverlayIndicatorVisible( m_nWillNotEndIndicator, pCollection && pCollection->WillNotEndOnStop() );
	UpdateControlPointAxes();
}

void CQParticlePreview::UpdateInformationText()
{
	IParticleCollection *pCollection = m_pParticleSystem->GetCollection();
	if ( !pCollection || !m_bShowSystemInformation )
	{
		m_pSceneWidget->SetOverlayText( QString() );
		return;
	}
	int nSystems = 0, nTotalActive = 0, nTotalAllocated = 0;
	std::function<void( const IParticleCollection * )> fnCount = [ & ]( const IParticleCollection *p ) {
		for ( ; p; p = p->GetNextSibling() )
		{
			++nSystems;
			nTotalActive += p->GetActiveParticleCount( false );
			nTotalAllocated += p->GetAllocatedParticleCount();
			fnCount( p->GetFirstChild() );
		}
	};
	++nSystems;
	nTotalActive = pCollection->GetActiveParticleCount( false );
	nTotalAllocated = pCollection->GetAllocatedParticleCount();
	fnCount( pCollection->GetFirstChild() );
	const int nActive = pCollection->GetActiveParticleCount( false );
	m_nPeakActive = std::max( m_nPeakActive, nActive );
	m_nPeakTotalActive = std::max( m_nPeakTotalActive, nTotalActive );
	m_pSceneWidget->SetOverlayText( QString::asprintf( "Current System:   Active/Max/Allocated: %6d/%6d/%6d\nTotal %2d Systems: Active/Max/Allocated: %6d/%6d/%6d\n", nActive,
		m_nPeakActive, pCollection->GetAllocatedParticleCount(), nSystems, nTotalActive, m_nPeakTotalActive, nTotalAllocated ) );
}

void CQParticlePreview::UpdateControlPointAxes()
{
	IParticleCollection *pCollection = m_pParticleSystem->GetCollection();
	if ( !m_pSession )
	{
		for ( auto &[ nPoint, pAxis ] : m_ControlPointAxes )
			pAxis->SetVisible( false );
		return;
	}
	for ( const auto &[ key, known ] : m_pSession->GetKnownControlPoints() )
	{
		if ( key.IsNamed() || key.IsNone() )
			continue;
		const int nPoint = key.m_nNumber;
		// Positions and transforms get axes; other kinds (offsets, models, ...) have no place.
		const bool bPlaced = known.m_nUsageKind == 0 || known.m_nUsageKind == 2 || known.m_nUsageKind == 4;
		auto it = m_ControlPointAxes.find( nPoint );
		if ( !pCollection || !pCollection->IsControlPointSet( nPoint ) || !bPlaced )
		{
			if ( it != m_ControlPointAxes.end() )
				it->second->SetVisible( false );
			continue;
		}
		if ( it == m_ControlPointAxes.end() )
			it = m_ControlPointAxes.emplace( nPoint, std::make_unique<CToolSceneAxis>( &m_Scene, CONTROL_POINT_AXIS_SIZE ) ).first;
		Vector vForward, vRight, vUp;
		pCollection->GetControlPointOrientation( nPoint, &vForward, &vRight, &vUp );
		it->second->SetOrigin( pCollection->GetControlPointPosition( nPoint ) );
		it->second->SetAngles( ToolSceneMath::AxesToAngles( vForward, vUp ) );
		it->second->SetVisible( m_bDrawControlPointAxes );
	}
}

CToolSceneAxis *CQParticlePreview::FindControlPointAxis( int nPoint ) const
{
	auto it = m_ControlPointAxes.find( nPoint );
	return it == m_ControlPointAxes.end() ? nullptr : it->second.get();
}

void CQParticlePreview::OnParticleSystemRestarted( CToolSceneParticleSystem * )
{
	// The node keeps its own control points across a restart; what the state sets on the
	// collection itself (named values) goes to the new one.
	ApplyControlPoints();
}

// ---------------------------------------------------------------------------------------
// Tool bar

void CQParticlePreview::CopyRestartTimesToSystem()
{
	m_pParticleSystem->SetAutoRestartTime( m_flAutoRestartTime );
	m_pParticleSystem->SetForcedRestartTime( m_flForcedRestartTime );
	m_pParticleSystem->SetForcedRestartEndcap( m_pForcedRestartEndcap->isChecked() );
}

void CQParticlePreview::PlayModeChanged()
{
	m_pSceneWidget->SetSimulating( m_pPlayButton->isChecked() );
}

void CQParticlePreview::RestartPreview()
{
	CopyRestartTimesToSystem();
	m_pParticleSystem->Restart();
	ApplyControlPoints();
	m_nPeakActive = 0;
	m_nPeakTotalActive = 0;
}

void CQParticlePreview::RestartGlobal()
{
	CopyRestartTimesToSystem();
	if ( const ParticleDefinitionPtr_t &pDefinition = m_pParticleSystem->GetDefinition() )
		CParticleMgr::RestartEffectsEverywhere( pDefinition->m_Name.Get() );
	m_nPeakActive = 0;
	m_nPeakTotalActive = 0;
}

void CQParticlePreview::StopSim( bool bPlayEndCap )
{
	// Automatic restart stays off until the next rebuild; the action keeps its check.
	m_pParticleSystem->Stop( bPlayEndCap );
}

void CQParticlePreview::AutoRestartChanged()
{
	if ( m_pAutoRestartAction->isChecked() )
		RestartPreview();
	m_pParticleSystem->SetAutoRestart( m_pAutoRestartAction->isChecked() );
}

void CQParticlePreview::ResetCamera()
{
	m_pSceneWidget->ResetCamera( true, true );
}

void CQParticlePreview::MoveCameraToOrigin()
{
	m_pSceneWidget->GetCamera().SetPositionAndTarget( Vector( 64, 0, 4 ), Vector( 0, 0, 4 ) );
	m_pSceneWidget->GetCamera().SetPivot( Vector( 0, 0, 0 ) );
	m_pSceneWidget->RequestPaint();
}

void CQParticlePreview::OnDetailLevelButtonClicked()
{
	QMenu menu( this );
	for ( int nLevel = 0; nLevel < PARTICLE_DETAIL_LEVEL_COUNT; ++nLevel )
	{
		QString path = QString( "tools/images/zol/detail_level_%1.png" ).arg( s_DetailLevelNames[ nLevel ] );
		QAction *pAction = menu.addAction( GameIcon( path.toUtf8().constData() ), s_DetailLevelNames[ nLevel ] );
		connect( pAction, &QAction::triggered, this, [ this, nLevel ]() { SetParticleDetailLevel( nLevel ); } );
	}
	menu.exec( QCursor::pos() );
}

void CQParticlePreview::SetParticleDetailLevel( int nDetailLevel )
{
	nDetailLevel = std::clamp( nDetailLevel, 0, PARTICLE_DETAIL_LEVEL_COUNT - 1 );
	r_particle_max_detail_level.SetValue( nDetailLevel );
	m_pParticleSystem->SetDetailLevel( nDetailLevel );
	m_pDetailLevelButton->setText( QString( "Detail Level : %1" ).arg( s_DetailLevelNames[ nDetailLevel ] ) );
	QString path = QString( "tools/images/zol/detail_level_%1.png" ).arg( s_DetailLevelNames[ nDetailLevel ] );
	m_pDetailLevelButton->setIcon( GameIcon( path.toUtf8().constData() ) );
}

void CQParticlePreview::OnAutoRestartTimeChanged()
{
	m_flAutoRestartTime = ParseRestartTime( m_pAutoRestartTimeEdit, m_flAutoRestartTime );
	m_pParticleSystem->SetAutoRestartTime( m_flAutoRestartTime );
}

void CQParticlePreview::OnForcedRestartTimeChanged()
{
	m_flForcedRestartTime = ParseRestartTime( m_pForcedRestartTimeEdit, m_flForcedRestartTime );
	m_pParticleSystem->SetForcedRestartTime( m_flForcedRestartTime );
}

void CQParticlePreview::OnForcedRestartEndcapChanged()
{
	m_pParticleSystem->SetForcedRestartEndcap( m_pForcedRestartEndcap->isChecked() );
}

void CQParticlePreview::OnToggleSystemInformationDisplay( bool bChecked )
{
	m_bShowSystemInformation = bChecked;
}

void CQParticlePreview::HideGizmo()
{
	if ( m_pSession )
		m_pSession->SetSelectedControlPoint( ParticleParamID_t() );
}

// ---------------------------------------------------------------------------------------
// The gizmo

GizmoMatrix_t CQParticlePreview::GetNodeFrame() const
{
	Vector vOrigin, vForward, vRight, vUp;
	m_pParticleSystem->GetWorldFrame( &vOrigin, &vForward, &vRight, &vUp );
	const float flScale = m_pParticleSystem->GetWorldScale();
	return GizmoMatrix_t::FromAxes( ToolSceneMath::Scale( vForward, flScale ), ToolSceneMath::Scale( vRight, -flScale ), ToolSceneMath::Scale( vUp, flScale ), vOrigin );
}

bool CQParticlePreview::GetGizmoTarget( ParticleParamID_t *pKey, Vector *pPosition, QAngle *pAngles, int *pGizmoMode ) const
{
	if ( !m_pSession )
		return false;
	const ParticleParamID_t key = m_pSession->GetSelectedControlPoint();
	if ( key.IsNone() )
		return false;
	const CZolControlPointState *pState = m_pSession->GetControlPointState();
	const ZolKnownControlPoint_t *pKnown = pState->FindKnown( key );
	if ( !pKnown || pKnown->m_bDriven )
		return false;
	*pKey = key;
	if ( key.IsNamed() )
	{
		// Variables of a vector or a transform are placed by their value.
		const int nType = pKnown->m_NamedValueType.GetBaseType();
		if ( nType != PVAL_VEC3 && nType != PVAL_TRANSFORM )
			return false;
		KeyValues3 value;
		if ( !pState->GetValue( key, &value ) || !ZolNamedValue_ToTransform( pKnown->m_NamedValueType, value, pPosition, pAngles ) )
			return false;
		*pGizmoMode = nType == PVAL_TRANSFORM && pState->GetEditMode( key ) == CONTROL_POINT_EDIT_ROTATE ? SCENE_GIZMO_ROTATE : SCENE_GIZMO_TRANSLATE;
		return true;
	}
	if ( GetControlPointUsageKindInfo( pKnown->m_nUsageKind ).m_eGizmo == CONTROL_POINT_GIZMO_NONE )
		return false;
	*pGizmoMode = GetSceneGizmoModeForEditMode( pState->GetEditMode( key ) );
	// A point that only turns is turned, whatever its mode says.
	if ( pKnown->m_nUsageKind == CONTROL_POINT_USAGE_ORIENTATION )
		*pGizmoMode = SCENE_GIZMO_ROTATE;
	if ( *pGizmoMode == SCENE_GIZMO_NONE )
		return false;
	*pPosition = pState->GetPosition( key );
	*pAngles = pState->GetAngles( key );
	return true;
}

void CQParticlePreview::UpdateGizmo()
{
	ParticleParamID_t key;
	Vector vPosition;
	QAngle angles;
	int nMode = SCENE_GIZMO_NONE;
	const bool bShow = GetGizmoTarget( &key, &vPosition, &angles, &nMode );
	if ( !bShow && m_pGizmo->GetGizmo().IsDragging() )
		m_pGizmo->OnDragRelease();
	if ( !bShow )
		m_pGizmo->GetGizmo().ClearTyped();
	m_bGizmoShown = bShow;
	m_pGizmo->SetVisible( bShow );
	if ( bShow )
		PlaceGizmo();
	ShowTypedText();
	m_pSceneWidget->RequestRedraw();
}

void CQParticlePreview::PlaceGizmo()
{
	ParticleParamID_t key;
	Vector vPosition;
	QAngle angles;
	int nMode = SCENE_GIZMO_NONE;
	if ( !GetGizmoTarget( &key, &vPosition, &angles, &nMode ) )
		return;
	const GizmoMatrix_t node = GetNodeFrame();
	GizmoFrame_t frame;
	// Moves go along the system's axes; turns about the point's own.
	frame.m_nCoordinateSpace = nMode == SCENE_GIZMO_ROTATE ? 0 : 1;
	frame.m_vPosition = frame.m_vPivot = node.TransformPoint( vPosition );
	frame.m_WorldOrientation = node;
	frame.m_LocalOrientation = node * GizmoMatrix_t::FromAngles( angles, Vector() );
	m_pGizmo->GetGizmo().SetMode( nMode, frame );
	m_pSceneWidget->RequestRedraw();
}

void CQParticlePreview::OnGizmoBegin( uint32_t )
{
	int nMode = SCENE_GIZMO_NONE;
	if ( !GetGizmoTarget( &m_GizmoKey, &m_vGizmoStartPosition, &m_GizmoStartAngles, &nMode ) )
	{
		m_GizmoKey = ParticleParamID_t();
		return;
	}
	CUtlString strDescription;
	const char *pVerb = nMode == SCENE_GIZMO_ROTATE ? "Rotate" : "Move";
	if ( m_GizmoKey.IsNamed() )
		strDescription.Format( "%s Variable '%s'", pVerb, m_GizmoKey.m_pName ? m_GizmoKey.m_pName : "" );
	else
		strDescription.Format( "%s Control Point #%d", pVerb, m_GizmoKey.m_nNumber );
	m_pSession->BeginControlPointEdit( m_GizmoKey, strDescription );
}

void CQParticlePreview::ApplyGizmoDrag( const ZolGizmoDrag &drag )
{
	if ( !m_pSession || m_GizmoKey.IsNone() || !( m_GizmoKey == m_pSession->GetSelectedControlPoint() ) )
		return;
	using namespace ToolSceneMath;
	const GizmoMatrix_t node = GetNodeFrame();
	Vector vPosition = m_vGizmoStartPosition;
	QAngle angles = m_GizmoStartAngles;
	if ( ( drag.m_nFlags & GIZMO_DRAG_ROTATION ) || drag.m_nPart == GIZMO_PART_TRACKBALL )
	{
		// The start frame turned by the drag, back in the node's space.
		GizmoMatrix_t turn = drag.m_Transform;
		turn.SetOrigin( Vector() );
		const GizmoMatrix_t world = turn * node * GizmoMatrix_t::FromAngles( m_GizmoStartAngles, Vector() );
		Vector vAxes[ 3 ];
		for ( int i = 0; i < 3; ++i )
		{
			const Vector vNodeAxis = node.GetAxis( i );
			const float flLengthSq = Dot( vNodeAxis, vNodeAxis );
			for ( int j = 0; j < 3; ++j )
				vAxes[ j ][ i ] = flLengthSq > 0.0f ? Dot( world.GetAxis( j ), vNodeAxis ) / flLengthSq : 0.0f;
		}
		angles = GizmoMatrix_t::FromAxes( vAxes[ 0 ], vAxes[ 1 ], vAxes[ 2 ], Vector() ).ToAngles();
	}
	else
	{
		// The world offset in the node's space.
		for ( int i = 0; i < 3; ++i )
		{
			const Vector vNodeAxis = node.GetAxis( i );
			const float flLengthSq = Dot( vNodeAxis, vNodeAxis );
			vPosition[ i ] += flLengthSq > 0.0f ? Dot( drag.m_vTranslation, vNodeAxis ) / flLengthSq : 0.0f;
		}
	}
	CZolControlPointState *pState = m_pSession->GetControlPointState();
	if ( m_GizmoKey.IsNamed() )
	{
		const ZolKnownControlPoint_t *pKnown = pState->FindKnown( m_GizmoKey );
		KeyValues3 value;
		if ( pKnown && ZolNamedValue_FromTransform( pKnown->m_NamedValueType, vPosition, angles, &value ) )
			pState->SetValue( m_GizmoKey, value );
	}
	else
		pState->SetTransform( m_GizmoKey, vPosition, angles );
}

void CQParticlePreview::OnGizmoDrag( const ZolGizmoDrag &drag )
{
	ApplyGizmoDrag( drag );
}

void CQParticlePreview::OnGizmoEnd( const ZolGizmoDrag &drag )
{
	// A typed value or a nudge comes as a begin and an end only.
	ApplyGizmoDrag( drag );
	m_GizmoKey = ParticleParamID_t();
	PlaceGizmo();
}

void CQParticlePreview::SetGizmoRotating( bool bRotate )
{
	if ( !m_bGizmoShown || !m_pSession )
		return;
	const ParticleParamID_t key = m_pSession->GetSelectedControlPoint();
	const ZolKnownControlPoint_t *pKnown = m_pSession->GetControlPointState()->FindKnown( key );
	// Only a transform can do both.
	if ( !pKnown || key.IsNamed() || pKnown->m_nUsageKind != CONTROL_POINT_USAGE_TRANSFORM )
		return;
	const int nWanted = bRotate ? CONTROL_POINT_EDIT_ROTATE : CONTROL_POINT_EDIT_TRANSLATE;
	if ( m_pSession->GetControlPointEditMode( key ) != nWanted )
		m_pSession->SetControlPointEditMode( key, nWanted );
	PlaceGizmo();
}

void CQParticlePreview::NudgeGizmo( int nDirection )
{
	if ( !m_bGizmoShown )
		return;
	CGizmo &gizmo = m_pGizmo->GetGizmo();
	gizmo.Nudge( m_pSceneWidget->GetView(), nDirection, gizmo.GetMode() );
}

bool CQParticlePreview::PickControlPointAtPointer()
{
	float flX, flY;
	if ( !m_pSession || m_pGizmo->GetGizmo().IsDragging() || !m_pSceneWidget->GetPointerPosition( &flX, &flY ) )
		return false;
	const ToolSceneView_t view = m_pSceneWidget->GetView();
	// A handle under the pointer belongs to the gizmo.
	if ( m_bGizmoShown && m_pGizmo->FindPart( view, GizmoRayFromScreen( view, flX, flY ) ) != GIZMO_PART_NONE )
		return false;
	constexpr float PICK_RADIUS_PIXELS = 10.0f;
	int nBest = -1;
	float flBest = PICK_RADIUS_PIXELS * PICK_RADIUS_PIXELS;
	for ( const auto &[ nPoint, pAxis ] : m_ControlPointAxes )
	{
		float sx, sy;
		if ( !pAxis->IsVisible() || !view.WorldToScreen( pAxis->GetOrigin(), &sx, &sy ) )
			continue;
		const float flDistance = ( sx - flX ) * ( sx - flX ) + ( sy - flY ) * ( sy - flY );
		if ( flDistance <= flBest )
		{
			flBest = flDistance;
			nBest = nPoint;
		}
	}
	if ( nBest < 0 )
		return false;
	m_pSession->SetSelectedControlPoint( ParticleParamID_t::ControlPoint( nBest ) );
	return true;
}

// ---------------------------------------------------------------------------------------
// Typed values and the gizmo's status

bool CQParticlePreview::OnSceneKey( QKeyEvent *pEvent )
{
	CGizmo &gizmo = m_pGizmo->GetGizmo();
	if ( !m_bGizmoShown || gizmo.IsDragging() )
		return false;
	const QString text = pEvent->text();
	const QChar c = text.size() == 1 ? text[ 0 ] : QChar();
	if ( !gizmo.IsTyping() )
	{
		// A digit, a sign or a point starts a value for the handle under the pointer.
		if ( !( c.isDigit() || c == '-' || c == '.' ) || ( pEvent->modifiers() & ( Qt::ControlModifier | Qt::AltModifier ) ) )
			return false;
		gizmo.BeginTyping();
	}
	switch ( pEvent->key() )
	{
	case Qt::Key_Return:
	case Qt::Key_Enter: gizmo.ApplyTyped( nullptr ); break;
	case Qt::Key_Escape: gizmo.ClearTyped(); break;
	case Qt::Key_Backspace:
	{
		std::string typed = gizmo.GetHelper()->GetTypedText();
		if ( !typed.empty() )
			typed.pop_back();
		gizmo.GetHelper()->SetTypedText( typed.c_str() );
		break;
	}
	default:
		// Numbers and the separator of two (letters stay the commands' keys).
		if ( c.isNull() || !QString( "0123456789-., x" ).contains( c ) )
			return true;
		gizmo.TypeCharacter( char( c.unicode() ) );
		break;
	}
	ShowTypedText();
	return true;
}

void CQParticlePreview::ShowTypedText()
{
	CGizmo &gizmo = m_pGizmo->GetGizmo();
	if ( gizmo.IsTyping() )
	{
		const int nPart = gizmo.GetHelper()->GetTypedPart();
		static const char *const s_Axes[] = { "X", "Y", "Z" };
		const QString axis = GizmoIsAxisPart( nPart ) ? s_Axes[ GizmoAxisIndex( nPart ) ] : "";
		const char *pWhat = gizmo.GetMode() == GIZMO_MODE_ROTATE ? "Rotate" : gizmo.GetMode() == GIZMO_MODE_SCALE ? "Scale" : "Move";
		m_pSceneWidget->SetMessage( QString( "%1 %2: %3_   (Enter applies, Esc cancels)" ).arg( pWhat, axis, QString::fromStdString( gizmo.GetHelper()->GetTypedText() ) ),
			QColor( 255, 216, 96 ) );
	}
	else if ( m_pSceneWidget->GetMessage() != NO_RESOURCE_MESSAGE )
		m_pSceneWidget->SetMessage( QString(), QColor() );
}

static void ShowGizmoStatus( const std::string &text )
{
	// A refused value is a warning; the measure of a drag is plain news.
	if ( CZolApp *pApp = ZolApp() )
		pApp->ShowStatusMessage( text.c_str(), text.rfind( GIZMO_BAD_VALUE_PREFIX, 0 ) == 0 ? 3 : 0 );
}

void CQParticlePreview::OnGizmoLengthChanged( const EventGizmoLengthChanged_t &event )
{
	ShowGizmoStatus( event.m_Text );
}

void CQParticlePreview::OnGizmoAngleChanged( const EventGizmoAngleChanged_t &event )
{
	ShowGizmoStatus( event.m_Text );
}

void CQParticlePreview::OnGizmoScaleChanged( const EventGizmoScaleChanged_t &event )
{
	ShowGizmoStatus( event.m_Text );
}
