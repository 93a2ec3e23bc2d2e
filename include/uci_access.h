// The UCI access layer. Each call does one thing, on the session of the calling thread (platform/uci_session.h): reads
// come from the loaded package, changes are committed before anybody else could look. Without a session a call has one
// for itself alone, and commits before it returns.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

// Common to the ten functions:
// - `confdir`: folder of the packages, e.g. "/etc/config"; nullptr for libuci's default, which is the same.
// - A section is a name ("wan") or a position ("@system[0]", "@redirect[-1]").
// - The address ("package.section.option=value") holds at most kUciAddressMax bytes; what does not fit is cut off
//   silently, value included: other daemons of the platform rely on the same bound.
// - The result is 0 for success and 1 for any failure, which is logged once. "Success" of a change means that it was
//   made: a commit that fails later is logged, the result stays 0.
// - Where memory ends, std::bad_alloc is thrown once that is logged: a package that could not be read or changed for
//   want of it is no package without the option. What the session has not committed is then dropped.
// - Safe from any thread; calls are not serialised against each other.
inline constexpr std::size_t kUciAddressMax = 254;

unsigned int UciCheckSection(const char* confdir, const char* package, const char* section);

// Creates the named section, or retypes it. The type comes before the name.
unsigned int UciCreatSection(const char* confdir, const char* package, const char* type, const char* name);

// Appends an unnamed section, from then on reachable as "@type[-1]".
unsigned int UciCreateAnonymousSection(const char* confdir, const char* package, const char* type);

// 1 when there is no such section.
unsigned int UciDelSection(const char* confdir, const char* package, const char* section);

// Creates or replaces. An empty value deletes the option, as libuci defines, and succeeds.
unsigned int UciSetOption(const char* confdir, const char* package, const char* section, const char* option,
                          const char* value);

// Copies at most size - 1 bytes and a NUL. On failure (missing option, list option) `out` stays as it was.
unsigned int UciGetOption(const char* confdir, const char* package, const char* section, const char* option, char* out,
                          std::size_t size);

// 1 when there is no such option.
unsigned int UciDelOption(const char* confdir, const char* package, const char* section, const char* option);

unsigned int UciAddList(const char* confdir, const char* package, const char* section, const char* option,
                        const char* value);

// Removes every element equal to `value`.
unsigned int UciDelList(const char* confdir, const char* package, const char* section, const char* option,
                        const char* value);

// Copies up to `max_count` elements into slots of `element_size` bytes that begin at `out`. An element that fits is
// NUL-terminated; a longer one fills its slot without a terminator. `count` may be nullptr.
unsigned int UciGetlist(const char* confdir, const char* package, const char* section, const char* option, char* out,
                        std::size_t element_size, std::size_t max_count, std::size_t* count);

// The number of sections of that type, named and unnamed; nullopt when the package cannot be loaded.
std::optional<int> uci_count_sections(const char* package, const char* type);

// UciGetOption into an owning text of at most size - 1 bytes (size as the buffer of the C call), never cut inside a
// UTF-8 character; nullopt on failure.
std::optional<std::string> uci_read(const char* package, const char* section, const char* option, std::size_t size);

// uci_read, with `fallback` in place of a failure.
std::string uci_read_or(const char* package, const char* section, const char* option, std::size_t size,
                        const char* fallback);

// UciGetlist into owning texts of at most element_size bytes each, cut in the same way; nullopt on failure.
std::optional<std::vector<std::string>> uci_read_list(const char* package, const char* section, const char* option,
                                                      std::size_t element_size, std::size_t max_count);
