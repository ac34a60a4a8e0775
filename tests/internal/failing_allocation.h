// Allocations that fail on demand. The linker sends the malloc, strdup and xmalloc of the library's objects
// here.
//
// The countdown belongs to the thread, so allocations of other threads go through.

#pragma once

// The next count allocations succeed, all later ones give null.
void fail_allocation_after(int count);
void no_failing_allocations();
