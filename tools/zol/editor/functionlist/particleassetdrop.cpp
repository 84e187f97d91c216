#include "tools/zol/editor/functionlist/particleassetdrop.h"

#include <QMimeData>
#include <QWidget>

#include "core/host/assetdragtext.h"
#include "core/host/iasset.h"
#include "core/host/iassetsystem.h"

bool GetDroppedParticleSystems( const QMimeData *pData, CUtlVector<IAsset *> *pAssets )
{
	pAssets->RemoveAll();
	if ( !pData || !pData->hasText() )
		return false;
	CUtlVector<IAsset *> decoded;
	DecodeAssetsFromText( GetAssetSystem(), pData->text().toUtf8().constData(), &decoded );
	for ( IAsset *pAsset : decoded )
	{
		if ( pAsset->GetType() == RESOURCE_TYPE_PARTICLE_SYSTEM )
			pAssets->AddToTail( pAsset );
	}
	return pAssets->Count() > 0;
}

void ShowAssetDropHighlight( QWidget *pWidget, bool bShow )
{
	pWidget->setStyleSheet( bShow ? QStringLiteral( "background-color: #22b14c" ) : QString() );
}
