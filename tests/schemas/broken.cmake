# cmake -DXMLLINT=<program> -DSCHEMAS=<folder> -DFOLDER=<path> -P broken.cmake: fails unless every XML file in the folder
# is refused as reasons.txt there says, and the two files that they were made from are valid.

# check_file(<file> <schema> <result> <output>): runs xmllint on the file; returns its exit code and output.
function(check_file file schema result output)
  execute_process(COMMAND "${XMLLINT}" --noout --nonet --schema "${SCHEMAS}/${schema}" "${file}"
    RESULT_VARIABLE code OUTPUT_VARIABLE text ERROR_VARIABLE text)
  set(${result} "${code}" PARENT_SCOPE)
  set(${output} "${text}" PARENT_SCOPE)
endfunction()

foreach(kind Settings Table)
  check_file("${FOLDER}/../valid/${kind}.xml" MX${kind}.xsd result output)
  if(NOT result EQUAL 0)
    message(SEND_ERROR "${kind}.xml is refused:\n${output}")
  endif()
endforeach()

file(GLOB files RELATIVE "${FOLDER}" "${FOLDER}/*.xml")
file(STRINGS "${FOLDER}/reasons.txt" lines REGEX "^[^#]")
set(listed "")
foreach(line IN LISTS lines)
  string(REGEX MATCH "^([^\t]+)\t(.+)$" matched "${line}")
  set(name "${CMAKE_MATCH_1}")
  set(reason "${CMAKE_MATCH_2}")
  list(APPEND listed "${name}")
  if(name MATCHES "^settings_")
    check_file("${FOLDER}/${name}" MXSettings.xsd result output)
  else()
    check_file("${FOLDER}/${name}" MXTable.xsd result output)
  endif()
  string(FIND "${output}" "${reason}" at)
  # 1: not well-formed; 3: not valid.
  if(NOT result MATCHES "^[13]$" OR at EQUAL -1)
    message(SEND_ERROR "${name}: expected \"${reason}\", got ${result}:\n${output}")
  endif()
endforeach()
list(SORT listed)
list(SORT files)
if(NOT listed STREQUAL files OR files STREQUAL "")
  message(SEND_ERROR "reasons.txt lists ${listed}, but there are ${files}")
endif()
