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
	// A row's room: narrow margins, small handles, tangent menus and point edits.
	CQCurveEditorWidget::Options_t options;
	options.m_nLeftMargin = options.m_nRightMargin = 30;
	options.m_nTopMargin = options.m_nBottomMargin = 12;
	options.m_flKeyHandleRadius = 5.0f;
	options.m_flCurveLineWidth = 2.0f;
	options.m_bEditPointItem = true;
	options.m_bSetAllTangentMenus = true;
	m_pCurve->SetOptions( options );
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
