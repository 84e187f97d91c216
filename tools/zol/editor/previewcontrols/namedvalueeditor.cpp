#include "tools/zol/editor/previewcontrols/namedvalueeditor.h"

#include <QHBoxLayout>
#include <QSignalBlocker>

#include "core/kv3/keyvalues3.h"
#include "tools/widgets/editboxvector3.h"
#include "tools/widgets/sliderlineeditfloat.h"
#include "tools/widgets/smartcombobox.h"
#include "tools/widgets/toolbutton.h"
#include "tools/zol/editor/previewcontrols/previewcontrolsupport.h"
#include "tools/zol/editor/zolsession.h"
#include "zoldoc_lib/zolcontrolpointstate.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolnamedvalue.h"
#include "zoldoc_lib/zolnamedvaluecontext.h"
#include "zoldoc_lib/zolrootnode.h"

namespace
{
// The soft range of a float variable's slider.
constexpr double FLOAT_SLIDER_MAXIMUM = 2000.0;
} // namespace

CQNamedValueEditor::CQNamedValueEditor( CZolSession *pSession, CZolNamedValueContext *pContext, const ZolKnownControlPoint_t &known, QWidget *pParent )
	: QGroupBox( pParent ), m_pSession( pSession ), m_Key( known.m_Key ), m_Type( known.m_NamedValueType )
{
	const QString name = QString::fromUtf8( m_Key.m_pName ? m_Key.m_pName : "" );
	setTitle( name );
	setObjectName( "NamedValue_" + name );
	auto *pRow = new QHBoxLayout( this );
	pRow->setContentsMargins( 4, 4, 4, 4 );
	m_pIconButton = new CQToolButton( this );
	m_pIconButton->setObjectName( "Select" );
	m_pIconButton->setAutoRaise( true );
	m_pIconButton->setToolTip( "Select the variable (click again to let go)" );
	connect( m_pIconButton, &QToolButton::clicked, this, &CQNamedValueEditor::OnToggleNamedValueEditor );
	pRow->addWidget( m_pIconButton );

	const char *pIcon = nullptr;
	switch ( m_Type.GetBaseType() )
	{
	case PVAL_FLOAT:
		pIcon = "game:tools/images/zol/float_literal.png";
		m_pFloat = new CQSliderLineEditFloat( this );
		m_pFloat->SetSoftRange( 0.0, FLOAT_SLIDER_MAXIMUM );
		connect( m_pFloat, &CQSliderLineEditFloat::ValueChanged, this, &CQNamedValueEditor::OnValueChanged );
		connect( m_pFloat, &CQSliderLineEditFloat::GestureStarted, this, &CQNamedValueEditor::BeginGesture );
		connect( m_pFloat, &CQSliderLineEditFloat::GestureEnded, this, [ this ]() { m_bInGesture = false; } );
		connect( m_pFloat, &CQSliderLineEditFloat::FocusIn, this, &CQNamedValueEditor::OnSelectNamedValueEditor );
		pRow->addWidget( m_pFloat, 1 );
		break;
	case PVAL_VEC3:
	case PVAL_TRANSFORM:
		pIcon = m_Type.GetBaseType() == PVAL_VEC3 ? "game:tools/images/zol/vec_cp_value.png" : "game:tools/images/zol/cp_position.png";
		m_pVector = new CQEditboxVector3( this );
		connect( m_pVector, &CQEditboxVector3::ValueChanged, this, &CQNamedValueEditor::OnValueChanged );
		connect( m_pVector, &CQEditboxVector3::DragStarted, this, &CQNamedValueEditor::BeginGesture );
		connect( m_pVector, &CQEditboxVector3::DragEnded, this, [ this ]() { m_bInGesture = false; } );
		connect( m_pVector, &CQEditboxVector3::FocusIn, this, &CQNamedValueEditor::OnSelectNamedValueEditor );
		pRow->addWidget( m_pVector, 1 );
		break;
	case PVAL_EHANDLE:
	case PVAL_PARTICLE_EHANDLE: pIcon = "game:tools/images/zol/float_named_value.png"; break;
	default: break;
	}
	if ( pIcon )
		m_pIconButton->setIcon( PreviewControlsIcon( pIcon ) );
	else
		m_pIconButton->hide();
	if ( !m_pFloat && !m_pVector )
		pRow->addStretch( 1 );

	// The binding, picked from the system's domain of values.
	m_pBinding = new CQSmartComboBox( this );
	m_pBinding->setObjectName( "Binding" );
	CUtlVector<ToolAttrGenericChoice_t> choices;
	if ( pContext )
		pContext->GetDomainValues( m_Type, &choices );
	for ( const ToolAttrGenericChoice_t &choice : choices )
		m_pBinding->addItem( QString::fromUtf8( choice.m_FriendlyName.Get() ), QString::fromUtf8( choice.m_Value.Get() ) );
	const CZolRootNode *pRoot = pSession->GetDoc() ? pSession->GetDoc()->GetRoot() : nullptr;
	const bool bDomain = pRoot && pRoot->GetKV3() && pRoot->GetKV3()->GetMemberBool( "m_bEnableNamedValues", false ) && *pRoot->GetKV3()->GetMemberString( "m_NamedValueDomain", "" );
	m_pBinding->setVisible( bDomain );
	connect( m_pBinding, QOverload<int>::of( &QComboBox::activated ), this, &CQNamedValueEditor::OnBindingExpressionChanged );
	pRow->addWidget( m_pBinding );
	Refresh();
}

void CQNamedValueEditor::SetHighlighted( bool bHighlighted )
{
	m_bHighlighted = bHighlighted;
	ApplyRowHighlight( this, bHighlighted );
}

void CQNamedValueEditor::Refresh()
{
	SetHighlighted( m_pSession->GetSelectedControlPoint() == m_Key );
	KeyValues3 value;
	const bool bHas = m_pSession->GetControlPointState()->GetValue( m_Key, &value );
	if ( m_pFloat )
	{
		// Absent or of another type reads as 0.
		const QSignalBlocker blocker( m_pFloat );
		m_pFloat->SetValue( bHas && value.IsNumber() ? value.GetDouble() : 0.0 );
	}
	if ( m_pVector )
	{
		Vector vPosition;
		QAngle angles;
		if ( !bHas || !ZolNamedValue_ToTransform( m_Type, value, &vPosition, &angles ) )
			vPosition = Vector();
		const QSignalBlocker blocker( m_pVector );
		m_pVector->SetValue( vPosition );
	}
	const QSignalBlocker blocker( m_pBinding );
	const ZolControlPointRecord_t *pRecord = m_pSession->GetControlPointState()->FindRecord( m_Key );
	const QString binding = pRecord ? QString::fromUtf8( pRecord->m_AttachmentName.Get() ) : QString();
	m_pBinding->setCurrentIndex( m_pBinding->findData( binding, Qt::UserRole, Qt::MatchFixedString ) );
}

void CQNamedValueEditor::BeginGesture()
{
	m_bInGesture = true;
	m_pSession->BeginControlPointEdit( m_Key, ( "Set Variable '" + title() + "'" ).toUtf8().constData() );
}

void CQNamedValueEditor::OnValueChanged()
{
	CZolControlPointState *pState = m_pSession->GetControlPointState();
	KeyValues3 value;
	if ( m_pFloat )
		value.SetDouble( m_pFloat->GetValue() );
	else if ( m_pVector )
	{
		bool bOk = false;
		const Vector vPosition = m_pVector->GetValue( &bOk );
		if ( !bOk )
			return;
		// A transform keeps its stored angles.
		KeyValues3 stored;
		Vector vOld;
		QAngle angles;
		if ( pState->GetValue( m_Key, &stored ) )
			ZolNamedValue_ToTransform( m_Type, stored, &vOld, &angles );
		if ( !ZolNamedValue_FromTransform( m_Type, vPosition, angles, &value ) )
			return;
	}
	else
		return;
	if ( !m_bInGesture )
		m_pSession->BeginControlPointEdit( m_Key, ( "Set Variable '" + title() + "'" ).toUtf8().constData() );
	pState->SetValue( m_Key, value );
}

void CQNamedValueEditor::OnSelectNamedValueEditor()
{
	if ( !( m_pSession->GetSelectedControlPoint() == m_Key ) )
		m_pSession->SetSelectedControlPoint( m_Key );
}

void CQNamedValueEditor::OnToggleNamedValueEditor()
{
	m_pSession->SetSelectedControlPoint( m_pSession->GetSelectedControlPoint() == m_Key ? ParticleParamID_t() : m_Key );
}

void CQNamedValueEditor::OnBindingExpressionChanged()
{
	const QString binding = m_pBinding->currentData().toString();
	CZolControlPointState *pState = m_pSession->GetControlPointState();
	if ( binding.compare( QString::fromUtf8( pState->GetAttachmentName( m_Key ) ), Qt::CaseInsensitive ) == 0 )
		return;
	m_pSession->BeginControlPointEdit( m_Key, ( "Bind Variable '" + title() + "'" ).toUtf8().constData() );
	pState->SetAttachmentName( m_Key, binding.toUtf8().constData() );
}
