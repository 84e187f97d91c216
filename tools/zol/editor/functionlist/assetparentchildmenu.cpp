#include "tools/zol/editor/functionlist/assetparentchildmenu.h"

#include <QBoxLayout>
#include <QCursor>
#include <QFrame>
#include <QGridLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QScreen>

#include "core/containers/utlvector.h"
#include "core/host/iasset.h"
#include "tools/widgets/connecthelper.h"
#include "tools/widgets/hoverbutton.h"

namespace
{
QLabel *MakePicture( const char *pDirection, const char *pPlace, QWidget *pParent )
{
	auto *pLabel = new QLabel( pParent );
	pLabel->setPixmap( QPixmap( QStringLiteral( "game:tools/images/common/parentchild_%1_%2.png" ).arg( pDirection, pPlace ) ) );
	return pLabel;
}

QString AssetLabel( IAsset *pAsset )
{
	QString name = QString::fromUtf8( pAsset->GetResourceName() );
	const int nSlash = name.lastIndexOf( '/' );
	return nSlash >= 0 ? name.mid( nSlash + 1 ) : name;
}
} // namespace

CQAssetParentChildMenu::CQAssetParentChildMenu( QWidget *pParent, bool bVertical ) : QWidget( pParent ), m_bVertical( bVertical )
{
	setFixedWidth( 0 );
}

CQAssetParentChildMenu::~CQAssetParentChildMenu()
{
	// The popup is a window of its own, not a child.
	delete m_pPopup.data();
}

bool CQAssetParentChildMenu::SetAsset( IAsset *pAsset )
{
	m_pHoveredAsset = nullptr;
	if ( !pAsset || pAsset->GetType() != RESOURCE_TYPE_PARTICLE_SYSTEM )
	{
		m_pAsset = nullptr;
		setFixedWidth( 0 );
		delete m_pParentButton;
		delete m_pChildButton;
		delete m_pLayout;
		m_pParentButton = nullptr;
		m_pChildButton = nullptr;
		m_pLayout = nullptr;
		return false;
	}
	m_pAsset = pAsset;
	setFixedWidth( 46 );
	if ( !m_pLayout )
	{
		m_pLayout = new QBoxLayout( m_bVertical ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight, this );
		m_pLayout->setContentsMargins( 2, 0, 2, 0 );
		m_pLayout->setSpacing( 2 );
		m_pParentButton = new QPushButton( this );
		m_pChildButton = new QPushButton( this );
		for ( QPushButton *pButton : { m_pParentButton, m_pChildButton } )
		{
			pButton->setFixedSize( 20, 20 );
			pButton->setFocusPolicy( Qt::NoFocus );
			m_pLayout->addWidget( pButton );
		}
		m_pParentButton->setToolTip( tr( "Parent Asset(s)" ) );
		m_pChildButton->setToolTip( tr( "Child Asset(s)" ) );
		connect( m_pParentButton, &QPushButton::clicked, this, &CQAssetParentChildMenu::OpenMenuForParentsOfAsset );
		connect( m_pChildButton, &QPushButton::clicked, this, &CQAssetParentChildMenu::OpenMenuForChildrenOfAsset );
	}
	RefreshButtons();
	return true;
}

void CQAssetParentChildMenu::GetRelatives( IAsset *pAsset, bool bChildren, CUtlVector<IAsset *> *pRelatives ) const
{
	pRelatives->RemoveAll();
	if ( !pAsset || !m_pAsset )
		return;
	if ( bChildren )
		pAsset->GetChildren( pRelatives, false, m_pAsset->GetType() );
	else
		pAsset->GetParents( pRelatives, false, m_pAsset->GetType() );
}

void CQAssetParentChildMenu::RefreshButtons()
{
	CUtlVector<IAsset *> relatives;
	GetRelatives( m_pAsset, false, &relatives );
	m_pParentButton->setEnabled( relatives.Count() > 0 );
	m_pParentButton->setText( relatives.Count() > 0 ? tr( "%1" ).arg( relatives.Count() ) : QStringLiteral( "P" ) );
	GetRelatives( m_pAsset, true, &relatives );
	m_pChildButton->setEnabled( relatives.Count() > 0 );
	m_pChildButton->setText( relatives.Count() > 0 ? tr( "%1" ).arg( relatives.Count() ) : QStringLiteral( "C" ) );
}

void CQAssetParentChildMenu::OpenMenuForParentsOfAsset()
{
	OpenMenu( false );
}

void CQAssetParentChildMenu::OpenMenuForChildrenOfAsset()
{
	OpenMenu( true );
}

int CQAssetParentChildMenu::BuildLevel( QGridLayout *pGrid, IAsset *pAsset, int nDepth, bool bChildren, int nLastRow )
{
	if ( nDepth >= MAX_DEPTH )
		return 0;
	CUtlVector<IAsset *> relatives;
	GetRelatives( pAsset, bChildren, &relatives );
	const char *pDirection = bChildren ? "child" : "parent";
	const int nColumn = bChildren ? nDepth + 1 : 7 - nDepth;
	int nAdded = 0;
	for ( int i = 0; i < relatives.Count(); ++i )
	{
		IAsset *pRelative = relatives[ i ];
		const int nRow = i == 0 ? nLastRow : nLastRow + nAdded + 1;
		if ( i > 0 )
			++nAdded;

		auto *pEntry = new QWidget( m_pPopup );
		auto *pEntryLayout = new QHBoxLayout( pEntry );
		pEntryLayout->setContentsMargins( 0, 0, 0, 0 );
		pEntryLayout->setSpacing( 0 );
		auto *pButton = new CQHoverButton( AssetLabel( pRelative ), pEntry );
		pButton->setFixedHeight( 23 );
		pButton->setFocusPolicy( Qt::NoFocus );
		pButton->setToolTip( QString::fromUtf8( pRelative->GetResourceName() ) );
		const char *pPlace = relatives.Count() == 1 ? "only" : i == 0 ? "first" : i == relatives.Count() - 1 ? "last" : "mid";
		QLabel *pPicture = MakePicture( pDirection, pPlace, pEntry );
		if ( bChildren )
		{
			pEntryLayout->addWidget( pPicture );
			pEntryLayout->addWidget( pButton );
		}
		else
		{
			pEntryLayout->addWidget( pButton );
			pEntryLayout->addWidget( pPicture );
		}
		pGrid->addWidget( pEntry, nRow, nColumn, bChildren ? Qt::AlignLeft : Qt::AlignRight );

		for ( int nHelper = 0; nHelper < 3; ++nHelper )
		{
			auto *pHelper = new CQConnectHelper_void( pRelative, pButton );
			if ( nHelper == 0 )
			{
				connect( pButton, &QPushButton::clicked, pHelper, &CQConnectHelper_void::map );
				connect( pHelper, &CQConnectHelper_void::mapped, this, &CQAssetParentChildMenu::OnSelectAsset );
			}
			else if ( nHelper == 1 )
			{
				connect( pButton, &CQHoverButton::MouseEnter, pHelper, &CQConnectHelper_void::map );
				connect( pHelper, &CQConnectHelper_void::mapped, this, &CQAssetParentChildMenu::OnMouseEnterAsset );
			}
			else
			{
				connect( pButton, &CQHoverButton::MouseLeave, pHelper, &CQConnectHelper_void::map );
				connect( pHelper, &CQConnectHelper_void::mapped, this, &CQAssetParentChildMenu::OnMouseLeaveAsset );
			}
		}

		const int nBelow = BuildLevel( pGrid, pRelative, nDepth + 1, bChildren, nRow );
		nAdded += nBelow;
		// The line down to the next entry of this level passes the rows of the level below.
		if ( i + 1 < relatives.Count() )
		{
			for ( int nSkip = 1; nSkip <= nBelow; ++nSkip )
				pGrid->addWidget( MakePicture( pDirection, "skip", m_pPopup ), nRow + nSkip, nColumn, bChildren ? Qt::AlignLeft : Qt::AlignRight );
		}
	}
	return nAdded;
}

void CQAssetParentChildMenu::OpenMenu( bool bChildren )
{
	if ( !m_pAsset )
		return;
	delete m_pPopup.data();
	m_pPopup = new QFrame( nullptr, Qt::Popup | Qt::FramelessWindowHint );
	m_pPopup->setAttribute( Qt::WA_DeleteOnClose );
	m_pPopup->setFrameShape( QFrame::Panel );
	m_pPopup->setFrameShadow( QFrame::Plain );
	m_pPopup->setLineWidth( 1 );
	connect( m_pPopup, &QObject::destroyed, this, &CQAssetParentChildMenu::OnPopupClose );
	auto *pGrid = new QGridLayout( m_pPopup );
	pGrid->setContentsMargins( 2, 2, 2, 2 );
	pGrid->setSpacing( 0 );

	CUtlVector<IAsset *> relatives;
	GetRelatives( m_pAsset, bChildren, &relatives );
	if ( relatives.Count() == 0 )
	{
		delete m_pPopup.data();
		return;
	}
	BuildLevel( pGrid, m_pAsset, 0, bChildren, 0 );
	if ( bChildren )
		pGrid->addWidget( MakePicture( "child", "root", m_pPopup ), 0, 0, Qt::AlignLeft );
	else
		pGrid->addWidget( MakePicture( "parent", "root", m_pPopup ), 0, 8, Qt::AlignRight );

	m_pPopup->adjustSize();
	QPoint pos = QCursor::pos();
	if ( !bChildren )
		pos.rx() -= m_pPopup->width();
	// Back onto the screen under the cursor, left and top edges first.
	if ( QScreen *pScreen = QGuiApplication::screenAt( QCursor::pos() ) )
	{
		const QRect screen = pScreen->availableGeometry();
		pos.setX( qMax( pos.x(), screen.left() ) );
		pos.setY( qMax( pos.y(), screen.top() ) );
		pos.setX( qMin( pos.x(), qMax( screen.left(), screen.right() - m_pPopup->width() ) ) );
		pos.setY( qMin( pos.y(), qMax( screen.top(), screen.bottom() - m_pPopup->height() ) ) );
	}
	m_pPopup->move( pos );
	m_pPopup->show();
	m_pPopup->raise();
}

void CQAssetParentChildMenu::OnSelectAsset( void *pAsset )
{
	emit ParentChildAssetSelected( static_cast<IAsset *>( pAsset ) );
	if ( m_pPopup )
		m_pPopup->close();
}

void CQAssetParentChildMenu::OnMouseEnterAsset( void *pAsset )
{
	if ( pAsset == m_pHoveredAsset )
		return;
	m_pHoveredAsset = static_cast<IAsset *>( pAsset );
	emit ParentChildAssetHovered( m_pHoveredAsset );
}

void CQAssetParentChildMenu::OnMouseLeaveAsset( void * )
{
	m_pHoveredAsset = nullptr;
	emit ParentChildAssetHovered( nullptr );
}

void CQAssetParentChildMenu::OnPopupClose()
{
	m_pHoveredAsset = nullptr;
	emit ParentChildAssetHovered( nullptr );
}
