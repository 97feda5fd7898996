#pragma once
// Paths as the program builds them: Windows text, joined with "\" ("C:\Mallar" + "\" + "PLAN.XLS").
// On Windows such a text is used as it stands. Elsewhere the resolver finds the file Windows would
// find: "\" and "/" both separate folders, and a name that does not exist as spelled matches an entry
// of its folder that differs only in case. The texts the program shows keep their own spelling; only
// file-system calls go through the resolver.
//
// Drive letters: "C:\x\y" resolves below the host folder mapped to drive C (MapDrive), so tests and
// the command line can stand a folder in for a Windows drive. An unmapped drive prefix stays a plain
// path component ("C:/x/y", relative to the working folder), which normally does not exist.
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace sw::base {

class WindowsPathResolver {
 public:
  // Drive `letter` (either case) stands for `folder`; an empty folder removes the mapping.
  void MapDrive(char letter, std::filesystem::path folder);

  // The host path for a Windows path text (UTF-8). Never throws; a part that cannot be found is kept
  // as spelled, so the result then names a file that does not exist.
  std::filesystem::path Resolve(std::string_view windowsPath) const;

 private:
  std::map<char, std::filesystem::path> drives_;  // upper-case letter -> host folder
};

// While one lives, resolvers read each folder at most once when they look for a name under another
// case: a run that saves page after page into one folder would otherwise read the whole folder for
// every page. Meant for the length of one run: the names the run writes itself are found as spelled,
// but a file another program adds meanwhile under another case than asked for is not seen.
class FolderListingCache {
 public:
  FolderListingCache();
  ~FolderListingCache();
  FolderListingCache(const FolderListingCache&) = delete;
  FolderListingCache& operator=(const FolderListingCache&) = delete;
};

// The process-wide resolver every file-system call of the core uses.
WindowsPathResolver& WindowsPaths();

// Shorthands through WindowsPaths().
std::filesystem::path ResolveWindowsPath(std::string_view windowsPath);
// A path as the user is shown it: where the file is on this machine, with this platform's separators
// (a folder and a name joined with "\" read "folder/name" on Linux), UTF-8.
std::string DisplayPath(std::string_view windowsPath);
bool WindowsFileExists(std::string_view windowsPath);    // a file (not a folder) is there
bool WindowsFolderExists(std::string_view windowsPath);  // a folder is there

// The names (UTF-8) of the regular files in a folder, in name order ignoring case, as the Windows file
// list controls show them. A missing folder lists nothing.
std::vector<std::string> ListFolderFiles(std::string_view windowsFolder);

}  // namespace sw::base
