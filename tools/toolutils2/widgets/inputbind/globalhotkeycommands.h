#pragma once
// The commands every window reaches: the end of every focus chain, context
// "GlobalHotkeys".

#include "tools/toolutils2/inputbind/bindtarget.h"

class CGlobalHotkeyCommands final : public IBindTarget
{
public:
	const CBindTargetDescriptorBase *GetBindTargetDescriptor() const override;

	void DebugWidgetUnderMouse();
	void DebugWidgetWithFocus();
	void DebugWidgetActiveWindow();
	// Shows the input debugger: the open one, or a new one owned by the active window.
	void ShowInputDebugger();
	// The commands of the focus chain as a filterable popup at the mouse, as the help
	// menu's "Command Filter".
	void ShowAllCommandsPopup();
};
