#pragma once
// A run writes page after page through buffers of a few hundred kilobytes (a sheet's text, a zip
// stream's window, the package's bytes). The C library's allocator would hand each such buffer back
// to the system when it is freed and take it again for the next page, a page fault per 4 KB each
// time; on virtual machines that costs more than the page's work.
namespace sw::base {

// Lets the allocator keep freed memory for reuse instead of returning it at once. Called once, at
// the start of a program.
void KeepFreedMemoryForReuse();

// Hands the freed memory the allocator kept back to the system. After a long run (a workbook of
// hundreds of thousands of rows holds hundreds of megabytes until it is saved) the window would
// otherwise go on holding what the run used.
void GiveFreedMemoryBack();

}  // namespace sw::base
