#include "cli/user_settings.h"

#include <ostream>
#include <string>

#include "base/dialogs.h"
#include "base/file_io.h"
#include "cadenv/portable_registry.h"
#include "cli/console_dialogs.h"

namespace sw::cli {
namespace {

std::string Utf8(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

void Tell(std::ostream& err, std::string text) {
  err << FormatMessageLine(
             {std::move(text), "Filfel", base::MessageIcon::kCritical, base::MessageButtons::kOk})
      << '\n';
}

}  // namespace

std::unique_ptr<cadenv::Registry> OpenUserSettings(std::ostream& err) {
  auto registry = cadenv::OpenUserRegistry();
  auto* file = dynamic_cast<cadenv::PortableRegistry*>(registry.get());
  if (!file) return registry;
  const cadenv::RegParseResult read = file->ReadNow();
  if (read.status == cadenv::RegParseStatus::kUnreadable) {
    std::error_code error;
    const bool regular = !std::filesystem::exists(file->FilePath(), error) ||
                         std::filesystem::is_regular_file(file->FilePath(), error);
    Tell(err, regular ? "Kan ej läsa inställningsfilen " + Utf8(file->FilePath()) + "."
                      : "Kan ej läsa inställningsfilen " + Utf8(file->FilePath()) +
                            " eftersom det inte är någon vanlig fil.");
    return nullptr;
  }
  file->OnBrokenFileKept([&err, path = file->FilePath(), read](const std::filesystem::path& backup) {
    std::string text = "Inställningsfilen " + Utf8(path) + " gick inte att läsa";
    if (read.line > 0) {
      text += " (rad " + std::to_string(read.line) + ": " + read.description + ")";
    } else if (!read.description.empty()) {
      text += " (" + read.description + ")";
    }
    text += ". Den har sparats som " + Utf8(backup) + " och en ny inställningsfil skrivs.";
    Tell(err, std::move(text));
  });
  return registry;
}

}  // namespace sw::cli
