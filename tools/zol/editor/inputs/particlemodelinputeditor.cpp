#include "tools/zol/editor/inputs/particlemodelinputeditor.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>

#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "tools/widgets/smartlineedit.h"
#include "tools/zol/editor/inputs/floatinputeditlogic.h"
#include "tools/zol/editor/inputs/vecinputeditlogic.h"

CQParticleModelInputEditor::CQParticleModelInputEditor( QWidget *pParent ) : CQParticleInputEditorBase( pParent )
{
	setFixedHeight( 22 );
	auto *pRow = new QHBoxLayout( this );
	pRow->setContentsMargins( 0, 0, 0, 0 );
	pRow->setSpacing( 3 );
	m_pTypeButton = MakeTypeButton( this );
	m_pTypeButton->setObjectName( QStringLiteral( "TypeButton" ) );
	m_pMultiSelect = MakeLabel( QStringLiteral( "(Multiple-select not supported)" ), this );
	m_pNamedValueCombo = new QComboBox( this );
	m_pNamedValueCombo->setObjectName( QStringLiteral( "NamedValue" ) );
	m_pNamedValueCombo->setMinimumWidth( 120 );
	m_pCPLabel = MakeLabel( QStringLiteral( "CP#" ), this );
	m_pCPEdit = MakeNumberEdit( this, true, 40 );
	m_pCPEdit->setObjectName( QStringLiteral( "ControlPoint" ) );
	for ( QWidget *pWidget : std::initializer_list<QWidget *>{ m_pTypeButton, m_pMultiSelect, m_pNamedValueCombo, m_pCPLabel, m_pCPEdit } )
		pRow->addWidget( pWidget );
	pRow->addStretch( 1 );

	connect( m_pTypeButton, &QToolButton::clicked, this, &CQParticleModelInputEditor::OnTypeButtonClicked );
	connect( m_pNamedValueCombo, &QComboBox::textActivated, this, &CQParticleModelInputEditor::OnNamedValueEdited );
	// A typed name counts when the field is left or Return is pressed.
	m_pNamedValueCombo->setEditable( true );
	connect( m_pNamedValueCombo->lineEdit(), &QLineEdit::editingFinished, this, [ this ] { OnNamedValueEdited( m_pNamedValueCombo->currentText() ); } );
	connect( m_pNamedValueCombo, QOverload<int>::of( &QComboBox::highlighted ), this, &CQParticleModelInputEditor::OnNamedValueHighlighted );
	connect( m_pCPEdit, &QLineEdit::editingFinished, this, &CQParticleModelInputEditor::OnCPNumberEdited );
	LayOut();
}

void CQParticleModelInputEditor::LayOut()
{
	const bool bMulti = IsMultiSelect();
	const int nType = m_Input.m_nType;
	const bool bNamed = nType == PM_TYPE_NAMED_VALUE_MODEL || nType == PM_TYPE_NAMED_VALUE_EHANDLE;
	m_pMultiSelect->setVisible( bMulti );
	m_pTypeButton->setVisible( !bMulti );
	m_pNamedValueCombo->setVisible( !bMulti && bNamed );
	m_pCPLabel->setVisible( !bMulti && nType == PM_TYPE_CONTROL_POINT );
	m_pCPEdit->setVisible( !bMulti && nType == PM_TYPE_CONTROL_POINT );
	const InputTypeMenuRow_t *pRow = FindModelInputType( nType );
	m_pTypeButton->setIcon( ZolIcon( QString::fromUtf8( pRow ? pRow->m_pIcon : "" ) ) );
	m_pTypeButton->setToolTip( QString::fromUtf8( pRow ? pRow->m_pText : "" ) );
	m_pTypeButton->setEnabled( !IsReadOnly() );
	// A model resource, or an entity that carries one.
	if ( bNamed )
		FillVariableCombo( m_pNamedValueCombo, CPulseValueFullType( nType == PM_TYPE_NAMED_VALUE_MODEL ? PVAL_RESOURCE : PVAL_EHANDLE ),
						   m_Input.m_NamedValue.GetName() );
	ShowInteger( m_pCPEdit, m_Input.m_nControlPoint );
}

void CQParticleModelInputEditor::ReadFromAttribute()
{
	if ( !GetHost() )
		return;
	m_Input = CParticleModelInput();
	if ( !IsMultiSelect() )
		LoadTargetInput( &m_Input );
	LayOut();
}

void CQParticleModelInputEditor::WriteToAttribute()
{
	SaveTargetInput( m_Input );
}

void CQParticleModelInputEditor::DisconnectAndClear()
{
	CQParticleInputEditorBase::DisconnectAndClear();
	m_Input = CParticleModelInput();
}

void CQParticleModelInputEditor::Commit()
{
	if ( IsReadOnly() || IsMultiSelect() )
		return;
	CommitToHost();
}

QMenu *CQParticleModelInputEditor::CreateTypeMenu()
{
	return CQParticleInputEditorBase::CreateTypeMenu( MenuRows( GetModelInputTypeMenu( IsFieldOptional() ) ), m_Input.m_nType, [ this ]( int nType ) { OnSetType( nType ); } );
}

void CQParticleModelInputEditor::OnTypeButtonClicked()
{
	PopUpMenu( CreateTypeMenu() );
}

void CQParticleModelInputEditor::OnSetType( int nType )
{
	if ( nType == m_Input.m_nType )
		return;
	m_Input.m_nType = ParticleModelType_t( nType );
	Commit();
	LayOut();
}

void CQParticleModelInputEditor::OnNamedValueEdited( const QString &text )
{
	if ( TakeVariableName( text, &m_Input.m_NamedValue ) )
		Commit();
}

void CQParticleModelInputEditor::OnNamedValueHighlighted( int nIndex )
{
	ShowHighlightedVariable( m_pNamedValueCombo, nIndex );
}

void CQParticleModelInputEditor::OnCPNumberEdited()
{
	if ( TakeControlPointNumber( m_pCPEdit, &m_Input.m_nControlPoint ) )
		Commit();
}
