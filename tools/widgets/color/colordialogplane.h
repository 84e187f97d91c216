#pragma once
// The colour picker's plane and strip: a 256 by 256 plane of two components and a strip of
// the third, chosen by the mode (H, S, V, R, G or B names the strip's component). A press
// picks and the drag keeps picking in the area that was pressed.

#include <QImage>
#include <QWidget>

#include "tools/widgets/color/fatcolor.h"

enum ColorDialogMode_t
{
	COLOR_DIALOG_MODE_H,
	COLOR_DIALOG_MODE_S,
	COLOR_DIALOG_MODE_V,
	COLOR_DIALOG_MODE_R,
	COLOR_DIALOG_MODE_G,
	COLOR_DIALOG_MODE_B,
	COLOR_DIALOG_MODE_COUNT,
};

class CQColorDialog_ColorGradient : public QWidget
{
	Q_OBJECT

public:
	static constexpr int WIDTH = 322;
	static constexpr int HEIGHT = 280;
	static constexpr int PLANE_LEFT = 12;
	static constexpr int PLANE_TOP = 12;
	static constexpr int PLANE_SIZE = 256;
	static constexpr int STRIP_LEFT = 286;
	static constexpr int STRIP_WIDTH = 24;
	// The areas take presses this far outside them.
	static constexpr int HIT_MARGIN = 5;

	explicit CQColorDialog_ColorGradient( QWidget *pParent = nullptr );

	void SetMode( int nMode );
	int GetMode() const { return m_nMode; }
	// Shows a colour; tells nothing.
	void SetColor( const FatColor_t &color );
	const FatColor_t &GetColor() const { return m_Color; }

	// The colour that a point picks, from the current colour: in the plane the two plane
	// components change, in the strip the strip's.
	FatColor_t PickInPlane( const QPoint &pos ) const;
	FatColor_t PickInStrip( const QPoint &pos ) const;
	QRect GetPlaneHitRect() const;
	QRect GetStripHitRect() const;
	const QImage &GetPlaneImage() const { return m_Plane; }

signals:
	void OnColorPicked( FatColor_t color );

protected:
	void paintEvent( QPaintEvent *pEvent ) override;
	void mousePressEvent( QMouseEvent *pEvent ) override;
	void mouseMoveEvent( QMouseEvent *pEvent ) override;
	void mouseReleaseEvent( QMouseEvent *pEvent ) override;

private:
	enum DragArea_t
	{
		DRAG_NONE,
		DRAG_PLANE,
		DRAG_STRIP,
	};
	void Pick( const QPoint &pos );
	void RebuildImages();
	// The plane's x and y (y counted upwards) and the strip's value of a colour, 0..255.
	void GetCoordinates( const FatColor_t &color, int *pX, int *pY, int *pStrip ) const;

	int m_nMode = COLOR_DIALOG_MODE_H;
	FatColor_t m_Color;
	QImage m_Plane;
	QImage m_Strip;
	DragArea_t m_eDrag = DRAG_NONE;
};
