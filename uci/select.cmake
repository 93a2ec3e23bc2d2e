# Which UCI library the program links: the system's, as on a router, or the one in this folder.
# The target uci::uci carries header and library; with the bundled one there is also the command `uci`.
set(ROUTER_API_UCI "auto" CACHE STRING "UCI library: auto, system or bundled")
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
  add_subdirectory(${CMAKE_CURRENT_LIST_DIR} ${CMAKE_BINARY_DIR}/uci)
  message(STATUS "UCI library: bundled")
else()
  add_library(uci::uci UNKNOWN IMPORTED)
  set_target_properties(uci::uci PROPERTIES
    IMPORTED_LOCATION ${SYSTEM_UCI_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${SYSTEM_UCI_INCLUDE_DIR})
  message(STATUS "UCI library: ${SYSTEM_UCI_LIBRARY}")
endif()
