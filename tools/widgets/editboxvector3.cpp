#include "tools/widgets/editboxvector3.h"

#include <QHBoxLayout>

#include "tools/widgets/smartlineedit.h"

static QString FormatComponent( float flValue )
{
	return QString::asprintf( "%g", double( flValue ) );
}

CQEditboxVector3::CQEditboxVector3( QWidget *pParent ) : QWidget( pParent )
{
	auto *pLayout = new QHBoxLayout( this );
	pLayout->setContentsMargins( 0, 0, 0, 0 );
	pLayout->setSpacing( 2 );
	for ( int i = 0; i < 3; ++i )
	{
		CQSmartLineEdit *pField = new CQSmartLineEdit( this );
		pField->setObjectName( QString( "Component%1" ).arg( i ) );
		pField->SetNumberKind( CQSmartLineEdit::NUMBER_KIND_FLOAT );
		pField->setMinimumWidth( 40 );
		m_pFields[ i ] = pField;
		m_Shown[ i ] = "0";
		pField->setText( m_Shown[ i ] );
		pLayout->addWidget( pField, 1 );
		connect( pField, &QLineEdit::editingFinished, this, &CQEditboxVector3::OnFieldEdited );
		connect( pField, &CQSmartLineEdit::DragStepped, this, &CQEditboxVector3::OnFieldEdited );
		connect( pField, &CQSmartLineEdit::DragStarted, this, &CQEditboxVector3::DragStarted );
		connect( pField, &CQSmartLineEdit::DragEnded, this, &CQEditboxVector3::DragEnded );
		connect( pField, &CQSmartLineEdit::FocusIn, this, &CQEditboxVector3::FocusIn );
	}
}

void CQEditboxVector3::SetValue( const Vector &vValue )
{
	for ( int i = 0; i < 3; ++i )
	{
		m_Shown[ i ] = FormatComponent( vValue[ i ] );
		// A field being typed in keeps the user's text until they finish.
		if ( !m_pFields[ i ]->hasFocus() || !m_pFields[ i ]->isModified() )
		{
			const QSignalBlocker blocker( m_pFields[ i ] );
			m_pFields[ i ]->setText( m_Shown[ i ] );
		}
	}
}

Vector CQEditboxVector3::GetValue( bool *pOk ) const
{
	Vector vValue;
	bool bAllOk = true;
	for ( int i = 0; i < 3; ++i )
	{
		bool bOk = false;
		const float flValue = m_pFields[ i ]->text().trimmed().toFloat( &bOk );
		bAllOk = bAllOk && bOk;
		vValue[ i ] = bOk ? flValue : 0.0f;
	}
	if ( pOk )
		*pOk = bAllOk;
	return vValue;
}

QString CQEditboxVector3::GetText() const
{
	return QString( "%1 %2 %3" ).arg( m_pFields[ 0 ]->text(), m_pFields[ 1 ]->text(), m_pFields[ 2 ]->text() );
}

void CQEditboxVector3::SetFieldEnabled( int nField, bool bEnabled )
{
	m_pFields[ nField ]->setEnabled( bEnabled );
}

void CQEditboxVector3::OnFieldEdited()
{
	bool bChanged = false;
	for ( int i = 0; i < 3; ++i )
	{
		CQSmartLineEdit *pField = m_pFields[ i ];
		bool bOk = false;
		pField->text().trimmed().toFloat( &bOk );
		if ( !bOk )
		{
			// Not a number: what stood there comes back.
			const QSignalBlocker blocker( pField );
			pField->setText( m_Shown[ i ] );
			continue;
		}
		bChanged = bChanged || pField->text().trimmed() != m_Shown[ i ];
		pField->setModified( false );
	}
	if ( bChanged )
		emit ValueChanged();
}
