#include "tools/zol/editor/inputs/particleinputeditorbase.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QCursor>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>
#include <QToolTip>

#include "tools/toolutils2/toolattr/ibasetoolattr.h"
#include "tools/toolutils2/toolattr_propertydomain/ipropertyeditdomain.h"
#include "tools/widgets/smartlineedit.h"
#include "tools/zol/editor/inputs/floatinputeditlogic.h"
#include "tools/zol/editor/inputs/vecinputeditlogic.h"
#include "tools/zol/editor/properties/zolkv3propertydomain.h"
#include "particleslib/particlenamedvalueref.h"

CQParticleInputEditorBase::CQParticleInputEditorBase( QWidget *pParent ) : CQAttributeEditor_Base( pParent )
{
	// The property panel never scrolls sideways: in a column narrower than a page's rows the
	// editor gives up its right end, not the panel its other rows.
	setMinimumWidth( MIN_EDITOR_WIDTH );
}

CQParticleInputEditorBase::~CQParticleInputEditorBase()
{
	// Child fields finish their edits as they lose focus while they go; this editor is half
	// gone by then, so nothing of theirs may reach it.
	for ( QObject *pChild : findChildren<QObject *>() )
		pChild->disconnect( this );
}

CZolKV3PropertyDomain *CQParticleInputEditorBase::GetZolDomain() const
{
	if ( m_pInlineOwner )
		return m_pInlineOwner->GetZolDomain();
	return GetHost() ? dynamic_cast<CZolKV3PropertyDomain *>( GetHost()->GetDomain() ) : nullptr;
}

bool CQParticleInputEditorBase::IsFieldOptional() const
{
	if ( m_pInlineOwner || !GetHost() || !GetHost()->GetDomain() || GetTargets().IsEmpty() )
		return false;
	ZolPropertyTarget resolved;
	IBaseToolAttr *pAttr = GetHost()->GetDomain()->ResolveProperty( GetTarget( 0 ).m_Property, GetTarget( 0 ).m_Path, &resolved );
	const KeyValues3 *pMeta = pAttr ? pAttr->GetMetadata() : nullptr;
	return pMeta && pMeta->GetMemberBool( "MParticleInputOptional", false );
}

bool CQParticleInputEditorBase::ReadTargetKV3( KeyValues3 *pValue ) const
{
	if ( !GetHost() || GetTargetCount() != 1 )
		return false;
	bool bDiffer = false;
	return GetHost()->ReadCommonKV3( GetTargets(), pValue, &bDiffer );
}

void CQParticleInputEditorBase::WriteTargetKV3( const KeyValues3 &value )
{
	if ( !GetHost() || GetTargetCount() != 1 )
		return;
	GetHost()->WriteKV3( GetTargets(), value );
}

void CQParticleInputEditorBase::CommitToHost()
{
	IndicateEditorStateModified();
	UpdateAttributesFromEditor_AutomaticOneShotOrIncremental_IfModified();
}

QMenu *CQParticleInputEditorBase::CreateTypeMenu( const QVector<TypeMenuRow_t> &rows, int nCurrent, std::function<void( int )> fnChosen )
{
	auto *pMenu = new QMenu( this );
	for ( const TypeMenuRow_t &row : rows )
	{
		QAction *pAction = pMenu->addAction( ZolIcon( row.m_Icon ), row.m_Text );
		pAction->setData( row.m_nValue );
		pAction->setCheckable( true );
		pAction->setChecked( row.m_nValue == nCurrent );
		const int nValue = row.m_nValue;
		connect( pAction, &QAction::triggered, this, [ fnChosen, nValue ] { fnChosen( nValue ); } );
	}
	return pMenu;
}

QIcon CQParticleInputEditorBase::ZolIcon( const QString &file )
{
	return file.isEmpty() ? QIcon() : QIcon( QStringLiteral( "game:tools/images/zol/" ) + file );
}

QToolButton *CQParticleInputEditorBase::MakeTypeButton( QWidget *pParent )
{
	auto *pButton = new QToolButton( pParent );
	pButton->setFixedSize( TYPE_BUTTON_SIZE, TYPE_BUTTON_SIZE );
	pButton->setAutoRaise( true );
	pButton->setIconSize( QSize( 16, 16 ) );
	return pButton;
}

CQSmartLineEdit *CQParticleInputEditorBase::MakeNumberEdit( QWidget *pParent, bool bInteger, int nWidth )
{
	auto *pEdit = new CQSmartLineEdit( pParent );
	pEdit->SetNumberKind( bInteger ? CQSmartLineEdit::NUMBER_KIND_INTEGER : CQSmartLineEdit::NUMBER_KIND_FLOAT );
	if ( nWidth > 0 )
		pEdit->setFixedWidth( nWidth );
	else
		pEdit->setMinimumWidth( 40 );
	return pEdit;
}

QLabel *CQParticleInputEditorBase::MakeLabel( const QString &text, QWidget *pParent )
{
	return new QLabel( text, pParent );
}

void CQParticleInputEditorBase::ShowNumber( CQSmartLineEdit *pEdit, double flValue )
{
	const QSignalBlocker block( pEdit );
	pEdit->setText( QString::number( flValue, 'g', 6 ) );
	pEdit->setModified( false );
}

void CQParticleInputEditorBase::ShowInteger( CQSmartLineEdit *pEdit, int nValue )
{
	const QSignalBlocker block( pEdit );
	pEdit->setText( QString::number( nValue ) );
	pEdit->setModified( false );
}

void CQParticleInputEditorBase::FillVariableCombo( QComboBox *pCombo, const CPulseValueFullType &type, const char *pCurrent ) const
{
	const QSignalBlocker block( pCombo );
	pCombo->clear();
	// The box stays editable (its field is connected): a name may be typed, a variable of a
	// parent's, or one not declared yet.
	CUtlVector<ToolAttrGenericChoice_t> choices;
	if ( CZolKV3PropertyDomain *pDomain = GetZolDomain() )
		pDomain->GetCompatibleVariables( type, &choices );
	for ( const ToolAttrGenericChoice_t &choice : choices )
	{
		pCombo->addItem( QString::fromUtf8( choice.m_Value.Get() ) );
		pCombo->setItemData( pCombo->count() - 1, QString::fromUtf8( choice.m_Description.Get() ), Qt::ToolTipRole );
	}
	const QString current = QString::fromUtf8( pCurrent ? pCurrent : "" );
	const int nIndex = pCombo->findText( current );
	if ( nIndex >= 0 )
		pCombo->setCurrentIndex( nIndex );
	else
		pCombo->setEditText( current );
}

void CQParticleInputEditorBase::ShowHighlightedVariable( QComboBox *pCombo, int nIndex )
{
	const QString record = pCombo->itemData( nIndex, Qt::ToolTipRole ).toString();
	if ( record.isEmpty() )
		return;
	QWidget *pView = pCombo->view();
	QToolTip::showText( QCursor::pos() + QPoint( 16, 0 ), QStringLiteral( "%1\n%2" ).arg( pCombo->itemText( nIndex ), record ), pView );
}

bool CQParticleInputEditorBase::IsBeingEdited() const
{
	for ( const QLineEdit *pEdit : findChildren<QLineEdit *>() )
	{
		if ( pEdit->hasFocus() && pEdit->isModified() )
			return true;
	}
	return false;
}

QVector<CQParticleInputEditorBase::TypeMenuRow_t> CQParticleInputEditorBase::MenuRows( const std::vector<InputTypeMenuRow_t> &rows )
{
	QVector<TypeMenuRow_t> out;
	for ( const InputTypeMenuRow_t &row : rows )
		out.append( { row.m_nValue, QString::fromUtf8( row.m_pText ), QString::fromUtf8( row.m_pIcon ) } );
	return out;
}

void CQParticleInputEditorBase::PopUpMenu( QMenu *pMenu )
{
	pMenu->exec( QCursor::pos() );
	pMenu->deleteLater();
}

bool CQParticleInputEditorBase::TakeVariableName( const QString &text, CParticleNamedValueRef *pRef )
{
	const QByteArray name = text.trimmed().toUtf8();
	if ( name == QByteArray( pRef->GetName() ) )
		return false;
	pRef->SetName( name.constData() );
	return true;
}

bool CQParticleInputEditorBase::TakeControlPointNumber( CQSmartLineEdit *pEdit, int32_t *pControlPoint )
{
	const int nControlPoint = ParseControlPointNumber( pEdit->text().toUtf8().constData() );
	ShowInteger( pEdit, nControlPoint );
	if ( nControlPoint == *pControlPoint )
		return false;
	*pControlPoint = nControlPoint;
	return true;
}
