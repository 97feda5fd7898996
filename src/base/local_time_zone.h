#pragma once
// The zip library turns every entry's time stamp into a calendar time and back, a few dozen times per
// workbook saved. With no time zone named in the environment, the C library looks at the system's
// zone file again on each of those calls (a file-system lookup each); a single-sheet run saves a
// workbook per page and would make thousands of them.
namespace sw::base {

// Names the system's own time zone for the rest of the process where none is named, so that it is
// read once. Times come out as before. Called once, at the start of a program.
void ReadLocalTimeZoneOnce();

}  // namespace sw::base
