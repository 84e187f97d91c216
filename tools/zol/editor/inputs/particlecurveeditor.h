#pragma once
// The curve of a float input's curve map, in the input's row: the kit's curve editor set up
// for 140 pixels, telling each finished change of the curve once.

#include <QWidget>

class CQCurveEditorWidget;
class CPiecewiseCurve;

class CQParticleCurveEditor : public QWidget
{
	Q_OBJECT

public:
	static constexpr int HEIGHT = 140;

	explicit CQParticleCurveEditor( QWidget *pParent = nullptr );

	// Shows a copy of the curve; tells nothing.
	void SetCurve( const CPiecewiseCurve &curve, bool bEditable );
	CPiecewiseCurve GetCurve() const;
	CQCurveEditorWidget *GetCurveWidget() const { return m_pCurve; }

signals:
	void CurveEdited();

private:
	CQCurveEditorWidget *m_pCurve = nullptr;
	bool m_bSetting = false;
};
