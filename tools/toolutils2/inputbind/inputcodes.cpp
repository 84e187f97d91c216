#include "tools/toolutils2/inputbind/inputcodes.h"

#include "core/text/strtools.h"

static const char *const s_pInputCodeNames[ INPUT_CODE_COUNT ] = {
	"<NONE>",
	"0", "1", "2", "3", "4", "5", "6", "7", "8", "9",
	"A", "B", "C", "D", "E", "F", "G", "H", "I", "J", "K", "L", "M",
	"N", "O", "P", "Q", "R", "S", "T", "U", "V", "W", "X", "Y", "Z",
	"Num0", "Num1", "Num2", "Num3", "Num4", "Num5", "Num6", "Num7", "Num8", "Num9",
	"NumDiv", "NumMul", "NumSub", "NumAdd", "NumEnter", "NumDec",
	"[", "]", ";", "'", "`", ",", ".", "/", "\\", "-", "=",
	"Enter", "Space", "Backspace", "Tab", "Caps", "Num", "Esc", "ScrLk", "Ins", "Del",
	"Home", "End", "PgUp", "PgDn", "Break",
	"Shift", "Alt", "Ctrl", "Win", "App",
	"Up", "Left", "Down", "Right",
	"F1", "F2", "F3", "F4", "F5", "F6", "F7", "F8", "F9", "F10", "F11", "F12",
	"CapToggle", "NumToggle", "ScrToggle",
	"LMouse", "RMouse", "MMouse", "Mouse4", "Mouse5",
	"LMouseDoubleClick", "RMouseDoubleClick", "MMouseDoubleClick", "Mouse4DoubleClick", "Mouse5DoubleClick",
	"MWheelUp", "MWheelDn", "MWheelLeft", "MWheelRight",
};

InputCode_t InputCodeFromName( const char *pName )
{
	if ( !pName || !*pName )
		return INPUT_CODE_NONE;
	for ( InputCode_t nCode = 1; nCode < INPUT_CODE_COUNT; ++nCode )
	{
		if ( !V_stricmp_fast( s_pInputCodeNames[ nCode ], pName ) )
			return nCode;
	}
	return INPUT_CODE_NONE;
}

const char *InputCodeName( InputCode_t nCode )
{
	return nCode < INPUT_CODE_COUNT ? s_pInputCodeNames[ nCode ] : s_pInputCodeNames[ INPUT_CODE_NONE ];
}

bool InputCodeIsMouse( InputCode_t nCode )
{
	return nCode >= MOUSE_LEFT && nCode <= MOUSE_WHEEL_RIGHT;
}

InputCode_t InputCodeDoubleClickOf( InputCode_t nButton )
{
	if ( nButton >= MOUSE_LEFT && nButton <= MOUSE_5 )
		return nButton + ( MOUSE_LEFT_DOUBLECLICK - MOUSE_LEFT );
	return INPUT_CODE_NONE;
}
