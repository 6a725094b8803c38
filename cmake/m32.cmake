# 32-bit x86 with the machine's own compiler and the libraries that tools/fetch-i386 unpacked.
set(sysroot ${CMAKE_CURRENT_LIST_DIR}/../build/sysroot-i386)
cmake_path(NORMAL_PATH sysroot)
set(library_dirs ${sysroot}/usr/lib/i386-linux-gnu ${sysroot}/lib/i386-linux-gnu)

if(NOT EXISTS ${sysroot}/.packages)
  message(FATAL_ERROR "The 32-bit libraries are not there yet: run tools/fetch-i386 first.")
endif()

set(CMAKE_C_FLAGS_INIT "-m32 -isystem ${sysroot}/usr/include/i386-linux-gnu")
set(CMAKE_CXX_FLAGS_INIT "${CMAKE_C_FLAGS_INIT}")

set(CMAKE_LIBRARY_PATH ${library_dirs})
set(ENV{PKG_CONFIG_LIBDIR} ${sysroot}/usr/lib/i386-linux-gnu/pkgconfig)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${sysroot})

# The programs carry the search path, in the older form that also holds for what the plugin needs
# when they load it: the plugin itself is shipped and names no directory of this machine.
list(JOIN library_dirs ":" search_path)
set(CMAKE_EXE_LINKER_FLAGS_INIT
  "-Wl,--disable-new-dtags -Wl,-rpath,${search_path} -Wl,-rpath-link,${search_path}")

# Where Lua finds LPeg, for the tests that run listings.
set(test_environment "LUA_CPATH=${sysroot}/usr/lib/i386-linux-gnu/lua/5.4/?.so")
