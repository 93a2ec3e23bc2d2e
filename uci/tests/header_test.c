/* The header in plain C99 with every warning, its macros with checked casts: compiled, and linked into the units. */
#define UCI_DEBUG_TYPECAST
#include <string.h>

#include <uci.h>

/* The number of options of that name in a package; uses each macro that walks elements. */
int count_options(struct uci_package* package, const char* name);

int count_options(struct uci_package* package, const char* name) {
  struct uci_element *section = NULL, *next = NULL, *option = NULL;
  int count = 0;
  uci_foreach_element_safe(&package->sections, next, section) {
    uci_foreach_element(&uci_to_section(section)->options, option) {
      if (strcmp(uci_to_option(option)->e.name, name) == 0) ++count;
    }
  }
  return count;
}
