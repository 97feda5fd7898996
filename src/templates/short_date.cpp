#include "templates/short_date.h"

#include <chrono>
#include <cstdio>
#include <ctime>

namespace sw::templates {

std::string TodayShortDate() {
  const auto now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  // The program runs on one thread, so the shared result of std::localtime is safe here.
  const std::tm* local = std::localtime(&now);
  if (!local) return {};
  char text[48];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d", local->tm_year + 1900, local->tm_mon + 1,
                local->tm_mday);
  return text;
}

}  // namespace sw::templates
