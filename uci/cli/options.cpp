// The usage text.
#include <cstdio>

#include "session.h"

void print_usage(const char* program) {
  std::fprintf(stderr,
               "Usage: %s [<options>] <command> [<arguments>]\n\n"
               "Commands:\n"
               "\tbatch\n"
               "\texport     [<config>]\n"
               "\timport     [<config>]\n"
               "\tchanges    [<config>]\n"
               "\tcommit     [<config>]\n"
               "\tadd        <config> <section-type>\n"
               "\tadd_list   <config>.<section>.<option>=<string>\n"
               "\tdel_list   <config>.<section>.<option>=<string>\n"
               "\tshow       [<config>[.<section>[.<option>]]]\n"
               "\tget        <config>.<section>[.<option>]\n"
               "\tset        <config>.<section>[.<option>]=<value>\n"
               "\tdelete     <config>[.<section>[[.<option>][=<index>]]]\n"
               "\trename     <config>.<section>[.<option>]=<name>\n"
               "\trevert     <config>[.<section>[.<option>]]\n"
               "\treorder    <config>.<section>=<position>\n\n"
               "Options:\n"
               "\t-c <path>  folder of the packages (default: /etc/config)\n"
               "\t-C <path>  folder whose packages override those (default: /var/run/uci)\n"
               "\t-d <str>   separator between list items in show and get\n"
               "\t-f <file>  read the input of import and batch from a file\n"
               "\t-m         import: merge into an existing package\n"
               "\t-n         export, commit: name unnamed sections\n"
               "\t-N         do not name them (default)\n"
               "\t-p <path>  also read staged changes from this folder\n"
               "\t-P <path>  stage changes in this folder, and never commit them\n"
               "\t-t <path>  stage changes in this folder\n"
               "\t-q         no error messages\n"
               "\t-s         strict: a package with an error is not loaded (default)\n"
               "\t-S         read past errors\n"
               "\t-X         show: generated names of unnamed sections\n\n",
               program);
}
