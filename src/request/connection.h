// What a connection of the web server may cost: time is given to whoever sends and reads.
#pragma once

// Gives up a peer that sends nothing of what it began for 10 s, or reads nothing of its answer for 30 s: reads and
// writes then fail. Whatever stands in front buffers both, so this is far above an honest wait.
void limit_silence(int connection);

// The peer has closed its connection: nobody waits for an answer.
bool has_left(int connection);
