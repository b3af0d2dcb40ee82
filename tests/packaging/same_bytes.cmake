# cmake -DSOURCES=<project> -DBUILD=<its build folder> -DFOLDER=<scratch> -DLIBRARIES=<file>[,<file>...] -P same_bytes.cmake
# Builds the libraries a second time, from a copy of the sources elsewhere and with the settings of the first build, and
# compares them with the first ones byte by byte.
cmake_minimum_required(VERSION 3.25)

# A compiler cache would only give back the objects of the first build.
foreach(language C CXX)
  unset(ENV{CMAKE_${language}_COMPILER_LAUNCHER})
endforeach()

# Another folder, whose path has another length, too.
set(copy "${FOLDER}/sources of the second build")
set(again "${FOLDER}/b")
file(REMOVE_RECURSE ${FOLDER})
file(COPY ${SOURCES}/CMakeLists.txt ${SOURCES}/cmake ${SOURCES}/companions ${SOURCES}/mox_xmlApi DESTINATION ${copy})

load_cache(${BUILD} READ_WITH_PREFIX first_
  CMAKE_GENERATOR CMAKE_TOOLCHAIN_FILE CMAKE_BUILD_TYPE CMAKE_C_COMPILER CMAKE_CXX_COMPILER
  CMAKE_C_FLAGS CMAKE_CXX_FLAGS CMAKE_C_FLAGS_RELEASE CMAKE_CXX_FLAGS_RELEASE
  CMAKE_SHARED_LINKER_FLAGS CMAKE_SHARED_LINKER_FLAGS_RELEASE
  MOX_BUNDLED_COMPANIONS MOX_COMPANIONS_PREFIX)
set(settings "")
get_cmake_property(names VARIABLES)
foreach(name IN LISTS names)
  if(name MATCHES "^first_(.+)$" AND NOT CMAKE_MATCH_1 STREQUAL "CMAKE_GENERATOR" AND NOT "${${name}}" STREQUAL "")
    list(APPEND settings "-D${CMAKE_MATCH_1}=${${name}}")
  endif()
endforeach()
execute_process(
  COMMAND ${CMAKE_COMMAND} -S ${copy} -B ${again} -G ${first_CMAKE_GENERATOR} ${settings}
    -DMOX_BUILD_TESTS=OFF -DMOX_BUILD_EXAMPLES=OFF
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${again} --parallel 2 --target mox_xmlApi
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
