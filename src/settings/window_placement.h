#pragma once
// Saving and restoring a window's placement in the settings, under the section named after the window.
// Sizes and positions are in twips, as single-precision numbers.
#include <string>
#include <string_view>

#include "settings/settings.h"

namespace sw::settings {

enum class WindowState : int { kNormal = 0, kMinimised = 1, kMaximised = 2 };

struct WindowPlacement {
  float top = 0;
  float left = 0;
  float height = 0;
  float width = 0;
  WindowState state = WindowState::kNormal;

  bool operator==(const WindowPlacement&) const = default;
};

struct ScreenSize {
  float width = 0;
  float height = 0;
};

inline constexpr std::string_view kMainWindowName = "frmMain";
// The main window's default size, which is also its smallest size at restore.
inline constexpr float kMainWindowDefaultSize = 5500;

// Reads Top, Left, Height, Width and WinState (in that order) from the window's section, then keeps the
// window on the screen: a negative Top or Left becomes 0, and each size is cut to the screen and then
// raised to at least the default, so the default wins on a screen smaller than it.
WindowPlacement RestoreWindowPlacement(Settings& settings, std::string_view windowName, float defaultHeight,
                                       float defaultWidth, ScreenSize screen);

// Writes Top, Left, Height, Width and WinState, in that order, to the window's section.
void SaveWindowPlacement(Settings& settings, std::string_view windowName, const WindowPlacement& placement);

// The placement a closing window saves: a minimised window is first set to normal state, so its
// normal-state position and size (which the caller passes in `placement`) are saved with state 0.
WindowPlacement PlacementAtClose(WindowPlacement placement);

// Everything the main window saves about itself when it closes: its placement at close in its
// section, then a second copy of Width, Height and WinState at the top level (never read back).
void SaveMainWindowAtClose(Settings& settings, const WindowPlacement& placement);

// Reads a number as the settings hold it: leading blanks, an optional sign, digits with "," or "." as
// the decimal separator and an optional exponent, whatever follows ignored ("1234,5" and "1234.5" both
// read 1234.5). Text without a leading number reads as 0, as VB's Val gives.
float ParseSettingNumber(std::string_view text);

// The decimal text a number is saved as: "." as decimal separator, no exponent, as few digits as read
// back exactly ("5500", "1234.5").
std::string FormatSettingNumber(float value);

}  // namespace sw::settings
