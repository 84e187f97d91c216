#include "tools/zol/editor/inputs/particlevariablerefeditor.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>

#include <algorithm>

#include "particleslib/particlevariableref.h"

#include "tools/zol/editor/properties/zolkv3propertydomain.h"

CQParticleVariableRefEditor::CQParticleVariableRefEditor( QWidget *pParent )
	: CQParticleInputEditorBase( pParent ), m_pReference( std::make_unique<CParticleVariableRef>() )
{
	auto *pLayout = new QHBoxLayout( this );
	pLayout->setContentsMargins( 0, 0, 0, 0 );
	m_pCombo = new QComboBox( this );
	m_pCombo->setObjectName( QStringLiteral( "Variable" ) );
	m_pCombo->setEditable( true );
	m_pCombo->setInsertPolicy( QComboBox::NoInsert );
	pLayout->addWidget( m_pCombo );
	connect( m_pCombo, QOverload<int>::of( &QComboBox::activated ), this, &CQParticleVariableRefEditor::OnVariableChosen );
	connect( m_pCombo->lineEdit(), &QLineEdit::editingFinished, this, &CQParticleVariableRefEditor::OnNameTyped );
}

CQParticleVariableRefEditor::~CQParticleVariableRefEditor() = default;

void CQParticleVariableRefEditor::ReadFromAttribute()
{
	if ( !GetHost() )
		return;
	*m_pReference = CParticleVariableRef();
	if ( !IsMultiSelect() )
		LoadTargetInput( m_pReference.get() );
	const QSignalBlocker block( m_pCombo );
	m_pCombo->clear();
	// Every variable of the system, by name, with its type as the item's data.
	CUtlVector<ToolAttrGenericChoice_t> choices;
	if ( CZolKV3PropertyDomain *pDomain = GetZolDomain() )
		pDomain->GetCompatibleVariables( CPulseValueFullType(), &choices );
	std::vector<std::pair<QString, QString>> variables;
	for ( const ToolAttrGenericChoice_t &choice : choices )
		variables.emplace_back( QString::fromUtf8( choice.m_Value.Get() ), QString::fromUtf8( choice.m_Description.Get() ) );
	std::sort( variables.begin(), variables.end(), []( const auto &a, const auto &b ) { return a.first.compare( b.first, Qt::CaseInsensitive ) < 0; } );
	for ( const auto &[ name, type ] : variables )
	{
		m_pCombo->addItem( name, type );
		m_pCombo->setItemData( m_pCombo->count() - 1, type, Qt::ToolTipRole );
	}
	const QString current = QString::fromUtf8( m_pReference->m_variableName.Get() );
	const int nIndex = m_pCombo->findText( current );
	if ( nIndex >= 0 )
		m_pCombo->setCurrentIndex( nIndex );
	else
		m_pCombo->setEditText( current );
	m_pCombo->setEnabled( !IsReadOnly() && !IsMultiSelect() );
	if ( IsMultiSelect() )
		m_pCombo->setEditText( QStringLiteral( "(Multiple-select not supported)" ) );
}

void CQParticleVariableRefEditor::WriteToAttribute()
{
	SaveTargetInput( *m_pReference );
}

void CQParticleVariableRefEditor::DisconnectAndClear()
{
	CQParticleInputEditorBase::DisconnectAndClear();
	*m_pReference = CParticleVariableRef();
}

void CQParticleVariableRefEditor::Store( const QString &name, const QString &typeText )
{
	CParticleVariableRef reference;
	reference.m_variableName = name.toUtf8().constData();
	if ( !name.isEmpty() )
	{
		if ( !typeText.isEmpty() )
			reference.m_variableType.FromString( typeText.toUtf8().constData() );
		else
			reference.m_variableType = m_pReference->m_variableType;
	}
	if ( reference.m_variableName == m_pReference->m_variableName && reference.m_variableType == m_pReference->m_variableType )
		return;
	*m_pReference = reference;
	if ( !IsReadOnly() && !IsMultiSelect() )
		CommitToHost();
}

void CQParticleVariableRefEditor::OnVariableChosen( int nIndex )
{
	Store( m_pCombo->itemText( nIndex ), m_pCombo->itemData( nIndex ).toString() );
}

void CQParticleVariableRefEditor::OnNameTyped()
{
	const QString name = m_pCombo->currentText().trimmed();
	const int nIndex = m_pCombo->findText( name );
	Store( name, nIndex >= 0 ? m_pCombo->itemData( nIndex ).toString() : QString() );
}
