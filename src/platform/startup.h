// What the process needs before it does anything else, whatever started it.
#pragma once

namespace platform {

// Opens on /dev/null what is closed of the descriptors 0 to 2: the next socket would take its number, and traces and
// the output of tools would go into a client's answer.
void open_standard_descriptors();

// Where the environment has no PATH, the one of a router: a shell has a default of its own, a started tool has none.
void provide_path();

// From here on, what the program itself makes is its user's alone, unless a mode is asked for. Its children keep the
// umask that it was started with: what the platform's tools make is read by daemons that are nobody in particular.
void keep_own_files_private();

// The log's messages bear the program's name, which glibc does by itself, and musl, the C library of routers, does not.
void sign_messages();

// Tells the log when the effective user cannot write the packages: every change would be lost.
void tell_of_unwritable_packages();

}  // namespace platform
