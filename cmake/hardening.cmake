# What makes a bug harder to use: a position-independent program whose tables are read-only before main, guarded stacks, and
# bounds that the C library checks. tests/check-hardening reads the program.
include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)

add_link_options(-Wl,-z,relro -Wl,-z,now)

# A debug build stays as it is written, and a sanitizer checks more by itself.
if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug" AND NOT ROUTER_API_SANITIZE)
  include(CheckPIESupported)
  check_pie_supported()
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
  add_compile_options(-fstack-protector-strong)
  check_cxx_compiler_flag(-fstack-clash-protection ROUTER_API_HAS_STACK_CLASH)
  if(ROUTER_API_HAS_STACK_CLASH)
    add_compile_options(-fstack-clash-protection)
  endif()
  # 3 looks at sizes that are known at run time only.
  check_cxx_source_compiles(
    "int main(int argc, char** argv) { return __builtin_dynamic_object_size(argv[argc - 1], 0) == 0; }"
    ROUTER_API_HAS_DYNAMIC_SIZES)
  set(level 2)
  if(ROUTER_API_HAS_DYNAMIC_SIZES)
    set(level 3)
  endif()
  add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=${level})
endif()
