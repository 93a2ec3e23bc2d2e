// Shell, file and network interface helpers. Each keeps its own result convention: callers rely on every one of them.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// --- Commands. A shell text holds constants and our own numbers only. A value that came from outside goes through
// --- os_exec, or platform/process.h, as one argument.

// Runs `command` with /bin/sh. 1 when it exited with status 0, else 0 (logged at debug priority).
int os_system(const std::string& command);

// os_system without a shell: argv[0] is looked up in PATH. True when it exited with status 0. Same messages; a missing
// tool counts as exit status 127, as a shell would tell.
bool os_exec(const std::vector<std::string>& argv);

// Runs `command` with /bin/sh and copies the first line of its output (at most 255 bytes, cut at CR or LF), padded
// with NULs to `out_size`. A line longer than `out_size` leaves `out` as it was, a line of exactly `out_size` bytes is
// left without a terminator. 0 when the command could be started, even when it printed nothing (`out` untouched).
int execute_cmd(const char* command, char* out, std::size_t out_size);

// --- UCI options through the `uci` command.

// At most 31 bytes of the option, without a terminator: clear `out` first. 0 also when the option does not exist
// (`out` untouched), -1 on a missing argument or a failed start.
int get_uci_option_value(const char* package, const char* section, const char* option, char* out, std::size_t length);
// "uci set", then "uci commit"; their results are not looked at. 0, or -1 on a missing argument.
int set_uci_option_value(const char* package, const char* section, const char* option, const char* value);
// "uci delete", then "uci commit"; as above.
int del_uci_option_value(const char* package, const char* section, const char* option);

// --- Small files.

// The integer at the start of the file, or -1.
int read_value_from_file(const char* path);
// The first blank-delimited word of the file, at most size - 1 bytes; nullopt when there is none.
std::optional<std::string> read_strvalue_from_file(const char* path, std::size_t size);

// --- Network interfaces. The names are our own constants or what the kernel calls them.

// BSSID of the access point that a station interface is joined to, upper case; "" when it is not joined, "0000000000"
// when `iw` could not be started.
std::string get_link_bssid(const char* ifname);
// 17 characters and a NUL into `out` (at least 18 bytes). 0, or -1 with `out` untouched.
int get_interface_macaddr(const char* ifname, char* out);
// The same for one link of an MLD, e.g. ("link0", out, "mld7").
int get_mld_link_macaddr(const char* link, char* out, const char* mld_ifname);

// Cuts at the first CR or LF. Returns the length up to the first LF when there was nothing to cut before it (see the
// unit test for the cases that callers meet), else the length before the cut.
std::size_t trim_line_end(char* text);
// `text` without what begins at its first CR or LF.
std::string_view without_line_end(std::string_view text);
