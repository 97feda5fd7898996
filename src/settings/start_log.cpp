#include "settings/start_log.h"

#include <ctime>
#include <fstream>
#include <string>

#include "base/environment.h"
#include "base/program_folder.h"

namespace sw::settings {
namespace {

bool SwitchedOn(const base::Environment& environment) {
  const auto value = environment.Get(kStartLogVariable);
  return value && !value->empty();
}

std::string Now() {
  const std::time_t now = std::time(nullptr);
  char text[32] = "";
  if (const std::tm* local = std::localtime(&now))
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", local);
  return text;
}

}  // namespace

StartLog::StartLog(const base::Environment& environment) : StartLog(environment, base::ProgramFolder()) {}

StartLog::StartLog(const base::Environment& environment, std::filesystem::path folder)
    : enabled_(SwitchedOn(environment)), folder_(std::move(folder)) {}

bool StartLog::WriteStartLog(std::string_view message, bool startNewFile) const {
  if (!enabled_) return true;
  std::ofstream out(FilePath(), std::ios::binary | (startNewFile ? std::ios::trunc : std::ios::app));
  if (!out) return false;
  std::string line = Now();
  line += '\t';
  line += message;
  line += "\r\n";
  out.write(line.data(), static_cast<std::streamsize>(line.size()));
  out.close();
  return !out.fail();
}

}  // namespace sw::settings
