#pragma once
// The program's own temporary files: written beside the file they will replace, named after it, this
// program and the process that writes them ("Lista.xlsx.sheetwright-4711.tmp"), so that what a killed
// run leaves behind can be told from anything a user keeps in the folder, and removed by a later run.
#include <filesystem>
#include <string>
#include <string_view>

namespace sw::base {

// The name part added to a file's name: ".sheetwright-<process id>" and, when `serial` is not 0,
// "-<serial>", then ".tmp".
std::string OwnTempSuffix(unsigned serial = 0);

// Removes the program's temporary files in `folder` whose process no longer runs; nothing else is
// touched. Returns how many were removed.
int RemoveAbandonedTempFiles(const std::filesystem::path& folder);

// The process id in a name of the program's own temporary files; 0 when the name is not one of them.
unsigned long long OwnTempFileProcess(std::string_view fileName);

// Whether the file at `path` is named as one of this process's own temporary files (not merely as one
// of the program's: a name a user happened to give in that form belongs to no running process of ours).
bool IsThisProcessTempFile(const std::filesystem::path& path);

// The calling process's id, and whether a process with the given id runs.
unsigned long long CurrentProcessId();
bool ProcessRuns(unsigned long long processId);

}  // namespace sw::base
