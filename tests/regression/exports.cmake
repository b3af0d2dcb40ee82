# cmake -DLIBRARY=<file> -DNM=<nm> -DOBJDUMP=<objdump> [-DHEADER=<file>] -P exports.cmake
# The library exports exactly the functions that the header declares, or without a header exactly these; one more or one
# less is an error.
set(expected
  xmlEnumProfileSections
  xmlGetProfileData
  xmlGetProfileInt
  xmlGetProfileSection
  xmlGetProfileString
  xmlProfileDispose
  xmlProfileNew
  xmlProfileSave
  xmlTableDispose
  xmlTableEntryAdd
  xmlTableEntryGet
  xmlTableEntryIsExist
  xmlTableEntrySet
  xmlTableNew
  xmlTableRemoveEntries
  xmlTableRemoveEntry
  xmlTableSave
  xmlWriteProfileData
  xmlWriteProfileInt
  xmlWriteProfileSection
  xmlWriteProfileString)
if(HEADER)
  file(READ ${HEADER} text)
  string(REGEX MATCHALL "\n[a-z][a-z0-9_ *]* \\*?mox_[a-z_]+\\(" expected "${text}")
  list(TRANSFORM expected REPLACE "^.*[ *](mox_[a-z_]+)\\($" "\\1")
  list(LENGTH expected count)
  if(count LESS 50 OR count GREATER 60)
    message(FATAL_ERROR "${HEADER} declares ${count} functions instead of 50 to 60")
  endif()
endif()

if(LIBRARY MATCHES "\\.dll$")
  set(command ${OBJDUMP} -p ${LIBRARY})
  set(entry "^\t\\[ *[0-9]+\\] (\\+base\\[ *[0-9]+\\] +[0-9a-f]+ )?([^ ]+)$")
else()
  set(command ${NM} -D --defined-only ${LIBRARY})
  set(entry "^[0-9a-f]* +([A-Za-z]) ([^ ]+)$")
endif()
execute_process(COMMAND ${command} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)

if(LIBRARY MATCHES "\\.dll$")
  # Only the table of names: the address table before it has similar lines.
  if(NOT output MATCHES "\\[Ordinal/Name Pointer\\] Table[^\n]*\n(.*)")
    message(FATAL_ERROR "${LIBRARY} has no table of exported names")
  endif()
  set(output "${CMAKE_MATCH_1}")
  string(REGEX REPLACE "\n\n.*" "" output "${output}")
endif()

set(found "")
string(REPLACE "\n" ";" lines "${output}")
foreach(line IN LISTS lines)
  if(line MATCHES "${entry}")
    list(APPEND found ${CMAKE_MATCH_2})
  endif()
endforeach()

list(SORT expected)
list(SORT found)
set(missing ${expected})
list(REMOVE_ITEM missing ${found})
set(excess ${found})
list(REMOVE_ITEM excess ${expected})
list(LENGTH found count)
if(NOT found STREQUAL expected)
  message(FATAL_ERROR "${LIBRARY}\n  not exported: ${missing}\n  exported, but not expected: ${excess}")
endif()
message(STATUS "${count} names, as expected")
