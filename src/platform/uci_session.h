// A request's view of UCI: each package is read once and written once.
//
// The functions of uci_access.h work on the session of the calling thread. Reads come from the loaded package; changes
// are made in it and marked. Whatever could look at the packages meets them as they shall be: before a child, a daemon
// or a thread is started, before an answer is written, before a wait and at the session's end, what was changed is
// committed, once per package, in the order of the first change. Afterwards a package is read again when its file or
// its staged changes are no longer those that were read.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/section_cursor.h"

struct uci_context;
struct uci_package;

namespace platform {

class UciFolder;

// Becomes the calling thread's session for as long as it lives; one that was open waits meanwhile. Not to be shared
// between threads. A process that ends inside a session loses what was not committed, and nothing else.
class UciSession {
 public:
  UciSession();
  // Commits; where an exception ends the session, what was not committed is dropped, for it may be half of a change.
  ~UciSession();
  UciSession(const UciSession&) = delete;
  UciSession& operator=(const UciSession&) = delete;

  // The calling thread's innermost session; nullptr when it has none.
  static UciSession* current();

  // The context for packages in `confdir` (nullptr: libuci's default), where `package` is either not loaded or up to
  // date. nullptr when memory ends. A loan until the next call.
  uci_context* context_for(const char* confdir, const char* package);

  // For reading by position: follows the loaded packages.
  SectionCursor& cursor() { return cursor_; }

  // Remembers that the loaded `package` was changed, by the wrapper `function` at `line`, which a failed commit's
  // message names.
  void mark_changed(uci_package* package, const char* function, int line);

  // Commits what was changed. A failure is logged; the changes then stand staged, as uci_commit leaves them.
  void commit();
  // commit(), and whoever is started now may change packages: each is checked before it is used again.
  void settle();
  // commit(), and gives all loaded packages back.
  void release();

 private:
  struct Change {
    uci_context* context;
    std::string package;
    const char* function;
    int line;
  };
  UciFolder* folder_of(const std::string& confdir);

  UciSession* outer_;
  int exceptions_before_;
  std::vector<std::unique_ptr<UciFolder>> folders_;
  std::vector<Change> changes_;
  SectionCursor cursor_;
  unsigned int starts_ = 0;  // children, daemons and threads since the session began
};

// settle() and release() of the calling thread's session, if it has one: what starts something or waits calls them.
void settle_uci();
void release_uci();

}  // namespace platform
