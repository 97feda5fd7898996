#pragma once
// Where the main window keeps the layout of its toolbars (positions, docking, visibility) between runs:
// one text value per window in the settings subkey "Layout". Earlier versions kept it as the value
// "Layout" directly under the settings key; that value is still read until the first save replaces it.
#include <string>
#include <string_view>

#include "settings/settings.h"

namespace sw::session {

inline constexpr std::string_view kLayoutSection = "Layout";

// The saved layout text of `windowName`, "" when none was saved.
std::string LoadToolbarLayout(settings::Settings& settings, std::string_view windowName);
void SaveToolbarLayout(settings::Settings& settings, std::string_view windowName, std::string_view layout);
// Every stored layout gone, the old single value included: the next start shows the toolbars as built.
void ForgetToolbarLayout(settings::Settings& settings, std::string_view windowName);

}  // namespace sw::session
