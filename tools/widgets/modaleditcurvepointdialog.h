#pragma once
// A small frameless dialog at a point of the screen with two number boxes, x and y, for
// typing the place of one curve key. Return or Enter accepts.

#include <QDialog>

#include "core/mathlib/vector2d.h"

class QDoubleSpinBox;

class CQModalEditCurvePointDialog : public QDialog
{
	Q_OBJECT

public:
	// The boxes start at the point, limited to the domain.
	CQModalEditCurvePointDialog( QWidget *pParent, const QPoint &screenPos, const Vector2D &point, const Vector2D &vDomainMins, const Vector2D &vDomainMaxs );

	// The edited point once accepted, else the point it started with.
	Vector2D GetPoint() const;
	QDoubleSpinBox *GetXBox() const { return m_pX; }
	QDoubleSpinBox *GetYBox() const { return m_pY; }

	// Shows the dialog and waits; *pAccepted tells whether the user accepted it.
	static Vector2D Edit( QWidget *pParent, const QPoint &screenPos, const Vector2D &point, const Vector2D &vDomainMins, const Vector2D &vDomainMaxs,
		bool *pAccepted );

protected:
	void keyPressEvent( QKeyEvent *pEvent ) override;

private:
	QDoubleSpinBox *m_pX = nullptr;
	QDoubleSpinBox *m_pY = nullptr;
	Vector2D m_Start;
};
