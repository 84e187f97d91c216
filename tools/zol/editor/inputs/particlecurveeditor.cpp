#include "tools/zol/editor/inputs/particlecurveeditor.h"

#include <QVBoxLayout>

#include "core/mathlib/piecewisecurve.h"
#include "tools/widgets/curveeditorwidget.h"

CQParticleCurveEditor::CQParticleCurveEditor( QWidget *pParent ) : QWidget( pParent )
{
	setFixedHeight( HEIGHT );
	auto *pLayout = new QVBoxLayout( this );
	pLayout->setContentsMargins( 0, 0, 0, 0 );
	m_pCurve = new CQCurveEditorWidget( this );
	m_pCurve->SetOptions( CQCurveEditorWidget::RowOptions( 12 ) );
	pLayout->addWidget( m_pCurve );
	connect( m_pCurve, &CQCurveEditorWidget::OnCurveUpdated, this, [ this ] {
		if ( !m_bSetting )
			emit CurveEdited();
	} );
}

void CQParticleCurveEditor::SetCurve( const CPiecewiseCurve &curve, bool bEditable )
{
	m_bSetting = true;
	m_pCurve->SetCurve( curve, false, bEditable );
	m_bSetting = false;
}

CPiecewiseCurve CQParticleCurveEditor::GetCurve() const
{
	return m_pCurve->GetCurve();
}
