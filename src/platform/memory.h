// What the program does with memory that it no longer needs.
#pragma once

namespace platform {

// From here on a large block goes back to the system as soon as it is freed, as with the router's C library. Others
// learn from each large block to keep the next ones of that size: after one long log they never shrank again.
void return_large_blocks();

}  // namespace platform
