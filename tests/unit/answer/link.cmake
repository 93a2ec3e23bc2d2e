# encrypted_body_test.cpp reads the log (captured_log.h), json_reading_test.cpp lets json-c leave a member out.
target_link_options(unit_answer PRIVATE "LINKER:--wrap=syslog,--wrap=__syslog_chk,--wrap=json_tokener_parse")
