# lan_faults_test.cpp breaks these calls where no file or tool could.
foreach(function IN ITEMS uci_set uci_delete uci_add_list uci_del_list posix_spawnp fork syslog __syslog_chk)
  target_link_options(unit_lan PRIVATE "LINKER:--wrap=${function}")
endforeach()
