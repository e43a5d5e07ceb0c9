// VXColorScheme_UNT.h: two colours of the whole application: the grounds of what can't be written, and of what may not
// be seen or used.
//
// Both are worked out from the colour that the person at the screen has chosen for windows, so that they can be told
// from it in any scheme: a shade of it where it is a colour, else a shade of the controls' face. On a display with
// palettes (8 bits a pixel or fewer) they are the system colours of a button's face and shadow.
//
//   canvas.Brush().SetColor(isReadOnly ? GetApplicationReadOnlyColor() : clWindow);
//
//   SetSystemColors(DarkSystemColors());
//   ResetApplicationColors();              // an application says that the system colours have changed
//
// They are worked out at the first use, both at once, and kept until the reset. Main thread only.
#pragma once

#include "platform/canvas/Color.h"

namespace vx {

namespace VXColorScheme_UNT {

TColor GetApplicationReadOnlyColor();
TColor GetApplicationDeniedColor();
/// Forgets both: the next to ask finds them worked out from the system colours and the display of that moment.
void ResetApplicationColors();

}  // namespace VXColorScheme_UNT

using VXColorScheme_UNT::GetApplicationDeniedColor;
using VXColorScheme_UNT::GetApplicationReadOnlyColor;
using VXColorScheme_UNT::ResetApplicationColors;

}  // namespace vx
