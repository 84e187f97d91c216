#include "tools/widgets/captionedvectoredit.h"

#include <QHBoxLayout>
#include <QLabel>

#include "tools/widgets/smartlineedit.h"

CQCaptionedVectorEdit::CQCaptionedVectorEdit( QWidget *pParent ) : CQEditboxVector3( pParent )
{
	auto *pLayout = static_cast<QHBoxLayout *>( layout() );
	static const char *const s_Captions[ 3 ] = { "X", "Y", "Z" };
	for ( int i = 2; i >= 0; --i )
		pLayout->insertWidget( pLayout->indexOf( m_pFields[ i ] ), new QLabel( s_Captions[ i ], this ) );
}
