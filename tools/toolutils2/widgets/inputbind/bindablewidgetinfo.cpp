#include "tools/toolutils2/widgets/inputbind/bindablewidgetinfo.h"

#include <QVariant>

#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"

CQBindableWidgetInfo::CQBindableWidgetInfo( QObject *pOwner, CQInputBindManager *pManager ) : QObject( pOwner ), m_pManager( pManager ), m_pOwner( pOwner )
{
	if ( pOwner )
		m_Targets.SetName( pOwner->objectName().toUtf8().constData() );
	if ( pOwner )
		pOwner->setProperty( BINDABLE_WIDGET_INFO_PROPERTY, QVariant::fromValue( static_cast<QObject *>( this ) ) );
	if ( m_pManager )
		m_pManager->AddWidgetInfo( this );
}

CQBindableWidgetInfo::~CQBindableWidgetInfo()
{
	// The owner's QObject part is still whole while its children go.
	if ( QObject *pOwner = parent() )
		pOwner->setProperty( BINDABLE_WIDGET_INFO_PROPERTY, QVariant() );
	if ( m_pManager )
		m_pManager->RemoveWidgetInfo( this, m_pOwner );
}

CQBindableWidgetInfo *CQBindableWidgetInfo::FromObject( const QObject *pObject )
{
	if ( !pObject )
		return nullptr;
	QVariant value = pObject->property( BINDABLE_WIDGET_INFO_PROPERTY );
	if ( !value.isValid() )
		return nullptr;
	return qobject_cast<CQBindableWidgetInfo *>( value.value<QObject *>() );
}
