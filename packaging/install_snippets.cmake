# Run by `cmake --install`: the snippets, with the program's path as it is installed.
set(program "${CMAKE_INSTALL_PREFIX}/${sbindir}/router-api")
set(etc "${CMAKE_INSTALL_PREFIX}/${sysconfdir}")
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set(etc "/${sysconfdir}")
endif()
set(examples "${CMAKE_INSTALL_PREFIX}/${datadir}/router-api")

foreach(name IN ITEMS lighttpd.conf lighttpd-socket.conf nginx.locations router-api.init router-api.keep)
  file(READ "${files}/${name}" text)
  string(REPLACE "/usr/sbin/router-api" "${program}" text "${text}")
  file(WRITE "${work}/${name}" "${text}")
endforeach()

file(COPY_FILE "${work}/lighttpd.conf" "${work}/50-router-api.conf")
file(INSTALL "${work}/50-router-api.conf" DESTINATION "${etc}/lighttpd/conf.d")
file(INSTALL "${work}/lighttpd-socket.conf" "${work}/nginx.locations" "${work}/router-api.keep" DESTINATION "${examples}")
file(INSTALL "${work}/router-api.init" DESTINATION "${examples}"
  FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
