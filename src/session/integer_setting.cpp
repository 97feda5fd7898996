#include "session/integer_setting.h"

#include <string>

#include "templates/template_ini.h"

namespace sw::session {

int IntegerSetting(settings::Settings& settings, std::string_view key, std::string_view defaultValue) {
  int value = 0;
  if (templates::ParseIniNumber(settings.GetAppSetting(key, defaultValue), value)) return value;
  if (templates::ParseIniNumber(defaultValue, value)) return value;
  return 0;
}

std::string PadSheetNumber(std::string text, int length) {
  if (length > 0 && text.size() < static_cast<std::size_t>(length)) {
    text.insert(0, static_cast<std::size_t>(length) - text.size(), '0');
  }
  return text;
}

}  // namespace sw::session
