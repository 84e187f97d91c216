#pragma once
// What the colour gradient editor does, without widgets: where the stops' handles lie and
// which one the mouse is on, pressing, dragging (with a threshold, pulling a stop off the
// band and back), the selection, and the editor's own undo of whole gradients. The widget
// turns Qt's events into these calls and repaints; tests drive it headless.

#include <deque>
#include <random>

#include "core/mathlib/colorgradient.h"

// Where the band of the editor lies, in pixels. Position 0 is at m_nLeft and 1 at m_nRight;
// the band runs from the strip's top to the handles' bottom.
struct ColorGradientBand_t
{
	int m_nLeft = 0;
	int m_nRight = 0;
	int m_nTop = 0;
	int m_nHandleTop = 0; // the strip's bottom
	int m_nHandleWidth = 10;
	int m_nHandleHeight = 10;

	int GetBottom() const { return m_nHandleTop + m_nHandleHeight; }
	// The x of a position.
	int PixelOf( float flPosition ) const;
};

// A handle's rectangle grown by this much on every side is where it is hit.
constexpr int COLOR_GRADIENT_HANDLE_HIT_MARGIN = 4;

// The stop whose grown handle holds the point and whose handle centre is nearest
// (Manhattan; the lower index on a tie); -1 for none.
int HitTestColorGradientStops( const CColorGradient &gradient, const ColorGradientBand_t &band, int x, int y );
// The position under x, clamped to 0..1. A band without width answers 1 at or beyond its
// edge and 0 before it.
float ColorGradientPositionAt( const ColorGradientBand_t &band, int x );
bool IsInColorGradientBand( const ColorGradientBand_t &band, int x, int y );

// A new random gradient of two or three stops over black; alpha varies only with bAlpha.
void RandomizeColorGradient( CColorGradient *pGradient, bool bAlpha, std::mt19937 &random );

// Undo and redo of whole gradients. The limit is the most undo steps kept; -1 keeps all.
class CColorGradientEditHistory
{
public:
	void SetLimit( int nLimit );
	int GetLimit() const { return m_nLimit; }
	// Before a change: the gradient as it was goes on the undo list and redo is forgotten.
	void Push( const CColorGradient &before );
	// Swap the current gradient with the last of the undo (redo) list; false when empty.
	bool Undo( CColorGradient *pCurrent );
	bool Redo( CColorGradient *pCurrent );
	int GetUndoCount() const { return int( m_Undo.size() ); }
	int GetRedoCount() const { return int( m_Redo.size() ); }
	void Clear();

private:
	int m_nLimit = -1;
	std::deque<CColorGradient> m_Undo;
	std::deque<CColorGradient> m_Redo;
};

class CColorGradientEditModel
{
public:
	// What a call did to the gradient: nothing, a step of a change still under way (a drag),
	// or a finished change.
	enum Result_t
	{
		EDIT_NONE,
		EDIT_CHANGING,
		EDIT_FINISHED,
	};

	// A drag moves nothing until the mouse has gone this far from the press (Manhattan).
	static constexpr int DRAG_THRESHOLD = 5;
	// Farther than this above or below the band, a dragged stop is taken out.
	static constexpr int TAKE_OUT_DISTANCE = 10;

	// Replaces the gradient; the selection and any drag end. Undo keeps its lists.
	void SetGradient( const CColorGradient &gradient, bool bAlpha );
	const CColorGradient &GetGradient() const { return m_Gradient; }
	bool HasAlpha() const { return m_bAlpha; }

	void SetBand( const ColorGradientBand_t &band ) { m_Band = band; }
	const ColorGradientBand_t &GetBand() const { return m_Band; }

	int GetSelectedStop() const { return m_nSelectedStop; }
	void SetSelectedStop( int nStop ) { m_nSelectedStop = m_Gradient.IsValidIndex( nStop ) ? nStop : -1; }
	int GetStopUnderMouse() const { return m_nStopUnderMouse; }
	bool IsMouseInBand() const { return m_bMouseInBand; }
	float GetPositionUnderMouse() const { return m_flPositionUnderMouse; }

	// The mouse.
	Result_t LeftPress( int x, int y );
	Result_t MiddlePress( int x, int y );
	Result_t MouseMove( int x, int y );
	Result_t LeftRelease();
	Result_t Leave();
	bool IsDragging() const { return m_bDragging; }
	bool HasDragMoved() const { return m_bDragMoved; }
	bool IsStopTakenOut() const { return m_bTakenOut; }

	// Edits, each one undo step and a finished change; EDIT_NONE when there was nothing to do.
	Result_t DeleteSelectedStop();
	Result_t MoveSelectedStop( float flPosition );
	Result_t Clear();
	Result_t Reverse();
	Result_t Randomize( std::mt19937 &random );
	Result_t Replace( const CColorGradient &gradient );
	// A colour from the footer's swatch: only the first of a run of changes is an undo step.
	Result_t SetSelectedStopColor( Color color, bool bFirstOfRun );

	// False when there is nothing to undo (redo). The selection is cleared.
	bool Undo();
	bool Redo();
	// Clears the selection; false when there was none.
	bool ClearSelection();

	CColorGradientEditHistory &GetHistory() { return m_History; }
	const CColorGradientEditHistory &GetHistory() const { return m_History; }

private:
	void Snapshot() { m_History.Push( m_Gradient ); }
	void UpdateHover( int x, int y );
	void EndDrag();

	CColorGradient m_Gradient;
	bool m_bAlpha = false;
	ColorGradientBand_t m_Band;
	int m_nSelectedStop = -1;
	int m_nStopUnderMouse = -1;
	bool m_bMouseInBand = false;
	float m_flPositionUnderMouse = 0.0f;

	// The drag, from press to release.
	bool m_bDragging = false;
	bool m_bDragMoved = false;
	bool m_bAddedOnPress = false;
	bool m_bTakenOut = false;
	Color m_TakenOutColor;
	int m_nDragStartX = 0;
	int m_nDragStartY = 0;
	float m_flDragStartPosition = 0.0f;

	CColorGradientEditHistory m_History;
};
