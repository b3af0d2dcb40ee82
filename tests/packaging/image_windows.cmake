# Checks the imports and the loader flags of each DLL in LIBRARIES (comma-separated files), and that those of
# VERSIONED (comma-separated names) have the VERSION.
cmake_minimum_required(VERSION 3.25)
set(allowed
  # the system
  KERNEL32.dll msvcrt.dll
  # the compiler's runtime
  libgcc_s_seh-1.dll libstdc++-6.dll libwinpthread-1.dll
  # the companions, and the library for mox_host
  mox_dbtInfo.dll mox_porting.dll mox_xmlApi.dll
  # for mox_host, which replaces files with their access rights
  ADVAPI32.dll)
set(required HIGH_ENTROPY_VA DYNAMIC_BASE NX_COMPAT)

# The version in the file's fixed version record: a signature, the record's own version 1.0, then the file's four numbers
# and the product's, each pair of 16-bit numbers with its second one first.
function(check_version library)
  file(READ ${library} bytes HEX)
  string(REGEX MATCHALL "bd04effe00000100" records "${bytes}")
  list(LENGTH records count)
  if(NOT count EQUAL 1)
    message(FATAL_ERROR "${library}: ${count} version records instead of one")
  endif()
  string(FIND "${bytes}" "bd04effe00000100" at)
  math(EXPR at "${at} + 16")
  string(SUBSTRING "${bytes}" ${at} 32 numbers)
  set(found "")
  foreach(at 4 0 12 8 20 16 28 24)
    math(EXPR high "${at} + 2")
    string(SUBSTRING ${numbers} ${at} 2 lowByte)
    string(SUBSTRING ${numbers} ${high} 2 highByte)
    math(EXPR number "0x${highByte}${lowByte}")
    list(APPEND found ${number})
  endforeach()
  string(REPLACE "." ";" expected "${VERSION}.0.${VERSION}.0")
  if(NOT found STREQUAL expected)
    message(FATAL_ERROR "${library}: its version record says ${found} instead of ${expected}")
  endif()
  message(STATUS "${library}: version ${VERSION}")
endfunction()

string(REPLACE "," ";" libraries "${LIBRARIES}")
string(REPLACE "," ";" versioned "${VERSIONED}")
foreach(library IN LISTS libraries)
  execute_process(COMMAND ${OBJDUMP} -p ${library} OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)

  string(REGEX MATCHALL "DLL Name: [^\n\r]+" imports "${headers}")
  list(TRANSFORM imports REPLACE "DLL Name: " "")
  if(NOT "libstdc++-6.dll" IN_LIST imports)
    message(FATAL_ERROR "${library}: it does not share the C++ runtime; it imports ${imports}")
  endif()
  list(REMOVE_ITEM imports ${allowed})
  if(imports)
    message(FATAL_ERROR "${library}: not expected among its imports: ${imports}")
  endif()

  if(NOT headers MATCHES "DllCharacteristics[^\n]*\n((\t+ *[A-Z_]+[^\n]*\n)+)")
    message(FATAL_ERROR "${library}: no characteristics found")
  endif()
  set(characteristics "${CMAKE_MATCH_1}")
  foreach(flag IN LISTS required)
    if(NOT characteristics MATCHES "[\t ]${flag}[\r\n]")
      message(FATAL_ERROR "${library}: ${flag} is not set, only\n${characteristics}")
    endif()
  endforeach()
  # Without relocations the system cannot move it, whatever the flags say.
  if(NOT headers MATCHES "PE File Base Relocations[^\n]*\n+Virtual Address: ")
    message(FATAL_ERROR "${library}: it has no relocations")
  endif()

  cmake_path(GET library STEM name)
  if(name IN_LIST versioned)
    check_version(${library})
    list(REMOVE_ITEM versioned ${name})
  endif()
  message(STATUS "${library}: imports and flags as expected")
endforeach()
if(versioned)
  message(FATAL_ERROR "${versioned} is not among ${libraries}")
endif()
