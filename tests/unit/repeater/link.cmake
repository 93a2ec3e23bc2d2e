# scan_parser_test.cpp and tests/routes/test_sitesurvey.py read whole scans of the air, which make_scans.py writes.
set(scans ${CMAKE_CURRENT_BINARY_DIR}/scans)
set(scans_maker ${CMAKE_CURRENT_SOURCE_DIR}/repeater/make_scans.py)
find_program(ROUTER_API_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH REQUIRED)
add_custom_command(OUTPUT ${scans}/.made
  COMMAND ${ROUTER_API_PYTHON} ${scans_maker} ${scans}
  COMMAND ${CMAKE_COMMAND} -E touch ${scans}/.made
  DEPENDS ${scans_maker})
target_sources(unit_repeater PRIVATE ${scans}/.made)
target_compile_definitions(unit_repeater PRIVATE UNIT_SCANS="${scans}")

# The tests read the log (captured_log.h) and do not wait (waits.h).
target_link_options(unit_repeater PRIVATE
  "LINKER:--wrap=syslog,--wrap=__syslog_chk,--wrap=_ZN8platform13sleep_secondsEj")
