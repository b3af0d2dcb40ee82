# Builds the libraries a second time, from a copy of the sources elsewhere and with the settings of the first build, and
# compares them with the first ones, LIBRARIES, byte by byte.
include(${CMAKE_CURRENT_LIST_DIR}/helpers.cmake)

# A compiler cache would only return the objects of the first build.
foreach(language C CXX)
  unset(ENV{CMAKE_${language}_COMPILER_LAUNCHER})
endforeach()

# In another folder, with a path of another length.
set(copy "${FOLDER}/sources of the second build")
set(again "${FOLDER}/b")
file(COPY ${SOURCES}/CMakeLists.txt ${SOURCES}/cmake ${SOURCES}/companions ${SOURCES}/mox_host ${SOURCES}/mox_xmlApi DESTINATION ${copy})

settings_of_first_build(settings)
execute_process(
  COMMAND ${CMAKE_COMMAND} -S ${copy} -B ${again} ${settings}
    -DMOX_BUILD_TESTS=OFF -DMOX_BUILD_EXAMPLES=OFF -DMOX_BUILD_TOOLS=OFF
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${again} --parallel 2 --target mox_xmlApi mox_front mox_host
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)

string(REPLACE "," ";" libraries "${LIBRARIES}")
foreach(library IN LISTS libraries)
  cmake_path(RELATIVE_PATH library BASE_DIRECTORY ${BUILD} OUTPUT_VARIABLE name)
  execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${library} ${again}/${name} RESULT_VARIABLE differs)
  if(differs)
    message(FATAL_ERROR "${library} and ${again}/${name} differ")
  endif()
  file(SIZE ${library} size)
  message(STATUS "${name}: the same ${size} bytes")
endforeach()
file(REMOVE_RECURSE ${FOLDER})
