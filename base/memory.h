#pragma once

// Memory that was freed stays with the process unless somebody cares: each drawing of a long run
// frees tens of megabytes, on another thread than the one before.

/// Lets all threads share two heaps, so that what one has freed serves the next. At the start of
/// the program, before it has threads.
void shareHeaps();

/// Gives what is free back to the system, which takes some milliseconds. Any thread.
void giveBackFreeMemory();
