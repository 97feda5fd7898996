#pragma once
// Starting other programs: the text editor for a template's INI file and the system's default
// application for a finished workbook or a file the user wants to look at. The program never waits
// for what it starts.
//
// On Windows the INI file goes to Notepad ("NOTEPAD.EXE " and the path, a normal window with focus)
// and a workbook to whatever Windows associates with it. Elsewhere both go through xdg-open, which
// hands a text file to the desktop's text editor and a workbook to the desktop's spreadsheet program.
// Terminal editors ($VISUAL, $EDITOR) are deliberately not used: they would take over the terminal of
// a command-line run, where Notepad opens beside the program.
#include <memory>
#include <string_view>

namespace sw::base {

class ProcessLauncher {
 public:
  virtual ~ProcessLauncher() = default;
  // Opens the text file `windowsPath` for editing. False when nothing could be started.
  virtual bool EditTextFile(std::string_view windowsPath) = 0;
  // Opens `windowsPath` with the application the system associates with it.
  virtual bool OpenWithDefaultApplication(std::string_view windowsPath) = 0;
  // Starts a Windows command line as it stands (program and arguments in one text, quoted as the
  // program wants them), in a normal window with the focus. False when nothing could be started;
  // where no Windows programs run, nothing is.
  virtual bool StartCommandLine(std::string_view /*commandLine*/) { return false; }
  // Runs `commandLine` (program and arguments as Windows takes them, split at blanks elsewhere) in a
  // minimised window and waits until it has ended: the one case where the program needs the result
  // in place before it goes on. False when it could not be started or did not end with status 0.
  virtual bool RunMinimisedAndWait(std::string_view commandLine) = 0;
};

// The launcher of this platform.
std::unique_ptr<ProcessLauncher> CreateSystemProcessLauncher();

}  // namespace sw::base
