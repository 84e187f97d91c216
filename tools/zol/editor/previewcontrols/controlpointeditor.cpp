#include "tools/zol/editor/previewcontrols/controlpointeditor.h"

#include <QComboBox>
#include <QCursor>
#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPixmap>
#include <QSignalBlocker>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

#include "core/host/iprompt.h"
#include "core/particles/controlpointusagekind.h"
#include "core/particles/particleattachment.h"
#include "tools/widgets/editboxvector3.h"
#include "tools/widgets/smartcombobox.h"
#include "tools/widgets/toolbutton.h"
#include "tools/zol/editor/previewcontrols/previewcontrolsupport.h"
#include "tools/zol/editor/zolsession.h"
#include "zoldoc_lib/zolcontrolpointstate.h"
#include "zoldoc_lib/zolpersistedcontrolpoints.h"

namespace
{
// The attach types by number, as the combo lists them.
const char *const s_AttachTypeWords[ MAX_PATTACH_TYPES ] = { "absorigin", "absorigin_follow", "customorigin", "customorigin_follow", "point", "point_follow",
	"eyes_follow", "overhead_follow", "worldorigin", "rootbone_follow", "renderorigin_follow", "main_view", "water_wake", "center_follow", "custom_game_state_1",
	"healthbar_position" };
} // namespace

const char *CQControlPointEditor::GetAttachTypeWord( int nType )
{
	return nType >= 0 && nType < MAX_PATTACH_TYPES ? s_AttachTypeWords[ nType ] : "invalid";
}

CQControlPointEditor::CQControlPointEditor( CZolSession *pSession, const ZolKnownControlPoint_t &known, QWidget *pParent )
	: QGroupBox( pParent ), m_pSession( pSession ), m_Key( known.m_Key ), m_bDriven( known.m_bDriven ), m_nUsageKind( known.m_nUsageKind )
{
	setTitle( QString( "Point #%1" ).arg( m_Key.m_nNumber ) );
	setObjectName( QString( "ControlPoint%1" ).arg( m_Key.m_nNumber ) );
	auto *pLayout = new QVBoxLayout( this );
	pLayout->setContentsMargins( 4, 4, 4, 4 );
	auto *pRow = new QHBoxLayout();
	pLayout->addLayout( pRow );

	m_pExpandButton = new QToolButton( this );
	m_pExpandButton->setObjectName( "Expand" );
	m_pExpandButton->setAutoRaise( true );
	m_pExpandButton->setToolTip( "Show what the point is attached to" );
	connect( m_pExpandButton, &QToolButton::clicked, this, &CQControlPointEditor::OnToggleExpand );
	pRow->addWidget( m_pExpandButton );

	m_pIconButton = new CQToolButton( this );
	m_pIconButton->setObjectName( "EditMode" );
	m_pIconButton->setAutoRaise( true );
	m_pIconButton->setToolTip( "Select the point for the gizmo (click again to let go)" );
	connect( m_pIconButton, &QToolButton::clicked, this, &CQControlPointEditor::OnToggleControlPointEditor );
	connect( m_pIconButton, &CQToolButton::rightClicked, this, &CQControlPointEditor::OnRightClickContextMenu );
	if ( m_nUsageKind == CONTROL_POINT_USAGE_TRANSFORM )
	{
		// A transform is moved or turned: the menu chooses.
		QMenu *pMenu = new QMenu( m_pIconButton );
		QAction *pPosition = pMenu->addAction( PreviewControlsIcon( "game:tools/images/zol/cp_position.png" ), "Position" );
		QAction *pOrientation = pMenu->addAction( PreviewControlsIcon( "game:tools/images/zol/cp_orientation.png" ), "Orientation" );
		connect( pPosition, &QAction::triggered, this, [ this ]() { OnEditModeChanged( CONTROL_POINT_EDIT_TRANSLATE ); } );
		connect( pOrientation, &QAction::triggered, this, [ this ]() { OnEditModeChanged( CONTROL_POINT_EDIT_ROTATE ); } );
		m_pIconButton->setMenu( pMenu );
		m_pIconButton->setPopupMode( QToolButton::MenuButtonPopup );
		m_pIconButton->setStyleSheet( "QToolButton[popupMode=\"1\"]{padding-right:16px;} QToolButton::menu-button{width: 16px; }" );
	}
	pRow->addWidget( m_pIconButton );

	m_pValue = new CQEditboxVector3( this );
	connect( m_pValue, &CQEditboxVector3::ValueChanged, this, &CQControlPointEditor::OnControlPointChanged );
	connect( m_pValue, &CQEditboxVector3::FocusIn, this, &CQControlPointEditor::OnSelectControlPointEditor );
	connect( m_pValue, &CQEditboxVector3::DragStarted, this, [ this ]() {
		m_bDragging = true;
		m_pSession->BeginControlPointEdit( m_Key, QString( "Set Control Point #%1" ).arg( m_Key.m_nNumber ).toUtf8().constData() );
	} );
	connect( m_pValue, &CQEditboxVector3::DragEnded, this, [ this ]() { m_bDragging = false; } );
	pRow->addWidget( m_pValue, 1 );

	m_pLockButton = new QToolButton( this );
	m_pLockButton->setObjectName( "Lock" );
	m_pLockButton->setCheckable( true );
	m_pLockButton->setAutoRaise( true );
	m_pLockButton->setToolTip( "Lock this position when switching between systems" );
	QIcon lockIcon;
	lockIcon.addFile( "game:tools/images/common/lock_sm.png", QSize(), QIcon::Normal, QIcon::On );
	lockIcon.addFile( "game:tools/images/common/unlock_sm.png", QSize(), QIcon::Normal, QIcon::Off );
	m_pLockButton->setIcon( lockIcon );
	connect( m_pLockButton, &QToolButton::toggled, this, &CQControlPointEditor::OnLockToggled );
	pRow->addWidget( m_pLockButton );

	m_pDetails = new QWidget( this );
	m_pDetails->setObjectName( "Details" );
	auto *pDetails = new QHBoxLayout( m_pDetails );
	pDetails->setContentsMargins( 0, 0, 0, 0 );
	pDetails->addWidget( new QLabel( "Attach:", m_pDetails ) );
	m_pEntityCombo = new CQSmartComboBox( m_pDetails );
	m_pEntityCombo->setObjectName( "Entity" );
	m_pEntityCombo->addItem( "Self", ZOL_ATTACH_ENTITY_SELF );
	m_pEntityCombo->addItem( "Parent", ZOL_ATTACH_ENTITY_PARENT );
	m_pEntityCombo->addItem( "Self With Wearables", ZOL_ATTACH_ENTITY_SELF_WITH_WEARABLES );
	m_pEntityCombo->setMaxVisibleItems( 3 );
	pDetails->addWidget( m_pEntityCombo );
	m_pAttachTypeCombo = new CQSmartComboBox( m_pDetails );
	m_pAttachTypeCombo->setObjectName( "AttachType" );
	for ( int nType = 0; nType < MAX_PATTACH_TYPES; ++nType )
		m_pAttachTypeCombo->addItem( s_AttachTypeWords[ nType ], nType );
	m_pAttachTypeCombo->setMaxVisibleItems( 40 );
	m_pAttachTypeCombo->setMinimumWidth( 100 );
	pDetails->addWidget( m_pAttachTypeCombo );
	m_pAttachmentNameCombo = new CQSmartComboBox( m_pDetails );
	m_pAttachmentNameCombo->setObjectName( "AttachmentName" );
	m_pAttachmentNameCombo->setEditable( true );
	m_pAttachmentNameCombo->setInsertPolicy( QComboBox::NoInsert );
	pDetails->addWidget( m_pAttachmentNameCombo, 1 );
	pLayout->addWidget( m_pDetails );
	m_pDetails->hide();
	connect( m_pEntityCombo, QOverload<int>::of( &QComboBox::activated ), this, &CQControlPointEditor::OnParticleAttachEntityChanged );
	connect( m_pAttachTypeCombo, QOverload<int>::of( &QComboBox::activated ), this, &CQControlPointEditor::OnParticleAttachModeChanged );
	connect( m_pAttachmentNameCombo, QOverload<int>::of( &QComboBox::activated ), this, &CQControlPointEditor::OnParticleAttachNameChanged );

	// The definition sets this point itself: nothing here would reach it.
	if ( m_bDriven )
	{
		m_pExpandButton->setEnabled( false );
		m_pValue->setEnabled( false );
		setToolTip( "The system sets this control point itself" );
	}
	Refresh();
}

int CQControlPointEditor::GetEditMode() const
{
	return m_pSession->GetControlPointEditMode( m_Key );
}

void CQControlPointEditor::SetHighlighted( bool bHighlighted )
{
	m_bHighlighted = bHighlighted;
	ApplyRowHighlight( this, bHighlighted );
}

void CQControlPointEditor::UpdateIcon()
{
	const int nMode = GetEditMode();
	if ( nMode == CONTROL_POINT_EDIT_COLOR )
	{
		// The colour itself: red, green and blue are the position's x, y and z.
		const Vector vColor = m_pSession->GetControlPointState()->GetPosition( m_Key );
		auto channel = []( float flValue ) { return std::clamp( int( flValue ), 0, 255 ); };
		QPixmap pixmap( 32, 32 );
		pixmap.fill( QColor( channel( vColor.x ), channel( vColor.y ), channel( vColor.z ) ) );
		m_pIconButton->setIcon( QIcon( pixmap ) );
		return;
	}
	const char *pIcon = nMode == CONTROL_POINT_EDIT_TRANSLATE ? "game:tools/images/zol/cp_position.png"
					  : nMode == CONTROL_POINT_EDIT_ROTATE	  ? "game:tools/images/zol/cp_orientation.png"
															  : "game:tools/images/common/subtract_sm.png";
	m_pIconButton->setIcon( PreviewControlsIcon( pIcon ) );
}

void CQControlPointEditor::Refresh()
{
	const CZolControlPointState *pState = m_pSession->GetControlPointState();
	const ZolControlPointRecord_t *pRecord = pState->FindRecord( m_Key );
	SetHighlighted( m_pSession->GetSelectedControlPoint() == m_Key );
	if ( GetEditMode() == CONTROL_POINT_EDIT_ROTATE )
	{
		const QAngle angles = pState->GetAngles( m_Key );
		m_pValue->SetValue( Vector( angles.x, angles.y, angles.z ) );
	}
	else
		m_pValue->SetValue( pState->GetPosition( m_Key ) );
	UpdateIcon();
	{
		const QSignalBlocker blocker( m_pLockButton );
		m_pLockButton->setChecked( CZolPersistedControlPoints::Get().IsPersisted( m_Key ) );
	}
	const bool bDetails = pRecord && pRecord->m_bDetailsShown;
	m_pDetails->setVisible( bDetails && !m_bDriven );
	m_pExpandButton->setIcon( PreviewControlsIcon( bDetails ? "game:tools/images/common/dropdown_menu.png" : "game:tools/images/common/dropdown_menu_right.png" ) );
	{
		const QSignalBlocker entityBlocker( m_pEntityCombo );
		const QSignalBlocker typeBlocker( m_pAttachTypeCombo );
		m_pEntityCombo->setCurrentIndex( std::max( 0, m_pEntityCombo->findData( pState->GetEntity( m_Key ) ) ) );
		const int nType = pState->GetAttachType( m_Key );
		const int nIndex = m_pAttachTypeCombo->findData( nType );
		m_pAttachTypeCombo->setCurrentIndex( nIndex );
		if ( nIndex < 0 )
			m_pAttachTypeCombo->setCurrentText( "invalid" );
	}
	RefreshAttachmentList();
}

void CQControlPointEditor::RefreshAttachmentList()
{
	const CZolControlPointState *pState = m_pSession->GetControlPointState();
	const int nType = pState->GetAttachType( m_Key );
	const int nEntity = pState->GetEntity( m_Key );
	const QString stored = QString::fromUtf8( pState->GetAttachmentName( m_Key ) );
	const bool bModel = *m_pSession->GetEntityModel( nEntity ) != '\0';
	const QSignalBlocker blocker( m_pAttachmentNameCombo );
	m_pAttachmentNameCombo->clear();
	// Only a point attached to a point of a model that stands picks among its attachments.
	if ( ( nType == PATTACH_POINT || nType == PATTACH_POINT_FOLLOW ) && bModel )
	{
		CUtlVector<CUtlString> names;
		pState->GetAttachmentNames( nEntity, &names );
		for ( const CUtlString &name : names )
			m_pAttachmentNameCombo->addItem( QString::fromUtf8( name.Get() ) );
		m_pAttachmentNameCombo->setEnabled( true );
		m_pAttachmentNameCombo->setCurrentIndex( m_pAttachmentNameCombo->findText( stored, Qt::MatchFixedString ) );
	}
	else
		m_pAttachmentNameCombo->setEnabled( false );
	m_pAttachmentNameCombo->setEditText( stored );
}

void CQControlPointEditor::SelectIfNot()
{
	if ( !( m_pSession->GetSelectedControlPoint() == m_Key ) )
		m_pSession->SetSelectedControlPoint( m_Key );
}

void CQControlPointEditor::OnControlPointChanged()
{
	if ( m_bDriven )
		return;
	bool bOk = false;
	const Vector vValue = m_pValue->GetValue( &bOk );
	if ( !bOk )
		return;
	CZolControlPointState *pState = m_pSession->GetControlPointState();
	Vector vPosition = pState->GetPosition( m_Key );
	QAngle angles = pState->GetAngles( m_Key );
	if ( GetEditMode() == CONTROL_POINT_EDIT_ROTATE )
		angles = QAngle( vValue.x, vValue.y, vValue.z );
	else
		vPosition = vValue;
	if ( m_bDragging )
		pState->SetTransform( m_Key, vPosition, angles );
	else
		m_pSession->SetControlPointTransform( m_Key, vPosition, angles, QString( "Set Control Point #%1" ).arg( m_Key.m_nNumber ).toUtf8().constData() );
	SelectIfNot();
}

void CQControlPointEditor::OnLockToggled()
{
	m_pSession->SetControlPointPersisted( m_Key, m_pLockButton->isChecked() );
}

void CQControlPointEditor::OnSelectControlPointEditor()
{
	SelectIfNot();
	if ( GetEditMode() == CONTROL_POINT_EDIT_COLOR && !m_bDriven )
		PickColor();
}

void CQControlPointEditor::PickColor()
{
	const Vector vColor = m_pSession->GetControlPointState()->GetPosition( m_Key );
	auto channel = []( float flValue ) { return std::clamp( int( std::lround( flValue ) ), 0, 255 ); };
	Color chosen;
	if ( !GetPrompt()->PickColor( QString( "Point #%1" ).arg( m_Key.m_nNumber ).toUtf8().constData(), Color( channel( vColor.x ), channel( vColor.y ), channel( vColor.z ) ),
			 &chosen, window() ) )
		return;
	const QAngle angles = m_pSession->GetControlPointState()->GetAngles( m_Key );
	m_pSession->SetControlPointTransform( m_Key, Vector( float( chosen.r() ), float( chosen.g() ), float( chosen.b() ) ), angles,
		QString( "Set Control Point #%1 Colour" ).arg( m_Key.m_nNumber ).toUtf8().constData() );
}

void CQControlPointEditor::OnToggleControlPointEditor()
{
	if ( m_pSession->GetSelectedControlPoint() == m_Key )
	{
		m_pSession->SetSelectedControlPoint( ParticleParamID_t() );
		return;
	}
	OnSelectControlPointEditor();
}

void CQControlPointEditor::OnRightClickContextMenu()
{
	if ( m_Key.IsNamed() )
		return;
	QMenu menu( this );
	QAction *pConvert = menu.addAction( QString( "Convert Control Point #%1 to Variable... " ).arg( m_Key.m_nNumber ) );
	const ControlPointConversionFn_t &fnConvert = GetControlPointConversionHandler();
	pConvert->setEnabled( bool( fnConvert ) );
	if ( !fnConvert )
		pConvert->setToolTip( "The conversion tool isn't part of this editor yet" );
	connect( pConvert, &QAction::triggered, this, [ this, fnConvert ]() { fnConvert( m_pSession, m_Key.m_nNumber ); } );
	menu.exec( QCursor::pos() );
}

void CQControlPointEditor::OnEditModeChanged( int fieldType )
{
	SelectIfNot();
	m_pSession->SetControlPointEditMode( m_Key, fieldType );
	Refresh();
}

void CQControlPointEditor::OnToggleExpand()
{
	CZolControlPointState *pState = m_pSession->GetControlPointState();
	pState->SetDetailsShown( m_Key, !pState->AreDetailsShown( m_Key ) );
	ZolEvent_ControlPointValueChanged_t event;
	event.m_ControlPoint = m_Key;
	m_pSession->SendEvent( event );
}

void CQControlPointEditor::OnParticleAttachEntityChanged()
{
	const int nEntity = m_pEntityCombo->currentData().toInt();
	CZolControlPointState *pState = m_pSession->GetControlPointState();
	if ( pState->GetEntity( m_Key ) == nEntity )
		return;
	m_pSession->BeginControlPointEdit( m_Key, QString( "Attach Control Point #%1" ).arg( m_Key.m_nNumber ).toUtf8().constData() );
	pState->SetEntity( m_Key, nEntity );
}

void CQControlPointEditor::OnParticleAttachModeChanged()
{
	const int nType = m_pAttachTypeCombo->currentData().toInt();
	CZolControlPointState *pState = m_pSession->GetControlPointState();
	if ( pState->GetAttachType( m_Key ) == nType )
		return;
	m_pSession->BeginControlPointEdit( m_Key, QString( "Attach Control Point #%1" ).arg( m_Key.m_nNumber ).toUtf8().constData() );
	pState->SetAttachType( m_Key, nType );
}

void CQControlPointEditor::OnParticleAttachNameChanged()
{
	const QString name = m_pAttachmentNameCombo->currentText();
	CZolControlPointState *pState = m_pSession->GetControlPointState();
	if ( name.compare( QString::fromUtf8( pState->GetAttachmentName( m_Key ) ), Qt::CaseInsensitive ) == 0 )
		return;
	m_pSession->BeginControlPointEdit( m_Key, QString( "Attach Control Point #%1" ).arg( m_Key.m_nNumber ).toUtf8().constData() );
	pState->SetAttachmentName( m_Key, name.toUtf8().constData() );
}
