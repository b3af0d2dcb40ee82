# cmake -DXMLLINT=<program> -DFOLDER=<path> -DLEAST=<number> [-DSCHEMA=<file>] -P xmllint.cmake: fails unless the folder
# has that many XML files and all of them are well-formed, and valid when there is a schema.
file(GLOB files "${FOLDER}/*.xml")
list(LENGTH files count)
if(count LESS LEAST)
  message(FATAL_ERROR "${FOLDER} has ${count} XML files; ${LEAST} or more were expected")
endif()
set(schema "")
if(SCHEMA)
  set(schema --schema "${SCHEMA}")
endif()
execute_process(COMMAND "${XMLLINT}" --noout --nonet ${schema} ${files}
  RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(NOT result EQUAL 0)
  string(REGEX REPLACE "[^\n]* validates\n" "" output "${output}")
  message(FATAL_ERROR "xmllint: ${result}\n${output}")
endif()
message(STATUS "${count} files pass")
