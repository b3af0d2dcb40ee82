# Checks the dependencies and the loader flags of each shared library in LIBRARIES (comma-separated files), and that
# those of VERSIONED (comma-separated names) have the VERSION.
cmake_minimum_required(VERSION 3.25)
set(allowed
  # the system and the compiler's runtime
  libc.so.6 libm.so.6 libgcc_s.so.1 libstdc++.so.6
  # the companions, and the library for mox_host
  libmox_dbtInfo.so.0 libmox_porting.so.0 libmox_xmlApi.so.0)

string(REPLACE "," ";" libraries "${LIBRARIES}")
string(REPLACE "," ";" versioned "${VERSIONED}")
foreach(library IN LISTS libraries)
  execute_process(COMMAND ${OBJDUMP} -p ${library} OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)

  string(REGEX MATCHALL "\n +NEEDED +[^\n ]+" needed "${headers}")
  list(TRANSFORM needed REPLACE "\n +NEEDED +" "")
  if(NOT "libstdc++.so.6" IN_LIST needed)
    message(FATAL_ERROR "${library}: it does not share the C++ runtime; it needs ${needed}")
  endif()
  list(REMOVE_ITEM needed ${allowed})
  if(needed)
    message(FATAL_ERROR "${library}: not expected among what it needs: ${needed}")
  endif()

  # Segments: relocated data becomes read-only after loading, and the stack is not executable.
  if(NOT headers MATCHES "\n +RELRO off ")
    message(FATAL_ERROR "${library}: nothing of it becomes read-only after loading")
  endif()
  if(NOT headers MATCHES "\n +STACK off [^\n]*\n[^\n]* flags rw-\n")
    message(FATAL_ERROR "${library}: it wants a stack that can be executed")
  endif()
  # DF_BIND_NOW is bit 3 of the flags, DF_TEXTREL bit 2.
  if(NOT headers MATCHES "\n +FLAGS +(0x[0-9a-f]+)")
    message(FATAL_ERROR "${library}: no flags found")
  endif()
  math(EXPR bindNow "${CMAKE_MATCH_1} & 8")
  math(EXPR textRelocations "${CMAKE_MATCH_1} & 4")
  if(NOT bindNow)
    message(FATAL_ERROR "${library}: symbols are bound when they are first used")
  endif()
  if(textRelocations OR headers MATCHES "\n +TEXTREL ")
    message(FATAL_ERROR "${library}: it has relocations in its code")
  endif()

  cmake_path(GET library FILENAME file)
  string(REGEX REPLACE "^lib|\\.so.*" "" name "${file}")
  if(name IN_LIST versioned)
    string(REGEX REPLACE "\\..*" "" major "${VERSION}")
    if(NOT headers MATCHES "\n +SONAME +lib${name}\\.so\\.${major}\n")
      message(FATAL_ERROR "${library}: its SONAME is not lib${name}.so.${major}")
    endif()
    if(NOT file STREQUAL "lib${name}.so.${VERSION}")
      message(FATAL_ERROR "${library}: its name does not end in .so.${VERSION}")
    endif()
    list(REMOVE_ITEM versioned ${name})
    message(STATUS "${library}: version ${VERSION}")
  endif()
  message(STATUS "${library}: needs and flags as expected")
endforeach()
if(versioned)
  message(FATAL_ERROR "${versioned} is not among ${libraries}")
endif()
