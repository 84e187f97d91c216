#pragma once
// Translation of Qt's keys and mouse buttons into input codes: a plain table.

#include <Qt>

#include "tools/toolutils2/inputbind/inputcodes.h"

// The code of a Qt key; keypad keys (Qt::KeypadModifier) map to the "Num" codes.
// INPUT_CODE_NONE for a key the table doesn't know.
InputCode_t InputCodeFromQtKey( int nQtKey, Qt::KeyboardModifiers modifiers );
InputCode_t InputCodeFromQtButton( Qt::MouseButton eButton );
// Up, down, left or right from a wheel event's angle delta; none for a zero delta.
InputCode_t InputCodeFromWheelDelta( int nDeltaX, int nDeltaY );
