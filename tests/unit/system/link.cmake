# log_line_test.cpp reads the log (captured_log.h).
target_link_options(unit_system PRIVATE "LINKER:--wrap=syslog,--wrap=__syslog_chk")
