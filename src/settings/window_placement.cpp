#include "settings/window_placement.h"

#include <charconv>
#include <cmath>

#include "base/strings.h"

namespace sw::settings {
namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

float ReadNumber(Settings& settings, std::string_view key, std::string_view defaultText,
                 std::string_view section) {
  return ParseSettingNumber(settings.GetAppSetting(key, defaultText, section));
}

WindowState ToWindowState(float number) {
  const int state = static_cast<int>(number);
  if (state == 1) return WindowState::kMinimised;
  if (state == 2) return WindowState::kMaximised;
  return WindowState::kNormal;
}

}  // namespace

float ParseSettingNumber(std::string_view text) {
  text = base::TrimBlanks(text);
  std::string number;
  std::size_t i = 0;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
    if (text[i] == '-') number.push_back('-');
    ++i;
  }
  std::size_t digits = 0;
  for (; i < text.size() && IsDigit(text[i]); ++i, ++digits) number.push_back(text[i]);
  if (i < text.size() && (text[i] == '.' || text[i] == ',')) {
    number.push_back('.');
    for (++i; i < text.size() && IsDigit(text[i]); ++i, ++digits) number.push_back(text[i]);
  }
  if (digits == 0) return 0;
  if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
    std::string exponent = "e";
    std::size_t j = i + 1;
    if (j < text.size() && (text[j] == '+' || text[j] == '-')) exponent.push_back(text[j++]);
    const std::size_t firstDigit = j;
    while (j < text.size() && IsDigit(text[j])) exponent.push_back(text[j++]);
    if (j > firstDigit) number += exponent;
  }
  float value = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  if (error != std::errc() || !std::isfinite(value)) return 0;
  return value;
}

std::string FormatSettingNumber(float value) {
  if (!std::isfinite(value)) return "0";
  char text[64];
  const auto [end, error] = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed);
  if (error != std::errc()) return "0";
  return std::string(text, end);
}

WindowPlacement RestoreWindowPlacement(Settings& settings, std::string_view windowName, float defaultHeight,
                                       float defaultWidth, ScreenSize screen) {
  const std::string_view section = windowName;
  WindowPlacement placement;
  placement.top = ReadNumber(settings, "Top", "0", section);
  placement.left = ReadNumber(settings, "Left", "0", section);
  placement.height = ReadNumber(settings, "Height", FormatSettingNumber(defaultHeight), section);
  placement.width = ReadNumber(settings, "Width", FormatSettingNumber(defaultWidth), section);
  placement.state = ToWindowState(ReadNumber(settings, "WinState", "0", section));

  if (placement.top < 0) placement.top = 0;
  if (placement.left < 0) placement.left = 0;
  if (placement.width > screen.width) placement.width = screen.width;
  if (placement.width < defaultWidth) placement.width = defaultWidth;
  if (placement.height > screen.height) placement.height = screen.height;
  if (placement.height < defaultHeight) placement.height = defaultHeight;
  return placement;
}

void SaveWindowPlacement(Settings& settings, std::string_view windowName, const WindowPlacement& placement) {
  settings.SaveAppSetting("Top", FormatSettingNumber(placement.top), windowName);
  settings.SaveAppSetting("Left", FormatSettingNumber(placement.left), windowName);
  settings.SaveAppSetting("Height", FormatSettingNumber(placement.height), windowName);
  settings.SaveAppSetting("Width", FormatSettingNumber(placement.width), windowName);
  settings.SaveAppSetting("WinState", std::to_string(static_cast<int>(placement.state)), windowName);
}

WindowPlacement PlacementAtClose(WindowPlacement placement) {
  if (placement.state == WindowState::kMinimised) placement.state = WindowState::kNormal;
  return placement;
}

void SaveMainWindowAtClose(Settings& settings, const WindowPlacement& placement) {
  const WindowPlacement saved = PlacementAtClose(placement);
  SaveWindowPlacement(settings, kMainWindowName, saved);
  settings.SaveAppSetting("Width", FormatSettingNumber(saved.width));
  settings.SaveAppSetting("Height", FormatSettingNumber(saved.height));
  settings.SaveAppSetting("WinState", std::to_string(static_cast<int>(saved.state)));
}

}  // namespace sw::settings
