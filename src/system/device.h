// What the system routes share: the first lines of files and commands, and the mode switch.
#pragma once

#include <cstddef>
#include <string>

// The first line of a file without its line end, at most size - 1 bytes. 0, or -1 on failure (logged).
int getFileInfo(const char* path, std::string* info, std::size_t size);

// The first line of a command's output without its line feed. 0, or -1 when the command cannot start or prints nothing.
int run_cmd_first_line(const char* command, std::string& line);

// 1 when the GPIO line reads "low", else 0.
int check_GpioStatus(int gpio);
// The position of the mode switch: 0, 1 or 2; -1 when no line is active.
void get_switch_state(int& state);
