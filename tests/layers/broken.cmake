# The check finds each fault of the sources in broken/, and nothing else:
#
#   cmake -P broken.cmake
cmake_minimum_required(VERSION 3.25)
execute_process(
  COMMAND ${CMAKE_COMMAND} -DSOURCES=${CMAKE_CURRENT_LIST_DIR}/broken -P ${CMAKE_CURRENT_LIST_DIR}/check_layers.cmake
  RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
string(REGEX REPLACE "\nCMake Error.*" "" output "${output}")
set(expected [[
docs/architecture.md: mox_xmlApi/gone.h does not exist
docs/architecture.md: mox_xmlApi/high/high.h is in no row above the layer that may include it
tools/tool.h: in no layer
companions/companion.h:2:#include <tools/tool.h>: companions/ may not include this
companions/companion.h:4:#include "high.h": companions/ may not include this
companions/companion.h:6:#include "mox_xmlApi/high/other.h": companions/ may not include this
mox_xmlApi/high/high.h:1:#include "companions/companion.h": mox_xmlApi/high/ may not include this]])
if(result EQUAL 0 OR NOT output STREQUAL expected)
  message(FATAL_ERROR "The check ended with ${result} and wrote\n${output}\ninstead of\n${expected}")
endif()
