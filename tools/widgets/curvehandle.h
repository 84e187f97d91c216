#pragma once
// A handle of the curve editor on screen: a key, or one of the two tangent handles of the
// selected key. Handles are made anew from the curve after every change.

#include <QPointF>

struct ZolCurveHandle
{
	enum Side_t
	{
		SIDE_KEY = -1,
		SIDE_INCOMING = 0,
		SIDE_OUTGOING = 1,
	};

	QPointF m_Position; // widget pixels
	float m_flRadius = 0.0f; // hit radius in pixels
	int m_nKey = -1;     // into the curve's keys
	int m_nSide = SIDE_KEY;
	bool m_bHovered = false;
	bool m_bVisible = true;
	bool m_bActive = true; // reacts to the mouse
	bool m_bMirrored = false; // one of a pair of a free and a mirrored tangent
};
