# In mac_filter_write_test.cpp a child cannot be started.
target_link_options(unit_access PRIVATE "LINKER:--wrap=posix_spawnp")
