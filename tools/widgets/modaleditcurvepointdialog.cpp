#include "tools/widgets/modaleditcurvepointdialog.h"

#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QKeyEvent>

namespace
{
QDoubleSpinBox *MakeBox( QWidget *pParent, double flValue, double flMin, double flMax )
{
	QDoubleSpinBox *pBox = new QDoubleSpinBox( pParent );
	pBox->setRange( flMin, flMax );
	pBox->setDecimals( 2 );
	pBox->setSingleStep( 0.01 );
	pBox->setStepType( QAbstractSpinBox::AdaptiveDecimalStepType );
	pBox->setValue( flValue );
	return pBox;
}
} // namespace

CQModalEditCurvePointDialog::CQModalEditCurvePointDialog( QWidget *pParent, const QPoint &screenPos, const Vector2D &point, const Vector2D &vDomainMins,
	const Vector2D &vDomainMaxs )
	: QDialog( pParent, Qt::FramelessWindowHint | Qt::Dialog ), m_Start( point )
{
	setModal( true );
	QHBoxLayout *pLayout = new QHBoxLayout( this );
	pLayout->setContentsMargins( 4, 4, 4, 4 );
	m_pX = MakeBox( this, point.x, vDomainMins.x, vDomainMaxs.x );
	m_pY = MakeBox( this, point.y, vDomainMins.y, vDomainMaxs.y );
	pLayout->addWidget( m_pX );
	pLayout->addWidget( m_pY );
	move( screenPos );
	m_pX->setFocus();
	m_pX->selectAll();
}

void CQModalEditCurvePointDialog::keyPressEvent( QKeyEvent *pEvent )
{
	// The boxes let Return through; it takes what they hold.
	if ( pEvent->key() == Qt::Key_Return || pEvent->key() == Qt::Key_Enter )
	{
		m_pX->interpretText();
		m_pY->interpretText();
		accept();
		return;
	}
	QDialog::keyPressEvent( pEvent );
}

Vector2D CQModalEditCurvePointDialog::GetPoint() const
{
	if ( result() != QDialog::Accepted )
		return m_Start;
	return Vector2D( float( m_pX->value() ), float( m_pY->value() ) );
}

Vector2D CQModalEditCurvePointDialog::Edit( QWidget *pParent, const QPoint &screenPos, const Vector2D &point, const Vector2D &vDomainMins,
	const Vector2D &vDomainMaxs, bool *pAccepted )
{
	CQModalEditCurvePointDialog dialog( pParent, screenPos, point, vDomainMins, vDomainMaxs );
	bool bAccepted = dialog.exec() == QDialog::Accepted;
	if ( pAccepted )
		*pAccepted = bAccepted;
	return dialog.GetPoint();
}
