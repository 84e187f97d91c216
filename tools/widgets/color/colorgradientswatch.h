#pragma once
// The compact form of a colour gradient: the strip in a frame. A click opens the gradient
// editor over it (or brings up the one already open), which follows every change, and the
// right button offers the gradient menu in place.

#include <QPixmap>
#include <QPointer>
#include <QWidget>

#include <random>

#include "core/mathlib/colorgradient.h"

class QMenu;
class CQColorGradientEditor;

class CQColorGradientSwatch : public QWidget
{
	Q_OBJECT

public:
	static constexpr int BORDER = 2;

	explicit CQColorGradientSwatch( QWidget *pParent = nullptr );

	// Shows a gradient (and passes it to an open editor); tells nothing.
	void SetGradient( const CColorGradient &gradient, bool bAlpha );
	const CColorGradient &GetGradient() const { return m_Gradient; }
	bool HasAlpha() const { return m_bAlpha; }

	// The editor while it is open, else null.
	CQColorGradientEditor *GetEditor() const { return m_pEditor.data(); }
	// Opens the editor, or raises the one already open.
	CQColorGradientEditor *OpenEditor();

	QMenu *CreateContextMenu( QWidget *pParent );

	QSize sizeHint() const override { return QSize( 120, 20 ); }

public slots:
	void ClearGradient();
	void ReverseGradient();
	void RandomizeGradient();
	void CopyGradient();
	void PasteGradient();
	void OnGradientEditorChanged( bool bFinished );
	void OnGradientEditorEscape();

signals:
	void GradientChanged( bool bFinished );

protected:
	void paintEvent( QPaintEvent *pEvent ) override;
	void mousePressEvent( QMouseEvent *pEvent ) override;
	void mouseReleaseEvent( QMouseEvent *pEvent ) override;
	void contextMenuEvent( QContextMenuEvent *pEvent ) override;

private:
	// A change made here: shown, passed to an open editor, told.
	void ApplyChange( const CColorGradient &gradient );

	CColorGradient m_Gradient;
	bool m_bAlpha = false;
	QPointer<CQColorGradientEditor> m_pEditor;
	std::mt19937 m_Random;
	bool m_bPressed = false;
};
