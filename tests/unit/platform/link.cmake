# log_test.cpp and messages_test.cpp read the log (captured_log.h); file_test.cpp is somebody else; in log_test.cpp memory
# ends (operator new, and new (std::nothrow) of an array), in uci_access_test.cpp libuci's.
set(size_type m)  # size_t, in the name of a symbol
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(size_type j)
endif()
target_link_options(unit_platform PRIVATE
  "LINKER:--wrap=syslog,--wrap=__syslog_chk,--wrap=geteuid,--wrap=uci_add_list"
  "LINKER:--wrap=_Znw${size_type},--wrap=_Zna${size_type}RKSt9nothrow_t")

# The same on a libuci that is a library of its own, as a router's is: UCI's sessions keep their word there.
add_executable(unit_platform_on_shared_uci $<TARGET_OBJECTS:unit_platform> $<TARGET_OBJECTS:router_api_core>)
set_target_properties(unit_platform_on_shared_uci PROPERTIES LINKER_LANGUAGE CXX)
target_link_options(unit_platform_on_shared_uci PRIVATE $<TARGET_PROPERTY:unit_platform,LINK_OPTIONS>)
target_link_libraries(unit_platform_on_shared_uci PRIVATE
  uci_shared PkgConfig::JSONC ${FCGI_LIBRARY} Threads::Threads GTest::gtest GTest::gmock GTest::gtest_main)
add_test(NAME system_uci_units COMMAND ${CMAKE_SOURCE_DIR}/tests/kit/in-sandbox
  $<TARGET_FILE:unit_platform_on_shared_uci> --gtest_filter=Uci*:Session*:Section*:Count*:Position*)
