# What is installed: libuci.so, uci.h, the command, and how pkg-config and CMake find them.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS uci RUNTIME)
install(TARGETS uci_shared EXPORT uci LIBRARY)
install(FILES include/uci.h TYPE INCLUDE)
install(FILES uci.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

configure_file(uci.pc.in uci.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/uci.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# find_package(uci) gives the target uci::uci.
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/uci)
install(EXPORT uci FILE uci-config.cmake NAMESPACE uci:: DESTINATION ${package_folder})
write_basic_package_version_file(uci-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/uci-config-version.cmake DESTINATION ${package_folder})
