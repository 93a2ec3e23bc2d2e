# Which UCI library the program links: the system's, as on a router, or the one in this folder.
# The target uci::uci carries header and library. The library of this folder (uci_static) and its command `uci` are
# built whichever that is, wherever something needs them: the simulated router and the tests.
set(ROUTER_API_UCI "auto" CACHE STRING "UCI library that the program links: auto, system or bundled")
set_property(CACHE ROUTER_API_UCI PROPERTY STRINGS auto system bundled)

find_path(SYSTEM_UCI_INCLUDE_DIR uci.h)
find_library(SYSTEM_UCI_LIBRARY uci)
if(SYSTEM_UCI_INCLUDE_DIR AND SYSTEM_UCI_LIBRARY)
  set(system_uci_found TRUE)
else()
  set(system_uci_found FALSE)
endif()

if(ROUTER_API_UCI STREQUAL "system" AND NOT system_uci_found)
  message(FATAL_ERROR "ROUTER_API_UCI=system, but uci.h or libuci was not found")
elseif(NOT ROUTER_API_UCI MATCHES "^(auto|system|bundled)$")
  message(FATAL_ERROR "ROUTER_API_UCI is auto, system or bundled, not '${ROUTER_API_UCI}'")
endif()

if(ROUTER_API_UCI STREQUAL "bundled" OR NOT system_uci_found)
  set(uci_is_bundled TRUE)
else()
  set(uci_is_bundled FALSE)
endif()

if(uci_is_bundled OR ROUTER_API_SIMULATOR OR BUILD_TESTING OR ROUTER_API_FUZZ OR ROUTER_API_BENCH)
  add_subdirectory(${CMAKE_CURRENT_LIST_DIR} ${CMAKE_BINARY_DIR}/uci)
endif()

if(uci_is_bundled)
  add_library(uci::uci ALIAS uci_static)
  message(STATUS "UCI library: bundled")
else()
  add_library(uci::uci UNKNOWN IMPORTED)
  set_target_properties(uci::uci PROPERTIES
    IMPORTED_LOCATION ${SYSTEM_UCI_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${SYSTEM_UCI_INCLUDE_DIR})
  message(STATUS "UCI library: ${SYSTEM_UCI_LIBRARY}")
endif()
