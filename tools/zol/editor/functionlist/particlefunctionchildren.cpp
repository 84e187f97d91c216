#include "tools/zol/editor/functionlist/particlefunctionchildren.h"

#include <QDragEnterEvent>
#include <QPointer>

#include "core/host/iasset.h"
#include "tools/zol/editor/functionlist/particleassetdrop.h"
#include "tools/zol/editor/zolsession.h"
#include "zoldoc_lib/zoldoc.h"

CQParticleFunctionChildren::CQParticleFunctionChildren( CQParticleFunctionList *pList, QWidget *pParent )
	: CQParticleFunctionType( PARTICLE_FUNCTION_CHILDREN, pParent ), m_pList( pList )
{
	setAcceptDrops( true );
}

void CQParticleFunctionChildren::dragEnterEvent( QDragEnterEvent *pEvent )
{
	EnterParticleSystemDrag( this, pEvent, m_pSession != nullptr );
}

void CQParticleFunctionChildren::dragLeaveEvent( QDragLeaveEvent *pEvent )
{
	LeaveParticleSystemDrag( this, pEvent );
}

void CQParticleFunctionChildren::dropEvent( QDropEvent *pEvent )
{
	CUtlVector<IAsset *> assets;
	if ( !TakeParticleSystemDrop( this, pEvent, m_pSession != nullptr, &assets ) )
		return;
	// The questions of CanBeChild may run an event loop that rebuilds the list and
	// deletes this header; the session is what counts.
	QPointer<CQParticleFunctionChildren> pSelf( this );
	CZolSession *pSession = m_pSession;
	CUtlVector<IAsset *> accepted;
	for ( IAsset *pAsset : assets )
	{
		if ( pSession->CanBeChild( pAsset ) )
			accepted.AddToTail( pAsset );
		if ( !pSelf || m_pSession != pSession )
			return;
	}
	// All of one drop is one undo step.
	if ( accepted.Count() > 0 )
		pSession->GetDoc()->AddChildren( accepted.Count(), accepted.Base() );
}
