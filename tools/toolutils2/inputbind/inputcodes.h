#pragma once
// Input codes: every key, mouse button and wheel direction a binding can name. A code is
// an index into one table of 117 names; 0 is "<NONE>". Names read from files compare
// ignoring case.

#include <cstdint>

using InputCode_t = uint32_t;

enum : InputCode_t
{
	INPUT_CODE_NONE = 0,
	KEY_0 = 1, // "0" to "9" follow in order
	KEY_A = 11, // "A" to "Z" follow in order
	KEY_PAD_0 = 37, // "Num0" to "Num9"
	KEY_PAD_DIVIDE = 47,
	KEY_PAD_MULTIPLY,
	KEY_PAD_MINUS,
	KEY_PAD_PLUS,
	KEY_PAD_ENTER,
	KEY_PAD_DECIMAL,
	KEY_LBRACKET, // 53
	KEY_RBRACKET,
	KEY_SEMICOLON,
	KEY_APOSTROPHE,
	KEY_BACKQUOTE,
	KEY_COMMA,
	KEY_PERIOD,
	KEY_SLASH,
	KEY_BACKSLASH,
	KEY_MINUS,
	KEY_EQUAL,
	KEY_ENTER, // 64
	KEY_SPACE,
	KEY_BACKSPACE,
	KEY_TAB,
	KEY_CAPSLOCK,
	KEY_NUMLOCK,
	KEY_ESCAPE,
	KEY_SCROLLLOCK,
	KEY_INSERT,
	KEY_DELETE,
	KEY_HOME,
	KEY_END,
	KEY_PAGEUP,
	KEY_PAGEDOWN,
	KEY_BREAK,
	KEY_SHIFT, // 79
	KEY_ALT,
	KEY_CTRL,
	KEY_WIN,
	KEY_APP,
	KEY_UP, // 84
	KEY_LEFT,
	KEY_DOWN,
	KEY_RIGHT,
	KEY_F1, // 88, "F1" to "F12"
	KEY_CAPSLOCKTOGGLE = 100,
	KEY_NUMLOCKTOGGLE,
	KEY_SCROLLLOCKTOGGLE,
	MOUSE_LEFT, // 103
	MOUSE_RIGHT,
	MOUSE_MIDDLE,
	MOUSE_4,
	MOUSE_5,
	MOUSE_LEFT_DOUBLECLICK, // 108
	MOUSE_RIGHT_DOUBLECLICK,
	MOUSE_MIDDLE_DOUBLECLICK,
	MOUSE_4_DOUBLECLICK,
	MOUSE_5_DOUBLECLICK,
	MOUSE_WHEEL_UP, // 113
	MOUSE_WHEEL_DOWN,
	MOUSE_WHEEL_LEFT,
	MOUSE_WHEEL_RIGHT,
	INPUT_CODE_COUNT // 117
};

// The code of a name ("ctrl", "F5", "LMouse"), ignoring case; INPUT_CODE_NONE when the
// name is not in the table (and for "<NONE>" itself).
InputCode_t InputCodeFromName( const char *pName );
// The table's name of a code ("Ctrl"); "<NONE>" for a code outside the table.
const char *InputCodeName( InputCode_t nCode );

// Buttons, double clicks and the wheel.
bool InputCodeIsMouse( InputCode_t nCode );
// The double click code of a mouse button, INPUT_CODE_NONE for any other code.
InputCode_t InputCodeDoubleClickOf( InputCode_t nButton );
