// What the program does with memory that it no longer needs.
#pragma once

namespace platform {

// From here on a large block goes back to the system as soon as it is freed, as with the router's C library. Others
// learn from each large block to keep the next ones of that size: after one long log they never shrank again.
void return_large_blocks();

// Gives back what something large took in small pieces, of which some are still in use: called between requests, and
// where a long list's source is no longer needed. Does nothing as long as the heap is as small as most requests leave
// it.
void return_free_memory();

}  // namespace platform
