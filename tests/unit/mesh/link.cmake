# The tests read the log (captured_log.h) and do not wait (waits.h).
target_link_options(unit_mesh PRIVATE
  "LINKER:--wrap=syslog,--wrap=__syslog_chk,--wrap=_ZN8platform13sleep_secondsEj")
