#include "tools/widgets/vectoredit.h"

#include <QHBoxLayout>

#include "tools/widgets/smartlineedit.h"

CQVectorEdit::CQVectorEdit( QWidget *pParent ) : QWidget( pParent )
{
	auto *pLayout = new QHBoxLayout( this );
	pLayout->setContentsMargins( 0, 0, 0, 0 );
	pLayout->setSpacing( 2 );
	const char *const names[ 3 ] = { "X", "Y", "Z" };
	for ( int i = 0; i < 3; ++i )
	{
		m_pEdits[ i ] = new CQSmartLineEdit( this );
		m_pEdits[ i ]->SetNumberKind( CQSmartLineEdit::NUMBER_KIND_FLOAT );
		m_pEdits[ i ]->setToolTip( QString::fromLatin1( names[ i ] ) );
		m_pEdits[ i ]->setMinimumWidth( 36 );
		pLayout->addWidget( m_pEdits[ i ], 1 );
		connect( m_pEdits[ i ], &CQSmartLineEdit::editingFinished, this, &CQVectorEdit::OnComponentFinished );
		connect( m_pEdits[ i ], &CQSmartLineEdit::DragEnded, this, &CQVectorEdit::OnComponentFinished );
	}
	SetVector( Vector() );
}

CQVectorEdit::~CQVectorEdit()
{
	// The fields tell their focus leaving as they go; this widget is half gone by then.
	for ( CQSmartLineEdit *pEdit : m_pEdits )
		pEdit->disconnect( this );
}

void CQVectorEdit::SetVector( const Vector &vValue )
{
	m_vShown = vValue;
	for ( int i = 0; i < 3; ++i )
	{
		const QSignalBlocker block( m_pEdits[ i ] );
		m_pEdits[ i ]->setText( QString::number( double( vValue[ i ] ), 'g', 6 ) );
		m_pEdits[ i ]->setModified( false );
	}
}

Vector CQVectorEdit::GetVector() const
{
	Vector v;
	for ( int i = 0; i < 3; ++i )
		v[ i ] = m_pEdits[ i ]->text().toFloat();
	return v;
}

void CQVectorEdit::SetReadOnly( bool bReadOnly )
{
	for ( CQSmartLineEdit *pEdit : m_pEdits )
		pEdit->setReadOnly( bReadOnly );
}

bool CQVectorEdit::IsBeingEdited() const
{
	for ( CQSmartLineEdit *pEdit : m_pEdits )
	{
		if ( pEdit->hasFocus() && pEdit->isModified() )
			return true;
	}
	return false;
}

void CQVectorEdit::OnComponentFinished()
{
	Vector v = GetVector();
	for ( CQSmartLineEdit *pEdit : m_pEdits )
		pEdit->setModified( false );
	if ( v == m_vShown )
		return;
	m_vShown = v;
	emit VectorEdited();
}
