#include "tools/zol/editor/functionlist/particleassetdrop.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QUrl>
#include <QWidget>

#include "core/host/assetdragtext.h"
#include "core/host/iasset.h"
#include "core/host/iassetsystem.h"

bool GetDroppedParticleSystems( const QMimeData *pData, CUtlVector<IAsset *> *pAssets )
{
	pAssets->RemoveAll();
	if ( !pData )
		return false;
	// Asset lists drag names as text; a file manager may drag only the files' URLs.
	QString text = pData->hasText() ? pData->text() : QString();
	if ( text.isEmpty() && pData->hasUrls() )
	{
		for ( const QUrl &url : pData->urls() )
		{
			if ( url.isLocalFile() )
				text += url.toLocalFile() + QLatin1Char( '\n' );
		}
	}
	if ( text.isEmpty() )
		return false;
	CUtlVector<IAsset *> decoded;
	DecodeAssetsFromText( GetAssetSystem(), text.toUtf8().constData(), &decoded );
	for ( IAsset *pAsset : decoded )
	{
		if ( pAsset->GetType() == RESOURCE_TYPE_PARTICLE_SYSTEM )
			pAssets->AddToTail( pAsset );
	}
	return pAssets->Count() > 0;
}

namespace
{
void ShowDropHighlight( QWidget *pWidget, bool bShow )
{
	pWidget->setStyleSheet( bShow ? QStringLiteral( "background-color: #22b14c" ) : QString() );
}
} // namespace

void EnterParticleSystemDrag( QWidget *pWidget, QDragEnterEvent *pEvent, bool bCanTake )
{
	CUtlVector<IAsset *> assets;
	if ( !bCanTake || !GetDroppedParticleSystems( pEvent->mimeData(), &assets ) )
	{
		pEvent->ignore();
		return;
	}
	pEvent->acceptProposedAction();
	ShowDropHighlight( pWidget, true );
}

void LeaveParticleSystemDrag( QWidget *pWidget, QDragLeaveEvent *pEvent )
{
	ShowDropHighlight( pWidget, false );
	pEvent->accept();
}

bool TakeParticleSystemDrop( QWidget *pWidget, QDropEvent *pEvent, bool bCanTake, CUtlVector<IAsset *> *pAssets )
{
	ShowDropHighlight( pWidget, false );
	if ( !bCanTake || !GetDroppedParticleSystems( pEvent->mimeData(), pAssets ) )
	{
		pEvent->ignore();
		return false;
	}
	pEvent->acceptProposedAction();
	return true;
}
