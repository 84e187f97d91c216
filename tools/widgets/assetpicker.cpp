#include "tools/widgets/assetpicker.h"

#include <QComboBox>
#include <QCompleter>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>

#include "core/host/iassetsystem.h"
#include "core/host/iprompt.h"

static const char *const NONE_TEXT = "(none)";

CQAssetPicker::CQAssetPicker( const char *pTypeFilter, const char *pLabel, const char *pName, QWidget *pParent )
	: QWidget( pParent ), m_TypeFilter( QString::fromUtf8( pTypeFilter ) )
{
	setObjectName( QString::fromUtf8( pName ) );
	auto *pLayout = new QHBoxLayout( this );
	pLayout->setContentsMargins( 0, 0, 0, 0 );
	m_pLabel = new QLabel( QString::fromUtf8( pLabel ) + ":", this );
	m_pCombo = new QComboBox( this );
	m_pCombo->setObjectName( "AssetPickerCombo" );
	m_pCombo->setEditable( true );
	m_pCombo->setInsertPolicy( QComboBox::NoInsert );
	m_pCombo->setMaxVisibleItems( 40 );
	m_pCombo->completer()->setCompletionMode( QCompleter::PopupCompletion );
	m_pCombo->completer()->setFilterMode( Qt::MatchContains );
	pLayout->addWidget( m_pLabel );
	pLayout->addWidget( m_pCombo, 1 );
	Refill();
	connect( m_pCombo, QOverload<int>::of( &QComboBox::activated ), this, &CQAssetPicker::OnChosen );
	connect( m_pCombo->lineEdit(), &QLineEdit::editingFinished, this, &CQAssetPicker::OnChosen );
}

void CQAssetPicker::showEvent( QShowEvent *pEvent )
{
	Refill();
	QWidget::showEvent( pEvent );
}

void CQAssetPicker::Refill()
{
	const QSignalBlocker blocker( m_pCombo );
	m_pCombo->clear();
	m_pCombo->addItem( NONE_TEXT );
	IAssetSystem *pAssetSystem = GetAssetSystem();
	const AssetTypeInfo_t *pType = pAssetSystem ? pAssetSystem->FindAssetTypeForExtension( m_TypeFilter.toUtf8().constData() ) : nullptr;
	if ( pType )
	{
		CUtlVector<IAsset *> assets;
		pAssetSystem->GetAssets( &assets, pType->m_nType );
		for ( IAsset *pAsset : assets )
			m_pCombo->addItem( QString::fromUtf8( pAsset->GetResourceName() ) );
	}
	m_pCombo->setEditText( m_Shown.isEmpty() ? NONE_TEXT : m_Shown );
}

void CQAssetPicker::SetAssetName( const QString &name )
{
	m_Shown = name;
	const QSignalBlocker blocker( m_pCombo );
	const int nIndex = name.isEmpty() ? 0 : m_pCombo->findText( name, Qt::MatchFixedString );
	if ( nIndex >= 0 )
		m_pCombo->setCurrentIndex( nIndex );
	m_pCombo->setEditText( name.isEmpty() ? NONE_TEXT : name );
}

void CQAssetPicker::OnChosen()
{
	const QString text = m_pCombo->currentText().trimmed();
	if ( text.isEmpty() || text == NONE_TEXT )
	{
		if ( !m_Shown.isEmpty() )
		{
			SetAssetName( QString() );
			emit AssetPicked( nullptr );
		}
		return;
	}
	IAssetSystem *pAssetSystem = GetAssetSystem();
	IAsset *pAsset = pAssetSystem ? pAssetSystem->FindAssetByResourceName( text.toUtf8().constData() ) : nullptr;
	const AssetTypeInfo_t *pType = pAsset ? pAssetSystem->FindAssetType( pAsset->GetType() ) : nullptr;
	if ( !pType || m_TypeFilter.compare( QString::fromUtf8( pType->m_pExtension ), Qt::CaseInsensitive ) != 0 )
	{
		// Not an asset of the type: the name that stood comes back.
		GetPrompt()->Beep();
		SetAssetName( m_Shown );
		return;
	}
	if ( text.compare( m_Shown, Qt::CaseInsensitive ) == 0 )
		return;
	SetAssetName( QString::fromUtf8( pAsset->GetResourceName() ) );
	emit AssetPicked( pAsset );
}
