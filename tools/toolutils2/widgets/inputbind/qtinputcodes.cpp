#include "tools/toolutils2/widgets/inputbind/qtinputcodes.h"

namespace
{
struct QtKeyCode_t
{
	int m_nQtKey;
	InputCode_t m_nCode;
};

const QtKeyCode_t s_QtKeyTable[] = {
	{ Qt::Key_BracketLeft, KEY_LBRACKET },
	{ Qt::Key_BracketRight, KEY_RBRACKET },
	{ Qt::Key_Semicolon, KEY_SEMICOLON },
	{ Qt::Key_Apostrophe, KEY_APOSTROPHE },
	{ Qt::Key_QuoteLeft, KEY_BACKQUOTE },
	{ Qt::Key_Comma, KEY_COMMA },
	{ Qt::Key_Period, KEY_PERIOD },
	{ Qt::Key_Slash, KEY_SLASH },
	{ Qt::Key_Backslash, KEY_BACKSLASH },
	{ Qt::Key_Minus, KEY_MINUS },
	{ Qt::Key_Equal, KEY_EQUAL },
	{ Qt::Key_Return, KEY_ENTER },
	{ Qt::Key_Enter, KEY_ENTER },
	{ Qt::Key_Space, KEY_SPACE },
	{ Qt::Key_Backspace, KEY_BACKSPACE },
	{ Qt::Key_Tab, KEY_TAB },
	{ Qt::Key_Backtab, KEY_TAB },
	{ Qt::Key_CapsLock, KEY_CAPSLOCK },
	{ Qt::Key_NumLock, KEY_NUMLOCK },
	{ Qt::Key_Escape, KEY_ESCAPE },
	{ Qt::Key_ScrollLock, KEY_SCROLLLOCK },
	{ Qt::Key_Insert, KEY_INSERT },
	{ Qt::Key_Delete, KEY_DELETE },
	{ Qt::Key_Home, KEY_HOME },
	{ Qt::Key_End, KEY_END },
	{ Qt::Key_PageUp, KEY_PAGEUP },
	{ Qt::Key_PageDown, KEY_PAGEDOWN },
	{ Qt::Key_Pause, KEY_BREAK },
	{ Qt::Key_Shift, KEY_SHIFT },
	{ Qt::Key_Alt, KEY_ALT },
	{ Qt::Key_AltGr, KEY_ALT },
	{ Qt::Key_Control, KEY_CTRL },
	{ Qt::Key_Meta, KEY_WIN },
	{ Qt::Key_Super_L, KEY_WIN },
	{ Qt::Key_Super_R, KEY_WIN },
	{ Qt::Key_Menu, KEY_APP },
	{ Qt::Key_Up, KEY_UP },
	{ Qt::Key_Left, KEY_LEFT },
	{ Qt::Key_Down, KEY_DOWN },
	{ Qt::Key_Right, KEY_RIGHT },
};

// Keypad keys arrive as the plain key with the keypad modifier.
const QtKeyCode_t s_QtKeypadTable[] = {
	{ Qt::Key_Slash, KEY_PAD_DIVIDE },
	{ Qt::Key_Asterisk, KEY_PAD_MULTIPLY },
	{ Qt::Key_Minus, KEY_PAD_MINUS },
	{ Qt::Key_Plus, KEY_PAD_PLUS },
	{ Qt::Key_Enter, KEY_PAD_ENTER },
	{ Qt::Key_Period, KEY_PAD_DECIMAL },
	{ Qt::Key_Comma, KEY_PAD_DECIMAL },
};
} // namespace

InputCode_t InputCodeFromQtKey( int nQtKey, Qt::KeyboardModifiers modifiers )
{
	if ( modifiers & Qt::KeypadModifier )
	{
		if ( nQtKey >= Qt::Key_0 && nQtKey <= Qt::Key_9 )
			return KEY_PAD_0 + InputCode_t( nQtKey - Qt::Key_0 );
		for ( const QtKeyCode_t &entry : s_QtKeypadTable )
		{
			if ( entry.m_nQtKey == nQtKey )
				return entry.m_nCode;
		}
	}
	if ( nQtKey >= Qt::Key_0 && nQtKey <= Qt::Key_9 )
		return KEY_0 + InputCode_t( nQtKey - Qt::Key_0 );
	if ( nQtKey >= Qt::Key_A && nQtKey <= Qt::Key_Z )
		return KEY_A + InputCode_t( nQtKey - Qt::Key_A );
	if ( nQtKey >= Qt::Key_F1 && nQtKey <= Qt::Key_F12 )
		return KEY_F1 + InputCode_t( nQtKey - Qt::Key_F1 );
	for ( const QtKeyCode_t &entry : s_QtKeyTable )
	{
		if ( entry.m_nQtKey == nQtKey )
			return entry.m_nCode;
	}
	return INPUT_CODE_NONE;
}

InputCode_t InputCodeFromQtButton( Qt::MouseButton eButton )
{
	switch ( eButton )
	{
	case Qt::LeftButton:
		return MOUSE_LEFT;
	case Qt::RightButton:
		return MOUSE_RIGHT;
	case Qt::MiddleButton:
		return MOUSE_MIDDLE;
	case Qt::BackButton:
		return MOUSE_4;
	case Qt::ForwardButton:
		return MOUSE_5;
	default:
		return INPUT_CODE_NONE;
	}
}

InputCode_t InputCodeFromWheelDelta( int nDeltaX, int nDeltaY )
{
	if ( nDeltaY > 0 )
		return MOUSE_WHEEL_UP;
	if ( nDeltaY < 0 )
		return MOUSE_WHEEL_DOWN;
	if ( nDeltaX > 0 )
		return MOUSE_WHEEL_LEFT;
	if ( nDeltaX < 0 )
		return MOUSE_WHEEL_RIGHT;
	return INPUT_CODE_NONE;
}
