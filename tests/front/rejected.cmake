# Compiles the programs in rejected/, which must not compile, and looks for the message that the first line of each names
# after the language standard:
#
#   cmake -DCOMPILER=<g++ or clang++> -DSOURCES=<checkout> -P rejected.cmake
cmake_minimum_required(VERSION 3.25)
file(GLOB programs ${SOURCES}/tests/front/rejected/*.cpp)
list(LENGTH programs count)
if(count LESS 5)
  message(FATAL_ERROR "only ${count} programs")
endif()
foreach(program IN LISTS programs)
  file(STRINGS ${program} lines LIMIT_COUNT 1)
  if(NOT lines MATCHES "^// (-std=[^:]+): (.+)$")
    message(FATAL_ERROR "${program}: the first line names no standard and message")
  endif()
  set(standard ${CMAKE_MATCH_1})
  set(expected ${CMAKE_MATCH_2})
  execute_process(COMMAND ${COMPILER} ${standard} -fsyntax-only -I${SOURCES} ${program}
    RESULT_VARIABLE result ERROR_VARIABLE output OUTPUT_QUIET)
  string(FIND "${output}" "${expected}" at)
  if(result EQUAL 0 OR at EQUAL -1)
    message(SEND_ERROR "${program}: expected the error \"${expected}\", found:\n${output}")
  endif()
  # A compiler that is too old gets one error, not those that follow from it.
  string(REGEX MATCHALL "error:" errors "${output}")
  list(LENGTH errors errorCount)
  if(standard STREQUAL "-std=c++14" AND NOT errorCount EQUAL 1)
    message(SEND_ERROR "${program}: expected one error, found ${errorCount}:\n${output}")
  endif()
endforeach()
