/* The public interface of the UCI library: libuci's names, layouts and result codes, for C99 and C++11 on. */
/* NOLINTBEGIN(bugprone-reserved-identifier,modernize-use-nullptr): names that programs know, and C has no nullptr */
#ifndef ROUTER_API_UCI_H
#define ROUTER_API_UCI_H

#include <setjmp.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

#define UCI_CONFDIR "/etc/config"
#define UCI_SAVEDIR "/tmp/.uci"
#define UCI_CONF2DIR "/var/run/uci"
#define UCI_DIRMODE 0700
#define UCI_FILEMODE 0600

enum {
  UCI_OK = 0,
  UCI_ERR_MEM,
  UCI_ERR_INVAL,
  UCI_ERR_NOTFOUND,
  UCI_ERR_IO,
  UCI_ERR_PARSE,
  UCI_ERR_DUPLICATE,
  UCI_ERR_UNKNOWN,
  UCI_ERR_LAST
};

enum uci_type {
  UCI_TYPE_UNSPEC = 0,
  UCI_TYPE_DELTA = 1,
  UCI_TYPE_PACKAGE = 2,
  UCI_TYPE_SECTION = 3,
  UCI_TYPE_OPTION = 4,
  UCI_TYPE_PATH = 5,
  UCI_TYPE_BACKEND = 6,
  UCI_TYPE_ITEM = 7,
  UCI_TYPE_HOOK = 8
};

enum uci_option_type { UCI_TYPE_STRING = 0, UCI_TYPE_LIST = 1 };

enum uci_flags {
  UCI_FLAG_STRICT = (1 << 0),
  UCI_FLAG_PERROR = (1 << 1),
  UCI_FLAG_EXPORT_NAME = (1 << 2),
  UCI_FLAG_SAVED_DELTA = (1 << 3)
};

enum uci_command {
  UCI_CMD_ADD,
  UCI_CMD_REMOVE,
  UCI_CMD_CHANGE,
  UCI_CMD_RENAME,
  UCI_CMD_REORDER,
  UCI_CMD_LIST_ADD,
  UCI_CMD_LIST_DEL,
  __UCI_CMD_MAX,
  __UCI_CMD_LAST = __UCI_CMD_MAX - 1
};

extern char const uci_command_char[];

struct uci_list {
  struct uci_list *next, *prev;
};

struct uci_element {
  struct uci_list list;
  enum uci_type type;
  char* name;
};

struct uci_ptr;
struct uci_package;
struct uci_section;
struct uci_option;
struct uci_parse_context;
struct uci_backend;

struct uci_context {
  struct uci_list root;
  struct uci_parse_context* pctx; /* internal */
  struct uci_backend* backend;    /* internal */
  struct uci_list backends;       /* internal */
  enum uci_flags flags;
  char* confdir;
  char* savedir;
  char* conf2dir;
  struct uci_list delta_path;
  int err;
  const char* func;      /* internal */
  jmp_buf trap;          /* internal */
  bool internal, nested; /* internal */
  char* buf;             /* internal */
  int bufsz;             /* internal */
};

struct uci_package {
  struct uci_element e;
  struct uci_list sections;
  struct uci_context* ctx;
  bool has_delta, uses_conf2;
  char* path;
  struct uci_backend* backend; /* internal, as all that follows */
  void* priv;
  int n_section;
  struct uci_list delta;
  struct uci_list saved_delta;
};

struct uci_section {
  struct uci_element e;
  struct uci_list options;
  struct uci_package* package;
  bool anonymous;
  char* type;
};

struct uci_option {
  struct uci_element e;
  struct uci_section* section;
  enum uci_option_type type;
  union {
    struct uci_list list;
    char* string;
  } v;
};

struct uci_delta {
  struct uci_element e;
  enum uci_command cmd;
  char* section;
  char* value;
};

struct uci_ptr {
  enum uci_type target;
  enum { UCI_LOOKUP_DONE = (1 << 0), UCI_LOOKUP_COMPLETE = (1 << 1), UCI_LOOKUP_EXTENDED = (1 << 2) } flags;
  struct uci_package* p;
  struct uci_section* s;
  struct uci_option* o;
  struct uci_element* last;
  const char* package;
  const char* section;
  const char* option;
  const char* value;
};

struct uci_parse_option {
  const char* name;
  enum uci_option_type type;
};

struct uci_backend {
  struct uci_element e;
  char** (*list_configs)(struct uci_context* ctx);
  struct uci_package* (*load)(struct uci_context* ctx, const char* name);
  void (*commit)(struct uci_context* ctx, struct uci_package** p, bool overwrite);
  const void* ptr;
  void* priv;
};

/* All int functions return UCI_OK or an error code, which they also leave in ctx->err. One context per thread; whatever
 * a context holds dies with it. A section, option or item is dead after the unload, commit or revert of its package and
 * after its own deletion. */

struct uci_context* uci_alloc_context(void);
/* Unsaved changes are dropped. */
void uci_free_context(struct uci_context* ctx);

/* The text of the last error, on standard error, behind "str: " unless str is NULL. */
void uci_perror(struct uci_context* ctx, const char* str);
/* The same as a new text that the caller frees. */
void uci_get_errorstr(struct uci_context* ctx, char** dest, const char* str);

/* Parses packages from a stream. `name` is the package until a "package" line says otherwise; with `single` those lines
 * are ignored, and a package that *package already points at is merged into. */
int uci_import(struct uci_context* ctx, FILE* stream, const char* name, struct uci_package** package, bool single);
/* Writes one package, or all loaded ones for NULL. Write errors are the stream's (ferror). */
int uci_export(struct uci_context* ctx, FILE* stream, struct uci_package* package, bool header);

/* Reads a package and the staged changes to it. `package` may be NULL; it is untouched on failure. */
int uci_load(struct uci_context* ctx, const char* name, struct uci_package** package);
int uci_unload(struct uci_context* ctx, struct uci_package* p);

/* Splits "package.section.option=value" in place, loads the package and finds what is named. UCI_OK also when section
 * or option are missing: look at UCI_LOOKUP_COMPLETE. `extended` allows "@type[index]". */
int uci_lookup_ptr(struct uci_context* ctx, struct uci_ptr* ptr, char* str, bool extended);

int uci_add_section(struct uci_context* ctx, struct uci_package* p, const char* type, struct uci_section** res);
int uci_set(struct uci_context* ctx, struct uci_ptr* ptr);
int uci_add_list(struct uci_context* ctx, struct uci_ptr* ptr);
int uci_del_list(struct uci_context* ctx, struct uci_ptr* ptr);
int uci_reorder_section(struct uci_context* ctx, struct uci_section* s, int pos);
int uci_rename(struct uci_context* ctx, struct uci_ptr* ptr);
int uci_delete(struct uci_context* ctx, struct uci_ptr* ptr);

/* Stages the changes made so far (appends them to the delta file). */
int uci_save(struct uci_context* ctx, struct uci_package* p);
/* Writes package and staged changes to the package's file, atomically and durably. *p stays valid, what it holds is
 * made anew. On failure the file is the old one and the changes stay staged; should memory have ended while the file
 * was read again, *p holds only a part until it is looked up, exported or committed the next time. */
int uci_commit(struct uci_context* ctx, struct uci_package** p, bool overwrite);
/* A NULL-terminated array in one piece: the caller frees it once. */
int uci_list_configs(struct uci_context* ctx, char*** list);

int uci_set_savedir(struct uci_context* ctx, const char* dir);
int uci_set_confdir(struct uci_context* ctx, const char* dir);
int uci_set_conf2dir(struct uci_context* ctx, const char* dir);
int uci_add_delta_path(struct uci_context* ctx, const char* dir);
/* Takes staged changes back. */
int uci_revert(struct uci_context* ctx, struct uci_ptr* ptr);

/* The next word of a line read from the stream, "" at its end. *str NULL reads a new line. The word is the context's
 * and lives until the next call on it: copy it at once. */
int uci_parse_argument(struct uci_context* ctx, FILE* stream, char** str, char** result);
int uci_set_backend(struct uci_context* ctx, const char* name);
/* No control characters but tab, line feed and carriage return. */
bool uci_validate_text(const char* str);
int uci_parse_ptr(struct uci_context* ctx, struct uci_ptr* ptr, char* str);
int uci_lookup_next(struct uci_context* ctx, struct uci_element** e, struct uci_list* list, const char* name);
void uci_parse_section(struct uci_section* s, const struct uci_parse_option* opts, int n_opts, struct uci_option** tb);
uint32_t uci_hash_options(struct uci_option** tb, int n_opts);

#define uci_list_empty(_list) ((_list)->next == (_list))
#define list_to_element(ptr) container_of(ptr, struct uci_element, list)

#ifndef container_of
#define container_of(ptr, type, member) ((type*)(void*)((char*)(ptr)-offsetof(type, member)))
#endif

#define uci_foreach_element(_list, _ptr) \
  for ((_ptr) = list_to_element((_list)->next); &(_ptr)->list != (_list); (_ptr) = list_to_element((_ptr)->list.next))

#define uci_foreach_element_safe(_list, _tmp, _ptr)                                                                    \
  for ((_ptr) = list_to_element((_list)->next), (_tmp) = list_to_element((_ptr)->list.next); &(_ptr)->list != (_list); \
       (_ptr) = (_tmp), (_tmp) = list_to_element((_ptr)->list.next))

#define uci_type_backend UCI_TYPE_BACKEND
#define uci_type_delta UCI_TYPE_DELTA
#define uci_type_package UCI_TYPE_PACKAGE
#define uci_type_section UCI_TYPE_SECTION
#define uci_type_option UCI_TYPE_OPTION

/* From an element to what it is the first member of, so a NULL stays NULL. */
#ifdef UCI_DEBUG_TYPECAST
static inline void uci_check_type(const struct uci_element* e, enum uci_type type, const char* name) {
  if (e != NULL && e->type != type) {
    fprintf(stderr, "uci: element %s is no %s (type %d)\n", e->name != NULL ? e->name : "", name, (int)e->type);
  }
}
#define UCI_DEFINE_CAST(name)                                             \
  static inline struct uci_##name* uci_to_##name(struct uci_element* e) { \
    uci_check_type(e, uci_type_##name, #name);                            \
    return (struct uci_##name*)(void*)e;                                  \
  }
UCI_DEFINE_CAST(backend)
UCI_DEFINE_CAST(delta)
UCI_DEFINE_CAST(package)
UCI_DEFINE_CAST(section)
UCI_DEFINE_CAST(option)
#undef UCI_DEFINE_CAST
#else
#define uci_to_backend(ptr) ((struct uci_backend*)(void*)(ptr))
#define uci_to_delta(ptr) ((struct uci_delta*)(void*)(ptr))
#define uci_to_package(ptr) ((struct uci_package*)(void*)(ptr))
#define uci_to_section(ptr) ((struct uci_section*)(void*)(ptr))
#define uci_to_option(ptr) ((struct uci_option*)(void*)(ptr))
#endif

#define uci_dataptr(ptr) (((char*)(ptr)) + sizeof(*(ptr)))

#ifndef BITS_PER_LONG
#define BITS_PER_LONG (8 * sizeof(unsigned long))
#endif

static inline void uci_bitfield_set(unsigned long* bits, int bit) {
  bits[(unsigned long)bit / BITS_PER_LONG] |= 1UL << ((unsigned long)bit % BITS_PER_LONG);
}

static inline struct uci_package* uci_lookup_package(struct uci_context* ctx, const char* name) {
  struct uci_element* e = NULL;
  return uci_lookup_next(ctx, &e, &ctx->root, name) == 0 ? uci_to_package(e) : NULL;
}

static inline struct uci_section* uci_lookup_section(struct uci_context* ctx, struct uci_package* p, const char* name) {
  struct uci_element* e = NULL;
  return uci_lookup_next(ctx, &e, &p->sections, name) == 0 ? uci_to_section(e) : NULL;
}

static inline struct uci_option* uci_lookup_option(struct uci_context* ctx, struct uci_section* s, const char* name) {
  struct uci_element* e = NULL;
  return uci_lookup_next(ctx, &e, &s->options, name) == 0 ? uci_to_option(e) : NULL;
}

static inline const char* uci_lookup_option_string(struct uci_context* ctx, struct uci_section* s, const char* name) {
  struct uci_option* o = uci_lookup_option(ctx, s, name);
  return o != NULL && o->type == UCI_TYPE_STRING ? o->v.string : NULL;
}

#ifdef __cplusplus
}
#endif

#endif
/* NOLINTEND(bugprone-reserved-identifier,modernize-use-nullptr) */
