#include "tools/zol/editor/assetmaintenance/staleversionconfigdialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>

#include "core/particles/iparticlesystemmgr.h"

CQStaleVersionConfigDialog::CQStaleVersionConfigDialog( int nFromVersion, QWidget *pParent ) : QDialog( pParent )
{
	setMinimumSize( 800, 600 );
	setWindowTitle( "Are you sure you want to upconvert this particle system?" );
	auto *pLayout = new QVBoxLayout( this );
	pLayout->setContentsMargins( 5, 5, 5, 5 );
	pLayout->addWidget( new QLabel( "Upgrading involves the following changes:", this ), 0, Qt::AlignHCenter );

	m_pChanges = new QListWidget( this );
	m_pChanges->setWordWrap( true );
	m_pChanges->setTextElideMode( Qt::ElideNone );
	m_pChanges->setSelectionMode( QAbstractItemView::NoSelection );
	m_pChanges->setHorizontalScrollBarPolicy( Qt::ScrollBarAlwaysOff );
	if ( const IParticleSystemMgr *pMgr = GetParticleSystemMgr() )
	{
		for ( int nVersion = nFromVersion + 1; nVersion <= pMgr->GetCurrentBehaviorVersion(); ++nVersion )
			m_pChanges->addItem( QString( "* %1" ).arg( QString::fromUtf8( pMgr->GetBehaviorVersionChange( nVersion ) ) ) );
	}
	pLayout->addWidget( m_pChanges );

	m_pButtons = new QDialogButtonBox( QDialogButtonBox::Ok | QDialogButtonBox::Cancel, Qt::Horizontal, this );
	connect( m_pButtons, &QDialogButtonBox::accepted, this, &QDialog::accept );
	connect( m_pButtons, &QDialogButtonBox::rejected, this, &QDialog::reject );
	pLayout->addWidget( m_pButtons );
}
