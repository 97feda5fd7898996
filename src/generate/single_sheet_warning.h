#pragma once
// The warning shown before a run that writes one workbook file per page ("Varning!"): OK goes on,
// Avbryt stops, and "Visa inte denna dialog nästa gång" switches the warning off for later runs.
#include "base/dialogs.h"
#include "settings/settings.h"

namespace sw::generate {

inline constexpr const char* kWarningCaption = "Varning!";
inline constexpr const char* kWarningOverwrite =
    "Om filer redan existerar med dessa namn kommer de att skrivas över utan att ytterligare kontrollfrågor "
    "ställs. Klicka Avbryt för att undvika att filer skrivs över.";
inline constexpr const char* kWarningExample =
    "Exempel: 191255-001.xlsx, 191255-002.xlsx, 191255-003.xlsx, 191255-004.xlsx, etc.";
inline constexpr const char* kWarningPageCount =
    "Det totala antalet genererade sidor beror av antal placeringar och antal rader i listan.";
inline constexpr const char* kWarningShowNoMore = "Visa inte denna dialog nästa gång";

struct WarningAnswer {
  bool accepted = false;    // OK was pressed; Avbryt or closing the window leave it false
  bool showNoMore = false;  // the "don't show again" box was ticked, whichever way the dialog closed
};

class SingleSheetWarning {
 public:
  virtual ~SingleSheetWarning() = default;
  virtual WarningAnswer Show() = 0;
};

// The warning as a plain question through Dialogs (OK / Avbryt): the command line answers it from
// --yes. It has no "don't show again" box; the window front end brings its own dialog for that.
class MessageSingleSheetWarning final : public SingleSheetWarning {
 public:
  explicit MessageSingleSheetWarning(base::Dialogs& dialogs) : dialogs_(dialogs) {}
  WarningAnswer Show() override;

 private:
  base::Dialogs& dialogs_;
};

// Shows the warning and applies what closing it means: a ticked box stores "ShowSingleSheetWarning"
// = "0". Returns whether the run may go on.
bool AskSingleSheetWarning(SingleSheetWarning& warning, settings::Settings& settings);

}  // namespace sw::generate
