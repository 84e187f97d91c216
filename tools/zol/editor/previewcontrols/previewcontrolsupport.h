#pragma once
// What the rows of the preview controls share: icons that may be missing, the look of the
// selected row, and the seam through which a control point's row asks to convert the
// point into a variable.

#include <functional>

class CZolSession;
class QIcon;
class QWidget;

// The icon of an image path ("game:..."); a null icon when the file isn't there.
QIcon PreviewControlsIcon( const char *pPath );
// Grey text and buttons and a bold font for the selected row; the panel's look otherwise.
void ApplyRowHighlight( QWidget *pRow, bool bHighlighted );

// Converts control point nPoint of a session into a variable (the conversion tool
// installs it); without one the rows' menu entry stays disabled.
using ControlPointConversionFn_t = std::function<void( CZolSession *pSession, int nPoint )>;
void SetControlPointConversionHandler( ControlPointConversionFn_t fn );
const ControlPointConversionFn_t &GetControlPointConversionHandler();
