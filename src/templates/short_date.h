#pragma once
// Today's date in the user's short-date form, which "." in a [Common] default or a field box becomes.
#include <functional>
#include <string>

namespace sw::templates {

using ShortDateSource = std::function<std::string()>;

// The local date as the Swedish short-date form writes it (yyyy-mm-dd), the form the program's users
// have; the GUI may hand the readers a source that asks the system for the user's own format.
std::string TodayShortDate();

}  // namespace sw::templates
