# Cross builds with Debian's compilers: -DROUTER_API_TRIPLET=aarch64-linux-gnu. script/test --arch.
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ROUTER_API_TRIPLET)
set(CMAKE_SYSTEM_NAME Linux)
string(REGEX MATCH "^[^-]+" CMAKE_SYSTEM_PROCESSOR ${ROUTER_API_TRIPLET})

set(CMAKE_C_COMPILER ${ROUTER_API_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${ROUTER_API_TRIPLET}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${ROUTER_API_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)

# Debian keeps each architecture's libraries side by side; pkg-config must not find those of this machine.
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/${ROUTER_API_TRIPLET}/pkgconfig:/usr/share/pkgconfig)
