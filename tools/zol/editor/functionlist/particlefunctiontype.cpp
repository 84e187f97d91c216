#include "tools/zol/editor/functionlist/particlefunctiontype.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

#include "zoldoc_lib/zoldoc.h"

CQParticleFunctionType::CQParticleFunctionType( ParticleFunctionType_t eType, QWidget *pParent ) : QWidget( pParent ), m_eType( eType )
{
	setObjectName( "ZOL_FunctionTypeHeader" );
	const QString word = QString::fromUtf8( CZolDoc::GetFunctionTypeName( eType ) );
	auto *pLayout = new QHBoxLayout( this );
	pLayout->setContentsMargins( 2, 6, 2, 2 );
	pLayout->setSpacing( 4 );
	m_pAddButton = new QToolButton( this );
	m_pAddButton->setObjectName( "ZOL_FunctionTypeAddButton" );
	m_pAddButton->setIcon( QIcon( "game:tools/images/common/add_sm.png" ) );
	m_pAddButton->setToolTip( tr( "Add New %1" ).arg( word ) );
	m_pAddButton->setAutoRaise( true );
	m_pAddButton->setFocusPolicy( Qt::NoFocus );
	m_pLabel = new QLabel( word, this );
	m_pLabel->setObjectName( "ZOL_FunctionTypeLabel" );
	QFont font = m_pLabel->font();
	font.setPixelSize( 12 );
	font.setBold( true );
	m_pLabel->setFont( font );
	pLayout->addWidget( m_pAddButton );
	pLayout->addWidget( m_pLabel, 1 );
	connect( m_pAddButton, &QToolButton::clicked, this, [ this ]() { emit AddFunctionOfType( m_eType ); } );
}
