#include "session/user_settings_file.h"

#include <filesystem>
#include <string>
#include <utility>

#include "cadenv/portable_registry.h"

namespace sw::session {
namespace {

std::string Utf8(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

base::Notice FileProblem(std::string text, base::MessageIcon icon = base::MessageIcon::kCritical) {
  return {std::move(text), "Filfel", icon};
}

}  // namespace

UserSettingsFile OpenSettingsFileAt(std::unique_ptr<cadenv::Registry> registry,
                                    std::function<void(base::Notice)> later, std::chrono::milliseconds lockWait) {
  UserSettingsFile opened{std::move(registry), {}};
  auto* file = dynamic_cast<cadenv::PortableRegistry*>(opened.registry.get());
  if (!file) return opened;
  file->SetLockWait(lockWait);
  const cadenv::RegParseResult read = file->ReadNow();
  if (read.status == cadenv::RegParseStatus::kUnreadable) {
    std::error_code error;
    const bool regular = !std::filesystem::exists(file->FilePath(), error) ||
                         std::filesystem::is_regular_file(file->FilePath(), error);
    opened.outcome.Fail(SettingsFileStatus::kUnreadable)
        .Tell(FileProblem(regular ? "Kan ej läsa inställningsfilen " + Utf8(file->FilePath()) + "."
                                  : "Kan ej läsa inställningsfilen " + Utf8(file->FilePath()) +
                                        " eftersom det inte är någon vanlig fil."));
    return opened;
  }
  file->OnBrokenFileKept([later, path = file->FilePath(), read](const std::filesystem::path& backup) {
    std::string text = "Inställningsfilen " + Utf8(path) + " gick inte att läsa";
    if (read.line > 0) {
      text += " (rad " + std::to_string(read.line) + ": " + read.description + ")";
    } else if (!read.description.empty()) {
      text += " (" + read.description + ")";
    }
    text += ". Den har sparats som " + Utf8(backup) + " och en ny inställningsfil skrivs.";
    if (later) later(FileProblem(std::move(text)));
  });
  file->OnLockTimedOut([later, path = file->FilePath()](const std::filesystem::path& lock) {
    if (later) {
      later(FileProblem("Inställningsfilen " + Utf8(path) + " är låst av ett annat program (" + Utf8(lock) +
                            "). Inställningarna sparas inte under den här körningen.",
                        base::MessageIcon::kExclamation));
    }
  });
  return opened;
}

UserSettingsFile OpenUserSettingsFile(std::function<void(base::Notice)> later, std::chrono::milliseconds lockWait) {
  return OpenSettingsFileAt(cadenv::OpenUserRegistry(), std::move(later), lockWait);
}

}  // namespace sw::session
