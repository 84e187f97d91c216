#include "tools/zol/editor/inputs/particletransforminputeditor.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>
#include <QVBoxLayout>

#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "tools/widgets/smartlineedit.h"
#include "tools/zol/editor/inputs/floatinputeditlogic.h"
#include "tools/zol/editor/inputs/vecinputeditlogic.h"

namespace
{
constexpr int ROW_HEIGHT = 22;
}

CQParticleTransformInputEditor::CQParticleTransformInputEditor( QWidget *pParent ) : CQParticleInputEditorBase( pParent )
{
	auto *pLayout = new QVBoxLayout( this );
	pLayout->setContentsMargins( 0, 0, 0, 0 );
	pLayout->setSpacing( 0 );
	auto *pFirst = new QWidget( this );
	pFirst->setFixedHeight( ROW_HEIGHT );
	auto *pRow = new QHBoxLayout( pFirst );
	pRow->setContentsMargins( 0, 0, 0, 0 );
	pRow->setSpacing( 3 );
	m_pTypeButton = MakeTypeButton( pFirst );
	m_pTypeButton->setObjectName( QStringLiteral( "TypeButton" ) );
	m_pMultiSelect = MakeLabel( QStringLiteral( "(Multiple-select not supported)" ), pFirst );
	m_pNamedValueCombo = new QComboBox( pFirst );
	m_pNamedValueCombo->setObjectName( QStringLiteral( "NamedValue" ) );
	m_pNamedValueCombo->setMinimumWidth( 120 );
	m_pFollowValue = new QCheckBox( QStringLiteral( "Follow Value" ), pFirst );
	m_pFollowValue->setObjectName( QStringLiteral( "FollowValue" ) );
	m_pCPLabel = MakeLabel( QStringLiteral( "CP#" ), pFirst );
	m_pCPEdit = MakeNumberEdit( pFirst, true, 40 );
	m_pCPEdit->setObjectName( QStringLiteral( "ControlPoint" ) );
	m_pCPMaxLabel = MakeLabel( QStringLiteral( "CPMax#" ), pFirst );
	m_pCPMaxEdit = MakeNumberEdit( pFirst, true, 40 );
	m_pCPMaxEdit->setObjectName( QStringLiteral( "ControlPointMax" ) );
	m_pGrowthLabel = MakeLabel( QStringLiteral( "Growth Time" ), pFirst );
	m_pGrowthEdit = MakeNumberEdit( pFirst, false, 50 );
	m_pGrowthEdit->setObjectName( QStringLiteral( "GrowthTime" ) );
	for ( QWidget *pWidget : std::initializer_list<QWidget *>{ m_pTypeButton, m_pMultiSelect, m_pNamedValueCombo, m_pFollowValue, m_pCPLabel, m_pCPEdit,
															  m_pCPMaxLabel, m_pCPMaxEdit, m_pGrowthLabel, m_pGrowthEdit } )
		pRow->addWidget( pWidget );
	pRow->addStretch( 1 );
	pLayout->addWidget( pFirst );
	m_pSecondRow = new QWidget( this );
	m_pSecondRow->setFixedHeight( ROW_HEIGHT );
	auto *pSecond = new QHBoxLayout( m_pSecondRow );
	pSecond->setContentsMargins( TYPE_BUTTON_SIZE + 3, 0, 0, 0 );
	m_pUseOrientation = new QCheckBox( QStringLiteral( "Use Orientation" ), m_pSecondRow );
	m_pUseOrientation->setObjectName( QStringLiteral( "UseOrientation" ) );
	m_pUseOrientation->setFixedHeight( ROW_HEIGHT );
	pSecond->addWidget( m_pUseOrientation );
	pSecond->addStretch( 1 );
	pLayout->addWidget( m_pSecondRow );

	connect( m_pTypeButton, &QToolButton::clicked, this, &CQParticleTransformInputEditor::OnTypeButtonClicked );
	connect( m_pNamedValueCombo, &QComboBox::textActivated, this, &CQParticleTransformInputEditor::OnNamedValueEdited );
	// A typed name counts when the field is left or Return is pressed.
	m_pNamedValueCombo->setEditable( true );
	connect( m_pNamedValueCombo->lineEdit(), &QLineEdit::editingFinished, this, [ this ] { OnNamedValueEdited( m_pNamedValueCombo->currentText() ); } );
	connect( m_pNamedValueCombo, QOverload<int>::of( &QComboBox::highlighted ), this, &CQParticleTransformInputEditor::OnNamedValueHighlighted );
	connect( m_pCPEdit, &QLineEdit::editingFinished, this, &CQParticleTransformInputEditor::OnCPNumberEdited );
	connect( m_pCPMaxEdit, &QLineEdit::editingFinished, this, &CQParticleTransformInputEditor::OnCPMaxNumberEdited );
	connect( m_pGrowthEdit, &QLineEdit::editingFinished, this, &CQParticleTransformInputEditor::OnEndGrowthTimeEdited );
	connect( m_pFollowValue, &QCheckBox::clicked, this, &CQParticleTransformInputEditor::OnFollowValueChanged );
	connect( m_pUseOrientation, &QCheckBox::clicked, this, &CQParticleTransformInputEditor::OnUseOrientationChanged );
	LayOut();
}

int CQParticleTransformInputEditor::GetPreferredHeight() const
{
	const bool bControlPoint = m_Input.m_nType == PT_TYPE_CONTROL_POINT || m_Input.m_nType == PT_TYPE_CONTROL_POINT_RANGE;
	return !IsMultiSelect() && bControlPoint ? 2 * ROW_HEIGHT : ROW_HEIGHT;
}

void CQParticleTransformInputEditor::LayOut()
{
	const bool bMulti = IsMultiSelect();
	const int nType = m_Input.m_nType;
	const bool bControlPoint = nType == PT_TYPE_CONTROL_POINT || nType == PT_TYPE_CONTROL_POINT_RANGE;
	const bool bRange = nType == PT_TYPE_CONTROL_POINT_RANGE;
	m_pMultiSelect->setVisible( bMulti );
	m_pTypeButton->setVisible( !bMulti );
	m_pNamedValueCombo->setVisible( !bMulti && nType == PT_TYPE_NAMED_VALUE );
	m_pFollowValue->setVisible( !bMulti && nType == PT_TYPE_NAMED_VALUE );
	for ( QWidget *pWidget : std::initializer_list<QWidget *>{ m_pCPLabel, m_pCPEdit } )
		pWidget->setVisible( !bMulti && bControlPoint );
	for ( QWidget *pWidget : std::initializer_list<QWidget *>{ m_pCPMaxLabel, m_pCPMaxEdit, m_pGrowthLabel, m_pGrowthEdit } )
		pWidget->setVisible( !bMulti && bRange );
	m_pSecondRow->setVisible( !bMulti && bControlPoint );

	const InputTypeMenuRow_t *pRow = FindTransformInputType( nType );
	m_pTypeButton->setIcon( ZolIcon( QString::fromUtf8( pRow ? pRow->m_pIcon : "" ) ) );
	m_pTypeButton->setToolTip( QString::fromUtf8( pRow ? pRow->m_pText : "" ) );
	m_pTypeButton->setEnabled( !IsReadOnly() );
	if ( nType == PT_TYPE_NAMED_VALUE )
		FillVariableCombo( m_pNamedValueCombo, CPulseValueFullType( PVAL_TRANSFORM ), m_Input.m_NamedValue.GetName() );
	{
		const QSignalBlocker blockFollow( m_pFollowValue );
		const QSignalBlocker blockOrientation( m_pUseOrientation );
		m_pFollowValue->setChecked( m_Input.m_bFollowNamedValue );
		m_pUseOrientation->setChecked( m_Input.m_bUseOrientation );
	}
	ShowInteger( m_pCPEdit, m_Input.m_nControlPoint );
	ShowInteger( m_pCPMaxEdit, m_Input.m_nControlPointRangeMax );
	ShowNumber( m_pGrowthEdit, m_Input.m_flEndCPGrowthTime );
	setFixedHeight( GetPreferredHeight() );
}

void CQParticleTransformInputEditor::ReadFromAttribute()
{
	if ( !GetHost() )
		return;
	m_Input = CParticleTransformInput();
	if ( !IsMultiSelect() )
		LoadTargetInput( &m_Input );
	LayOut();
}

void CQParticleTransformInputEditor::WriteToAttribute()
{
	SaveTargetInput( m_Input );
}

void CQParticleTransformInputEditor::DisconnectAndClear()
{
	CQParticleInputEditorBase::DisconnectAndClear();
	m_Input = CParticleTransformInput();
}

void CQParticleTransformInputEditor::Commit()
{
	if ( IsReadOnly() || IsMultiSelect() )
		return;
	CommitToHost();
}

QMenu *CQParticleTransformInputEditor::CreateTypeMenu()
{
	return CQParticleInputEditorBase::CreateTypeMenu( MenuRows( GetTransformInputTypeMenu( IsFieldOptional() ) ), m_Input.m_nType, [ this ]( int nType ) { OnSetType( nType ); } );
}

void CQParticleTransformInputEditor::OnTypeButtonClicked()
{
	PopUpMenu( CreateTypeMenu() );
}

void CQParticleTransformInputEditor::OnSetType( int nType )
{
	if ( nType == m_Input.m_nType )
		return;
	m_Input.m_nType = ParticleTransformType_t( nType );
	Commit();
	LayOut();
}

void CQParticleTransformInputEditor::OnNamedValueEdited( const QString &text )
{
	if ( TakeVariableName( text, &m_Input.m_NamedValue ) )
		Commit();
}

void CQParticleTransformInputEditor::OnNamedValueHighlighted( int nIndex )
{
	ShowHighlightedVariable( m_pNamedValueCombo, nIndex );
}

void CQParticleTransformInputEditor::OnCPNumberEdited()
{
	if ( TakeControlPointNumber( m_pCPEdit, &m_Input.m_nControlPoint ) )
		Commit();
}

void CQParticleTransformInputEditor::OnCPMaxNumberEdited()
{
	if ( TakeControlPointNumber( m_pCPMaxEdit, &m_Input.m_nControlPointRangeMax ) )
		Commit();
}

void CQParticleTransformInputEditor::OnEndGrowthTimeEdited()
{
	const float flTime = m_pGrowthEdit->text().trimmed().toFloat();
	ShowNumber( m_pGrowthEdit, flTime );
	if ( flTime == m_Input.m_flEndCPGrowthTime )
		return;
	m_Input.m_flEndCPGrowthTime = flTime;
	Commit();
}

void CQParticleTransformInputEditor::OnFollowValueChanged()
{
	if ( m_pFollowValue->isChecked() == m_Input.m_bFollowNamedValue )
		return;
	m_Input.m_bFollowNamedValue = m_pFollowValue->isChecked();
	Commit();
}

void CQParticleTransformInputEditor::OnUseOrientationChanged()
{
	if ( m_pUseOrientation->isChecked() == m_Input.m_bUseOrientation )
		return;
	m_Input.m_bUseOrientation = m_pUseOrientation->isChecked();
	Commit();
}
