#include "tools/widgets/assetcontextmenu.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

#include "core/host/iasset.h"

CQAssetContextMenu::CQAssetContextMenu( IAsset *pAsset, QWidget *pParent ) : QMenu( pParent ), m_pAsset( pAsset )
{
	if ( !pAsset )
		return;
	const QString name = QString::fromUtf8( pAsset->GetResourceName() );
	const QString fullPath = QDir::fromNativeSeparators( QString::fromUtf8( pAsset->GetAbsolutePath() ).replace( '\\', '/' ) );
	addSection( QFileInfo( name ).fileName() );
	addAction( tr( "Open" ), this, [ this ]() { emit OpenAsset( m_pAsset ); } );
	addSeparator();
	addAction( tr( "Copy Asset Name" ), this, [ name ]() { QApplication::clipboard()->setText( name ); } );
	addAction( tr( "Copy Full Path" ), this, [ fullPath ]() { QApplication::clipboard()->setText( fullPath ); } );
	QAction *pShow = addAction( tr( "Show in Folder" ), this, [ fullPath ]() { QDesktopServices::openUrl( QUrl::fromLocalFile( QFileInfo( fullPath ).absolutePath() ) ); } );
	pShow->setEnabled( pAsset->FileExists() );
	addSeparator();
	AddRelatives( tr( "Parents" ), true );
	AddRelatives( tr( "Children" ), false );
}

void CQAssetContextMenu::AddRelatives( const QString &title, bool bParents )
{
	CUtlVector<IAsset *> relatives;
	if ( bParents )
		m_pAsset->GetParents( &relatives, false, m_pAsset->GetType() );
	else
		m_pAsset->GetChildren( &relatives, false, m_pAsset->GetType() );
	QMenu *pMenu = addMenu( QStringLiteral( "%1 (%2)" ).arg( title ).arg( relatives.Count() ) );
	pMenu->setEnabled( relatives.Count() > 0 );
	for ( IAsset *pRelative : relatives )
		pMenu->addAction( QString::fromUtf8( pRelative->GetResourceName() ), this, [ this, pRelative ]() { emit OpenAsset( pRelative ); } );
}
