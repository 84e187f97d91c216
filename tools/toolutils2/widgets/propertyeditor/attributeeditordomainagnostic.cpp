#include "tools/toolutils2/widgets/propertyeditor/attributeeditordomainagnostic.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QRegularExpression>
#include <QSignalBlocker>
#include <QToolTip>

#include <algorithm>
#include <cmath>

#include "core/host/iprompt.h"
#include "core/kv3/keyvalues3.h"
#include "tools/toolutils2/toolattr/toolattrtypes.h"
#include "tools/toolutils2/toolattr_propertydomain/ipropertyeditdomain.h"
#include "tools/toolutils2/widgets/propertyeditor/kv3valuepath.h"
#include "tools/widgets/sliderlineeditfloat.h"
#include "tools/widgets/smartlineedit.h"

namespace
{
constexpr const char *MIXED_PLACEHOLDER = "(several values)";

int ComponentCount( int nType )
{
	switch ( nType )
	{
	case ZOL_PROPERTY_TYPE_VECTOR2: return 2;
	case ZOL_PROPERTY_TYPE_VECTOR3:
	case ZOL_PROPERTY_TYPE_ANGLE:
	case ZOL_PROPERTY_TYPE_COLOR: return 3;
	case ZOL_PROPERTY_TYPE_VECTOR4:
	case ZOL_PROPERTY_TYPE_COLOR_ALPHA: return 4;
	default: return 0;
	}
}

bool IsColorType( int nType )
{
	return nType == ZOL_PROPERTY_TYPE_COLOR || nType == ZOL_PROPERTY_TYPE_COLOR_ALPHA;
}

QStringList SplitComponents( const QString &text )
{
	return text.split( QRegularExpression( QStringLiteral( "[\\s,]+" ) ), Qt::SkipEmptyParts );
}

bool IsNumber( const QString &text, bool bInteger )
{
	bool bOk = false;
	if ( bInteger )
		text.trimmed().toLongLong( &bOk );
	else
		bOk = std::isfinite( text.trimmed().toDouble( &bOk ) ) && bOk;
	return bOk;
}

QString TextOfKV3Scalar( const KeyValues3 &value )
{
	switch ( value.GetType() )
	{
	case KV3_TYPE_BOOL: return value.GetBool() ? QStringLiteral( "1" ) : QStringLiteral( "0" );
	case KV3_TYPE_INT: return QString::number( qint64( value.GetInt64() ) );
	case KV3_TYPE_UINT: return QString::number( quint64( value.GetUInt64() ) );
	case KV3_TYPE_DOUBLE: return QString::number( value.GetDouble(), 'g', 9 );
	case KV3_TYPE_STRING: return QString::fromUtf8( value.GetString() );
	default: return KV3ToOneLineText( value );
	}
}
} // namespace

CQAttributeEditor_DomainAgnostic::CQAttributeEditor_DomainAgnostic( QWidget *pParent ) : CQAttributeEditor_Base( pParent )
{
	m_pLayout = new QHBoxLayout( this );
	m_pLayout->setContentsMargins( 0, 0, 0, 0 );
	m_pLayout->setSpacing( 2 );
	SetPoolKey( QStringLiteral( "DomainAgnostic" ) );
}

bool CQAttributeEditor_DomainAgnostic::ReadKV3Part( KeyValues3 *pOut, bool *pDiffer ) const
{
	*pDiffer = false;
	pOut->SetToNull();
	if ( !m_pHost || m_Targets.IsEmpty() )
		return false;
	bool bFound = false;
	for ( int i = 0; i < m_Targets.Count(); ++i )
	{
		CUtlVector<PropEdSpecificAttr_t> one;
		one.AddToTail( m_Targets[ i ] );
		KeyValues3 whole;
		bool bUnused = false;
		if ( !m_pHost->ReadCommonKV3( one, &whole, &bUnused ) )
			return bFound;
		const KeyValues3 *pPart = FindKV3Part( &whole, m_KV3Path );
		if ( !pPart )
		{
			*pDiffer = i > 0 || *pDiffer;
			continue;
		}
		if ( !bFound )
		{
			pOut->CopyFrom( *pPart );
			bFound = true;
		}
		else if ( !pOut->IsEqual( *pPart ) )
		{
			*pDiffer = true;
		}
	}
	return bFound;
}

CQAttributeEditor_DomainAgnostic::Kind_t CQAttributeEditor_DomainAgnostic::ChooseKind( const PropertyEditorInit_t &init, int *pComponents ) const
{
	*pComponents = 0;
	IPropertyEditDomain *pDomain = init.m_pHost ? init.m_pHost->GetDomain() : nullptr;
	if ( !pDomain || init.m_Targets.IsEmpty() )
		return KIND_NONE;
	const PropEdSpecificAttr_t &first = init.m_Targets[ 0 ];
	if ( !init.m_KV3Path.isEmpty() )
	{
		KeyValues3 part;
		bool bDiffer = false;
		if ( !ReadKV3Part( &part, &bDiffer ) )
			return KIND_NONE;
		switch ( part.GetType() )
		{
		case KV3_TYPE_BOOL: return KIND_CHECK_BOX;
		case KV3_TYPE_INT:
		case KV3_TYPE_UINT:
		case KV3_TYPE_DOUBLE:
		case KV3_TYPE_STRING: return KIND_LINE_EDIT;
		case KV3_TYPE_TABLE:
		case KV3_TYPE_ARRAY: return KIND_NONE;
		default: return KIND_KV3_TEXT;
		}
	}
	const ZolPropertyRowInfo &info = init.m_Info;
	if ( info.m_nType == ZOL_PROPERTY_TYPE_BOOL )
		return KIND_CHECK_BOX;
	if ( info.m_nHint == TOOLATTR_EDIT_HINT_CHOICES || info.m_nHint == TOOLATTR_EDIT_HINT_SUGGESTIONS )
		return KIND_COMBO;
	if ( ( *pComponents = ComponentCount( info.m_nType ) ) != 0 )
		return KIND_VECTOR;
	switch ( info.m_nType )
	{
	case ZOL_PROPERTY_TYPE_INT:
	case ZOL_PROPERTY_TYPE_FLOAT:
	{
		bool bRange = info.m_nHint == TOOLATTR_EDIT_HINT_RANGE &&
			( info.m_bRangeIsFloat ? info.m_flRangeMin < info.m_flRangeMax : info.m_nRangeMin < info.m_nRangeMax );
		return bRange ? KIND_SLIDER : KIND_LINE_EDIT;
	}
	case ZOL_PROPERTY_TYPE_STRING:
	case ZOL_PROPERTY_TYPE_FLAGS: return KIND_LINE_EDIT;
	case ZOL_PROPERTY_TYPE_TABLE:
	case ZOL_PROPERTY_TYPE_MAP: return KIND_NONE;
	default: break;
	}
	if ( pDomain->IsKV3Property( first.m_Property, first.m_Path ) )
		return KIND_KV3_TEXT;
	CUtlString text;
	pDomain->GetValueText( first.m_Property, first.m_Path, &text );
	return text == "<UNKNOWN>" ? KIND_NONE : KIND_LINE_EDIT;
}

void CQAttributeEditor_DomainAgnostic::ClearWidgets()
{
	while ( QLayoutItem *pItem = m_pLayout->takeAt( 0 ) )
	{
		if ( QWidget *pWidget = pItem->widget() )
			delete pWidget;
		delete pItem;
	}
	m_pCheckBox = nullptr;
	m_pLineEdit = nullptr;
	m_pSlider = nullptr;
	m_pCombo = nullptr;
	m_pSwatch = nullptr;
	m_Components.clear();
}

void CQAttributeEditor_DomainAgnostic::BuildWidgets( Kind_t eKind, int nComponents )
{
	if ( eKind == m_eKind && nComponents == m_Components.size() && ( m_pSwatch != nullptr ) == IsColorType( m_Info.m_nType ) && eKind != KIND_NONE )
		return;
	ClearWidgets();
	m_eKind = eKind;
	switch ( eKind )
	{
	case KIND_NONE: break;
	case KIND_CHECK_BOX:
		m_pCheckBox = new QCheckBox( this );
		m_pLayout->addWidget( m_pCheckBox );
		m_pLayout->addStretch( 1 );
		break;
	case KIND_LINE_EDIT:
	case KIND_KV3_TEXT:
		m_pLineEdit = new CQSmartLineEdit( this );
		m_pLayout->addWidget( m_pLineEdit );
		break;
	case KIND_SLIDER:
		m_pSlider = new CQSliderLineEditFloat( this );
		m_pLayout->addWidget( m_pSlider );
		break;
	case KIND_COMBO:
		m_pCombo = new QComboBox( this );
		m_pCombo->setSizeAdjustPolicy( QComboBox::AdjustToMinimumContentsLengthWithIcon );
		m_pCombo->setMinimumContentsLength( 8 );
		m_pLayout->addWidget( m_pCombo, 1 );
		break;
	case KIND_VECTOR:
		if ( IsColorType( m_Info.m_nType ) )
		{
			m_pSwatch = new QFrame( this );
			m_pSwatch->setFrameShape( QFrame::Box );
			m_pSwatch->setFixedSize( 18, 16 );
			m_pSwatch->setAutoFillBackground( true );
			m_pLayout->addWidget( m_pSwatch );
		}
		for ( int i = 0; i < nComponents; ++i )
		{
			CQSmartLineEdit *pEdit = new CQSmartLineEdit( this );
			pEdit->setMinimumWidth( 30 );
			pEdit->SetWhitespaceWarning( false );
			m_Components.append( pEdit );
			m_pLayout->addWidget( pEdit, 1 );
		}
		break;
	}
}

bool CQAttributeEditor_DomainAgnostic::IsNumericRow() const
{
	if ( !m_KV3Path.isEmpty() )
	{
		KeyValues3 part;
		bool bDiffer = false;
		return ReadKV3Part( &part, &bDiffer ) && part.IsNumber();
	}
	return m_Info.m_nType == ZOL_PROPERTY_TYPE_INT || m_Info.m_nType == ZOL_PROPERTY_TYPE_FLOAT || ComponentCount( m_Info.m_nType ) != 0;
}

bool CQAttributeEditor_DomainAgnostic::IsIntegerRow() const
{
	if ( !m_KV3Path.isEmpty() )
		return false;
	return m_Info.m_nType == ZOL_PROPERTY_TYPE_INT || IsColorType( m_Info.m_nType );
}

void CQAttributeEditor_DomainAgnostic::Initialize( const PropertyEditorInit_t &init )
{
	if ( m_bInitialized )
		DisconnectAndClear();
	// The kind is chosen with the new targets in place; the widgets follow it, and the
	// base connects them last.
	m_KV3Path = init.m_KV3Path;
	m_pHost = init.m_pHost;
	m_Targets = init.m_Targets;
	m_Info = init.m_Info;
	int nComponents = 0;
	Kind_t eKind = ChooseKind( init, &nComponents );
	BuildWidgets( eKind, nComponents );

	// The row's limits and kinds.
	bool bReadOnly = m_Info.m_bReadOnly;
	if ( m_pLineEdit )
	{
		m_pLineEdit->ClearLimits();
		m_pLineEdit->setReadOnly( bReadOnly );
		m_pLineEdit->SetNumberKind( eKind == KIND_KV3_TEXT || !IsNumericRow() ? CQSmartLineEdit::NUMBER_KIND_TEXT
									: IsIntegerRow()                     ? CQSmartLineEdit::NUMBER_KIND_INTEGER
																		 : CQSmartLineEdit::NUMBER_KIND_FLOAT );
		m_pLineEdit->SetWhitespaceWarning( m_pLineEdit->GetNumberKind() == CQSmartLineEdit::NUMBER_KIND_TEXT && eKind != KIND_KV3_TEXT );
	}
	if ( m_pSlider )
	{
		bool bInteger = m_Info.m_nType == ZOL_PROPERTY_TYPE_INT;
		double flMin = m_Info.m_bRangeIsFloat ? m_Info.m_flRangeMin : m_Info.m_nRangeMin;
		double flMax = m_Info.m_bRangeIsFloat ? m_Info.m_flRangeMax : m_Info.m_nRangeMax;
		m_pSlider->SetIntegral( bInteger );
		m_pSlider->SetSoftRange( flMin, flMax );
		m_pSlider->SetHardLimits( false, 0.0, false, 0.0 );
		m_pSlider->SetReadOnly( bReadOnly );
	}
	if ( m_pCheckBox )
		m_pCheckBox->setEnabled( !bReadOnly );
	if ( m_pCombo )
	{
		const QSignalBlocker blocker( m_pCombo );
		m_pCombo->clear();
		m_pCombo->setEditable( m_Info.m_nHint == TOOLATTR_EDIT_HINT_SUGGESTIONS );
		m_pCombo->setEnabled( !bReadOnly );
		CUtlVector<ToolAttrGenericChoice_t> choices;
		if ( IPropertyEditDomain *pDomain = m_pHost ? m_pHost->GetDomain() : nullptr; pDomain && !m_Targets.IsEmpty() )
		{
			ZolPropertyTarget value;
			pDomain->ResolveProperty( m_Targets[ 0 ].m_Property, m_Targets[ 0 ].m_Path, &value );
			pDomain->GetValueChoices( value, &choices );
		}
		for ( const ToolAttrGenericChoice_t &choice : choices )
		{
			QString label = QString::fromUtf8( choice.m_FriendlyName.IsEmpty() ? choice.m_Value.Get() : choice.m_FriendlyName.Get() );
			m_pCombo->addItem( label, QString::fromUtf8( choice.m_Value.Get() ) );
			if ( !choice.m_Description.IsEmpty() )
				m_pCombo->setItemData( m_pCombo->count() - 1, QString::fromUtf8( choice.m_Description.Get() ), Qt::ToolTipRole );
		}
	}
	for ( CQSmartLineEdit *pEdit : m_Components )
	{
		pEdit->ClearLimits();
		pEdit->setReadOnly( bReadOnly );
		pEdit->SetNumberKind( IsColorType( m_Info.m_nType ) ? CQSmartLineEdit::NUMBER_KIND_INTEGER : CQSmartLineEdit::NUMBER_KIND_FLOAT );
		if ( IsColorType( m_Info.m_nType ) )
		{
			pEdit->SetMinimum( 0 );
			pEdit->SetMaximum( 255 );
		}
	}
	CQAttributeEditor_Base::Initialize( init );
}

void CQAttributeEditor_DomainAgnostic::ConnectSignals()
{
	if ( m_pCheckBox )
		Track( connect( m_pCheckBox, &QCheckBox::clicked, this, &CQAttributeEditor_DomainAgnostic::OnCheckBoxClicked ) );
	if ( m_pLineEdit )
	{
		Track( connect( m_pLineEdit, &QLineEdit::editingFinished, this, &CQAttributeEditor_DomainAgnostic::OnLineEditFinished ) );
		Track( connect( m_pLineEdit, &CQSmartLineEdit::DragStarted, this, &CQAttributeEditor_DomainAgnostic::OnLineEditDragStarted ) );
		Track( connect( m_pLineEdit, &CQSmartLineEdit::DragStepped, this, &CQAttributeEditor_DomainAgnostic::OnLineEditDragStepped ) );
		Track( connect( m_pLineEdit, &CQSmartLineEdit::DragEnded, this, &CQAttributeEditor_DomainAgnostic::OnLineEditDragEnded ) );
		Track( connect( m_pLineEdit, &CQSmartLineEdit::EditCancelled, this, &CQAttributeEditor_DomainAgnostic::ReadFromAttribute ) );
	}
	if ( m_pSlider )
	{
		Track( connect( m_pSlider, &CQSliderLineEditFloat::GestureStarted, this, &CQAttributeEditor_Base::InitIncrementalOperation ) );
		Track( connect( m_pSlider, &CQSliderLineEditFloat::ValueChanged, this, &CQAttributeEditor_DomainAgnostic::OnSliderValueChanged ) );
		Track( connect( m_pSlider, &CQSliderLineEditFloat::GestureEnded, this, &CQAttributeEditor_Base::TermIncrementalOperation ) );
	}
	if ( m_pCombo )
	{
		Track( connect( m_pCombo, QOverload<int>::of( &QComboBox::activated ), this, &CQAttributeEditor_DomainAgnostic::OnComboActivated ) );
		if ( m_pCombo->lineEdit() )
			Track( connect( m_pCombo->lineEdit(), &QLineEdit::editingFinished, this, &CQAttributeEditor_DomainAgnostic::OnComboTextFinished ) );
	}
	for ( CQSmartLineEdit *pEdit : m_Components )
	{
		Track( connect( pEdit, &QLineEdit::editingFinished, this, &CQAttributeEditor_DomainAgnostic::OnComponentFinished ) );
		Track( connect( pEdit, &CQSmartLineEdit::DragStarted, this, &CQAttributeEditor_Base::InitIncrementalOperation ) );
		Track( connect( pEdit, &CQSmartLineEdit::DragStepped, this, &CQAttributeEditor_DomainAgnostic::OnComponentFinished ) );
		Track( connect( pEdit, &CQSmartLineEdit::DragEnded, this, &CQAttributeEditor_Base::TermIncrementalOperation ) );
		Track( connect( pEdit, &CQSmartLineEdit::EditCancelled, this, &CQAttributeEditor_DomainAgnostic::ReadFromAttribute ) );
	}
}

void CQAttributeEditor_DomainAgnostic::DisconnectAndClear()
{
	CQAttributeEditor_Base::DisconnectAndClear();
	m_KV3Path.clear();
	m_PendingText.clear();
	m_ShownText.clear();
	m_bDiffer = false;
}

void CQAttributeEditor_DomainAgnostic::ReadFromAttribute()
{
	if ( !m_pHost || m_Targets.IsEmpty() )
		return;
	QString text;
	bool bDiffer = false;
	if ( !m_KV3Path.isEmpty() )
	{
		KeyValues3 part;
		ReadKV3Part( &part, &bDiffer );
		text = TextOfKV3Scalar( part );
	}
	else if ( m_eKind == KIND_KV3_TEXT )
	{
		KeyValues3 value;
		m_pHost->ReadCommonKV3( m_Targets, &value, &bDiffer );
		text = KV3ToOneLineText( value );
	}
	else
	{
		CUtlString value;
		m_pHost->ReadCommonValueText( m_Targets, m_Info, &value, false, &bDiffer );
		text = QString::fromUtf8( value.Get() );
	}
	m_ShownText = text;
	m_bDiffer = bDiffer;

	switch ( m_eKind )
	{
	case KIND_NONE: break;
	case KIND_CHECK_BOX:
	{
		const QSignalBlocker blocker( m_pCheckBox );
		m_pCheckBox->setTristate( bDiffer );
		m_pCheckBox->setCheckState( bDiffer ? Qt::PartiallyChecked : ( text == "1" || text.compare( "true", Qt::CaseInsensitive ) == 0 ) ? Qt::Checked : Qt::Unchecked );
		break;
	}
	case KIND_LINE_EDIT:
	case KIND_KV3_TEXT:
	{
		const QSignalBlocker blocker( m_pLineEdit );
		m_pLineEdit->setPlaceholderText( bDiffer ? MIXED_PLACEHOLDER : "" );
		m_pLineEdit->setText( bDiffer ? QString() : text );
		m_pLineEdit->setCursorPosition( 0 );
		m_pLineEdit->setModified( false );
		break;
	}
	case KIND_SLIDER:
	{
		const QSignalBlocker blocker( m_pSlider );
		if ( bDiffer )
			m_pSlider->SetMixed( true );
		else
			m_pSlider->SetValue( text.toDouble() );
		break;
	}
	case KIND_COMBO:
	{
		const QSignalBlocker blocker( m_pCombo );
		int nIndex = m_pCombo->findData( text );
		// A value the choices don't name stays as it is, shown by itself.
		if ( nIndex < 0 && !bDiffer && !text.isEmpty() )
		{
			m_pCombo->addItem( text, text );
			nIndex = m_pCombo->count() - 1;
		}
		m_pCombo->setCurrentIndex( bDiffer ? -1 : nIndex );
		if ( m_pCombo->isEditable() )
			m_pCombo->setEditText( bDiffer ? QString() : nIndex >= 0 ? m_pCombo->itemText( nIndex ) : text );
		break;
	}
	case KIND_VECTOR:
	{
		// Each component shows when all targets agree on it.
		QVector<QStringList> all;
		for ( const PropEdSpecificAttr_t &target : m_Targets )
		{
			CUtlVector<PropEdSpecificAttr_t> one;
			one.AddToTail( target );
			CUtlString value;
			bool bUnused = false;
			m_pHost->ReadCommonValueText( one, m_Info, &value, false, &bUnused );
			all.append( SplitComponents( QString::fromUtf8( value.Get() ) ) );
		}
		for ( int i = 0; i < m_Components.size(); ++i )
		{
			QString component = all[ 0 ].value( i );
			bool bSame = true;
			for ( const QStringList &other : all )
				bSame = bSame && other.value( i ) == component;
			const QSignalBlocker blocker( m_Components[ i ] );
			m_Components[ i ]->setPlaceholderText( bSame ? "" : "-" );
			m_Components[ i ]->setText( bSame ? component : QString() );
			m_Components[ i ]->setCursorPosition( 0 );
			m_Components[ i ]->setModified( false );
		}
		if ( m_pSwatch )
		{
			QColor color( all[ 0 ].value( 0 ).toInt(), all[ 0 ].value( 1 ).toInt(), all[ 0 ].value( 2 ).toInt() );
			QPalette palette = m_pSwatch->palette();
			palette.setColor( QPalette::Window, bDiffer ? palette.color( QPalette::Mid ) : color );
			m_pSwatch->setPalette( palette );
		}
		break;
	}
	}
}

QString CQAttributeEditor_DomainAgnostic::GetValueText() const
{
	if ( m_pLineEdit )
		return m_pLineEdit->text();
	if ( m_pCheckBox )
		return m_pCheckBox->isChecked() ? QStringLiteral( "1" ) : QStringLiteral( "0" );
	if ( m_pSlider )
		return QString::number( m_pSlider->GetValue(), 'g', 9 );
	if ( m_pCombo )
		return m_pCombo->isEditable() ? m_pCombo->currentText() : m_pCombo->currentData().toString();
	QStringList components;
	for ( CQSmartLineEdit *pEdit : m_Components )
		components.append( pEdit->text() );
	return components.join( ' ' );
}

void CQAttributeEditor_DomainAgnostic::SetWidgetText( const QString &text )
{
	if ( m_pLineEdit )
		m_pLineEdit->setText( text );
}

bool CQAttributeEditor_DomainAgnostic::IsBeingEdited() const
{
	auto typing = []( const QLineEdit *pEdit ) { return pEdit && pEdit->hasFocus() && pEdit->isModified(); };
	if ( typing( m_pLineEdit ) || ( m_pSlider && typing( m_pSlider->GetLineEdit() ) ) || ( m_pCombo && typing( m_pCombo->lineEdit() ) ) )
		return true;
	for ( CQSmartLineEdit *pEdit : m_Components )
	{
		if ( typing( pEdit ) )
			return true;
	}
	return false;
}

void CQAttributeEditor_DomainAgnostic::Refuse( const QString &reason )
{
	QWidget *pAt = focusWidget() && isAncestorOf( focusWidget() ) ? focusWidget() : this;
	ReadFromAttribute();
	GetPrompt()->Beep();
	if ( isVisible() )
		QToolTip::showText( pAt->mapToGlobal( QPoint( 0, pAt->height() ) ), reason, pAt );
}

void CQAttributeEditor_DomainAgnostic::Commit( const QString &text )
{
	if ( IsReadOnly() )
	{
		ReadFromAttribute();
		return;
	}
	m_PendingText = text;
	IndicateEditorStateModified();
	UpdateAttributesFromEditor_AutomaticOneShotOrIncremental_IfModified();
}

void CQAttributeEditor_DomainAgnostic::OnLineEditFinished()
{
	QString text = m_pLineEdit->text();
	if ( m_bDiffer && text.isEmpty() )
		return;
	if ( text == m_ShownText && !m_bDiffer )
		return;
	if ( m_eKind == KIND_KV3_TEXT )
	{
		KeyValues3 value;
		CUtlString error;
		if ( !KV3FromText( text, &value, &error ) )
		{
			Refuse( QStringLiteral( "Not a KV3 value: %1" ).arg( QString::fromUtf8( error.Get() ) ) );
			return;
		}
	}
	else if ( IsNumericRow() && !IsNumber( text, m_pLineEdit->GetNumberKind() == CQSmartLineEdit::NUMBER_KIND_INTEGER ) )
	{
		Refuse( QStringLiteral( "\"%1\" is not a number" ).arg( text ) );
		return;
	}
	Commit( text.trimmed() == text || !IsNumericRow() ? text : text.trimmed() );
	// Written: the field's text is the value's again, and Undo means the document's.
	m_pLineEdit->setModified( false );
}

void CQAttributeEditor_DomainAgnostic::OnLineEditDragStarted()
{
	InitIncrementalOperation();
}

void CQAttributeEditor_DomainAgnostic::OnLineEditDragStepped()
{
	Commit( m_pLineEdit->text() );
}

void CQAttributeEditor_DomainAgnostic::OnLineEditDragEnded()
{
	TermIncrementalOperation();
}

void CQAttributeEditor_DomainAgnostic::OnComponentFinished()
{
	QStringList components;
	bool bChanged = false;
	bool bInteger = IsColorType( m_Info.m_nType );
	for ( CQSmartLineEdit *pEdit : m_Components )
	{
		QString text = pEdit->text().trimmed();
		if ( !text.isEmpty() && !IsNumber( text, bInteger ) )
		{
			Refuse( QStringLiteral( "\"%1\" is not a number" ).arg( text ) );
			return;
		}
		// A colour's components stop at their limits.
		if ( bInteger && !text.isEmpty() )
			text = QString::number( std::clamp( text.toLongLong(), 0LL, 255LL ) );
		components.append( text );
	}
	QStringList shown = SplitComponents( m_ShownText );
	for ( int i = 0; i < components.size(); ++i )
		bChanged = bChanged || ( !components[ i ].isEmpty() && ( m_bDiffer || components[ i ] != shown.value( i ) ) );
	if ( !bChanged && !IsInIncrementalUpdate() )
		return;
	Commit( components.join( ' ' ) );
	for ( CQSmartLineEdit *pEdit : m_Components )
		pEdit->setModified( false );
}

void CQAttributeEditor_DomainAgnostic::OnCheckBoxClicked()
{
	Commit( m_pCheckBox->isChecked() ? QStringLiteral( "1" ) : QStringLiteral( "0" ) );
}

void CQAttributeEditor_DomainAgnostic::OnComboActivated( int nIndex )
{
	if ( nIndex < 0 )
		return;
	QString value = m_pCombo->itemData( nIndex ).toString();
	if ( value == m_ShownText && !m_bDiffer )
		return;
	Commit( value );
}

void CQAttributeEditor_DomainAgnostic::OnComboTextFinished()
{
	QString text = m_pCombo->currentText();
	int nIndex = m_pCombo->findText( text );
	QString value = nIndex >= 0 ? m_pCombo->itemData( nIndex ).toString() : text;
	if ( ( value == m_ShownText && !m_bDiffer ) || ( m_bDiffer && text.isEmpty() ) )
		return;
	Commit( value );
}

void CQAttributeEditor_DomainAgnostic::OnSliderValueChanged( double flValue )
{
	Commit( m_Info.m_nType == ZOL_PROPERTY_TYPE_INT ? QString::number( qint64( flValue ) ) : QString::number( flValue, 'g', 9 ) );
}

void CQAttributeEditor_DomainAgnostic::WriteKV3Part( const QString &text )
{
	for ( const PropEdSpecificAttr_t &target : m_Targets )
	{
		CUtlVector<PropEdSpecificAttr_t> one;
		one.AddToTail( target );
		KeyValues3 whole;
		bool bUnused = false;
		if ( !m_pHost->ReadCommonKV3( one, &whole, &bUnused ) )
			continue;
		KeyValues3 *pPart = FindKV3Part( &whole, m_KV3Path );
		if ( !pPart )
			continue;
		switch ( pPart->GetType() )
		{
		case KV3_TYPE_BOOL: pPart->SetBool( text == "1" ); break;
		case KV3_TYPE_INT:
		case KV3_TYPE_UINT:
		case KV3_TYPE_DOUBLE:
		{
			// A whole number stays whole where it was; anything else becomes a double.
			bool bInteger = false;
			qint64 nValue = text.trimmed().toLongLong( &bInteger );
			if ( bInteger && pPart->GetType() != KV3_TYPE_DOUBLE )
				pPart->SetInt64( nValue );
			else
				pPart->SetDouble( text.trimmed().toDouble() );
			break;
		}
		case KV3_TYPE_STRING: pPart->SetString( text.toUtf8().constData() ); break;
		default:
		{
			KeyValues3 value;
			CUtlString error;
			if ( !KV3FromText( text, &value, &error ) )
				continue;
			pPart->CopyFrom( value );
			break;
		}
		}
		m_pHost->WriteKV3( one, whole );
	}
}

void CQAttributeEditor_DomainAgnostic::WriteToAttribute()
{
	if ( !m_pHost || m_Targets.IsEmpty() || IsReadOnly() )
		return;
	const QString text = m_PendingText;
	if ( !m_KV3Path.isEmpty() )
	{
		WriteKV3Part( text );
	}
	else if ( m_eKind == KIND_KV3_TEXT )
	{
		KeyValues3 value;
		CUtlString error;
		if ( KV3FromText( text, &value, &error ) )
			m_pHost->WriteKV3( m_Targets, value );
	}
	else if ( m_eKind == KIND_VECTOR )
	{
		// Each target keeps the components that the editor leaves empty.
		QStringList edited = text.split( ' ' );
		for ( const PropEdSpecificAttr_t &target : m_Targets )
		{
			CUtlVector<PropEdSpecificAttr_t> one;
			one.AddToTail( target );
			CUtlString own;
			bool bUnused = false;
			m_pHost->ReadCommonValueText( one, m_Info, &own, false, &bUnused );
			QStringList components = SplitComponents( QString::fromUtf8( own.Get() ) );
			while ( components.size() < m_Components.size() )
				components.append( QStringLiteral( "0" ) );
			for ( int i = 0; i < m_Components.size() && i < edited.size(); ++i )
			{
				if ( !edited[ i ].isEmpty() )
					components[ i ] = edited[ i ];
			}
			m_pHost->WriteValueText( one, components.join( ' ' ).toUtf8().constData() );
		}
	}
	else
	{
		m_pHost->WriteValueText( m_Targets, text.toUtf8().constData() );
	}
	m_ShownText = text;
	m_bDiffer = false;
}
