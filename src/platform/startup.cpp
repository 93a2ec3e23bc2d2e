// Standard descriptors, PATH, umask, the log's name, and the packages' folder.
#include "platform/startup.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

#include "platform/child_umask.h"
#include "platform/log.h"

namespace platform {

void open_standard_descriptors() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    // The lowest free number: this one.
    if (fcntl(descriptor, F_GETFD) < 0 && open("/dev/null", O_RDWR) < 0) return;
  }
}

void provide_path() {
  const char* path = std::getenv("PATH");
  if (path == nullptr || *path == '\0') setenv("PATH", "/usr/sbin:/usr/bin:/sbin:/bin", 1);
}

void keep_own_files_private() { set_child_umask(umask(077)); }

void sign_messages() { openlog(program_invocation_short_name, 0, LOG_USER); }

void tell_of_unwritable_packages() {
  constexpr const char* kPackages = "/etc/config";
  if (faccessat(AT_FDCWD, kPackages, W_OK | X_OK, AT_EACCESS) == 0) return;
  log_error("user %u cannot write %s (%s): no setting will be stored\n", static_cast<unsigned int>(geteuid()),
            kPackages, std::strerror(errno));
}

}  // namespace platform
