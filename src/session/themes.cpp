#include "session/themes.h"

#include "session/integer_setting.h"

namespace sw::session {
namespace {

constexpr std::int32_t Packed(int red, int green, int blue) {
  return static_cast<std::int32_t>(red | (green << 8) | (blue << 16));
}

constexpr int kDefaultTheme = 2;
constexpr int kHighestStartTheme = 5;

}  // namespace

const std::array<ThemeEntry, 6>& Themes() {
  static const std::array<ThemeEntry, 6> themes{{
      {130, 1, "Office XP", Packed(0xE9, 0xE8, 0xE6), ThemeStyle::kFlat},           // light grey
      {131, 0, "Standard", Packed(0xD4, 0xD0, 0xC8), ThemeStyle::kClassic},         // button face
      {132, 2, "Office 2003", Packed(0x93, 0xB6, 0xEE), ThemeStyle::kFlat},         // deep blue
      {133, 3, "Normal XP", Packed(0xEC, 0xE9, 0xD8), ThemeStyle::kFlat},           // beige
      {143, 4, "Visual Studio 2005", Packed(0xF7, 0xF6, 0xF1), ThemeStyle::kFlat},  // silver-white
      {135, 6, "Office 2007", Packed(0xBF, 0xDB, 0xFF), ThemeStyle::kFlat},         // light blue
  }};
  return themes;
}

std::optional<ThemeEntry> ThemeByCommand(int commandId) {
  for (const auto& theme : Themes())
    if (theme.commandId == commandId) return theme;
  return std::nullopt;
}

std::optional<ThemeEntry> ThemeByNumber(int number) {
  for (const auto& theme : Themes())
    if (theme.number == number) return theme;
  return std::nullopt;
}

int StartTheme(settings::Settings& settings) {
  const int theme = IntegerSetting(settings, "Theme", "2");
  return theme > kHighestStartTheme ? kDefaultTheme : theme;
}

ThemeEntry ThemeOrDefault(int number) {
  if (auto theme = ThemeByNumber(number)) return *theme;
  return *ThemeByNumber(kDefaultTheme);
}

}  // namespace sw::session
