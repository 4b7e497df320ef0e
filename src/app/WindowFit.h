#pragma once

#include <QMargins>
#include <QRect>
#include <QSize>

class QLayout;
class QWidget;

// Every top-level window of the program opens inside the usable area of its
// screen (the screen less panels and docks): at its preferred size where
// that fits, shrunk where it does not (never below the size its contents
// need, which the windows with tall contents keep small with a scroll area),
// and placed so that its whole frame, title bar included, is on the screen.
namespace WindowFit {

// Room for the window manager's title bar and borders while a window's real
// frame is not known yet (before it is first shown).
inline constexpr QMargins kFrameAllowance{8, 36, 8, 8};

// Where a window whose client area would be `wanted` goes: the same place
// and size when its frame fits `area`, otherwise shrunk to the area (down to
// `minimum`) and moved inside it, the top left corner kept in sight first.
QRect Fitted(const QRect& wanted, const QSize& minimum, const QRect& area, const QMargins& frame);

// Gives the window its preferred size, shrunk to fit its screen, and keeps
// it inside the screen each time it is shown.
void Apply(QWidget* window, const QSize& preferred);

// Lays the window out as `body` in a scroll area above the row `buttons`,
// so that on a screen too small for the body the buttons stay in view, and
// gives the window the body's natural size where that fits.
void ScrollBody(QWidget* window, QLayout* body, QLayout* buttons);

// Brings a window (shown or not) inside its screen now.
void KeepInside(QWidget* window);

} // namespace WindowFit
