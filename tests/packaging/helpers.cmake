# Shared functions of the scripts in this folder. The scripts are called with
#   SOURCES, BUILD, FOLDER   the project, its complete build folder, a scratch folder for the script
#   VERSION                  the project's version
#   C_COMPILER, CXX_COMPILER the compilers of the build
#   EMULATOR                 the command that runs the built programs, empty if they run natively
cmake_minimum_required(VERSION 3.25)
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})

load_cache(${BUILD} READ_WITH_PREFIX first_
  CMAKE_GENERATOR CMAKE_TOOLCHAIN_FILE CMAKE_BUILD_TYPE CMAKE_C_COMPILER CMAKE_CXX_COMPILER
  CMAKE_C_FLAGS CMAKE_CXX_FLAGS CMAKE_C_FLAGS_RELEASE CMAKE_CXX_FLAGS_RELEASE
  CMAKE_SHARED_LINKER_FLAGS CMAKE_SHARED_LINKER_FLAGS_RELEASE)

# settings_of_first_build(<variable>): the configuration of the build folder, as arguments for another cmake.
function(settings_of_first_build variable)
  set(settings -G ${first_CMAKE_GENERATOR})
  get_cmake_property(names VARIABLES)
  foreach(name IN LISTS names)
    if(name MATCHES "^first_(.+)$" AND NOT CMAKE_MATCH_1 STREQUAL "CMAKE_GENERATOR" AND NOT "${${name}}" STREQUAL "")
      list(APPEND settings "-D${CMAKE_MATCH_1}=${${name}}")
    endif()
  endforeach()
  set(${variable} ${settings} PARENT_SCOPE)
endfunction()

# run(<command>...): runs the command; if it fails, shows its output and ends the test.
function(run)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}\nended with ${result}:\n${output}")
  endif()
endfunction()

# run_consumers(<folder>): runs the consumer's three programs there; each must print what it read back.
function(run_consumers folder)
  foreach(program c cpp host)
    set(expected_c "exposure 2400")
    set(expected_host "gain 1.5, shown as Gain")
    set(expected_cpp "speed 900")
    execute_process(COMMAND ${EMULATOR} ./consumer_${program}${CMAKE_EXECUTABLE_SUFFIX} WORKING_DIRECTORY ${folder}
      OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE result OUTPUT_STRIP_TRAILING_WHITESPACE)
    string(STRIP "${output}" output)
    if(NOT result EQUAL 0 OR NOT output STREQUAL expected_${program})
      message(FATAL_ERROR "${folder}/consumer_${program} ended with ${result}: ${output}\n${errors}")
    endif()
  endforeach()
  message(STATUS "${folder}: all programs run")
endfunction()

# check_files(<folder> <pattern>...): fails unless the folder has exactly one file for each pattern.
function(check_files folder)
  foreach(pattern IN LISTS ARGN)
    file(GLOB found ${folder}/${pattern})
    list(LENGTH found count)
    if(NOT count EQUAL 1)
      message(FATAL_ERROR "${folder}: ${count} files ${pattern} instead of one")
    endif()
  endforeach()
endfunction()

# check_headers(<include folder>): fails unless the folder has the public headers and no internal ones.
function(check_headers folder)
  check_files(${folder} mox_host/mox_host.h mox_xmlApi/mox_xmlApi.h mox_xmlApi/platform/wchar16.h mox_xmlApi/platform/mox_dbtInfo.h
    mox_xmlApi/mox_xmlApi.hpp)
  file(GLOB_RECURSE headers RELATIVE ${folder} ${folder}/*)
  list(FILTER headers EXCLUDE REGEX
    "^mox_host/mox_host\\.h$|^mox_xmlApi/(mox_xmlApi\\.h|platform/wchar16\\.h|platform/mox_dbtInfo\\.h|mox_xmlApi\\.hpp|(disk|document|front|platform)/[^/]+\\.hpp)$")
  if(headers)
    message(FATAL_ERROR "${folder}: not expected: ${headers}")
  endif()
endfunction()

# check_no_build_paths(<folder>): fails if a text file of a package contains the path of the sources.
function(check_no_build_paths folder)
  file(GLOB_RECURSE files ${folder}/*.cmake ${folder}/*.pc ${folder}/*.h ${folder}/*.hpp ${folder}/*.md ${folder}/*.txt)
  foreach(file IN LISTS files)
    file(READ ${file} text)
    string(FIND "${text}" "${SOURCES}" at)
    if(NOT at EQUAL -1)
      message(FATAL_ERROR "${file} has the path ${SOURCES} in it")
    endif()
  endforeach()
endfunction()

# check_links(<folder>): fails unless every file that the documents there link to exists.
function(check_links folder)
  file(GLOB_RECURSE documents ${folder}/*.md)
  set(count 0)
  foreach(document IN LISTS documents)
    cmake_path(GET document PARENT_PATH from)
    file(READ ${document} text)
    # Square brackets have a meaning in CMake lists, too.
    string(REGEX REPLACE "[][]" "|" text "${text}")
    string(REGEX MATCHALL "\\|\\([A-Za-z0-9_./-]+[)#]" links "${text}")
    foreach(link IN LISTS links)
      string(REGEX REPLACE "^..(.*).$" "\\1" link "${link}")
      if(NOT EXISTS ${from}/${link})
        message(FATAL_ERROR "${document} links to ${link}, which is not there")
      endif()
      math(EXPR count "${count} + 1")
    endforeach()
  endforeach()
  if(count EQUAL 0)
    message(FATAL_ERROR "${folder}: no document links to another")
  endif()
endfunction()

# pack(<generator> <variable>): makes one package from the build folder and returns its path.
function(pack generator variable)
  run(${CMAKE_CPACK_COMMAND} -G ${generator} --config ${BUILD}/CPackConfig.cmake -B ${FOLDER}/packages)
  file(GLOB packages ${FOLDER}/packages/*)
  list(FILTER packages EXCLUDE REGEX "/_CPack_Packages$")
  list(LENGTH packages count)
  if(NOT count EQUAL 1)
    message(FATAL_ERROR "${generator} gave not one package but ${packages}")
  endif()
  set(${variable} ${packages} PARENT_SCOPE)
endfunction()

# build_with_find_package(<prefix> <build folder>): builds the consumer with the package below the prefix.
function(build_with_find_package prefix folder)
  string(REGEX REPLACE "\\..*" "" major "${VERSION}")
  math(EXPR otherMajors "${major} + 1")
  if(major GREATER 0)
    math(EXPR older "${major} - 1")
    string(APPEND otherMajors ",${older}")
  endif()
  set(system "")
  if(EMULATOR)
    set(system -DCMAKE_SYSTEM_NAME=Windows)
  endif()
  run(${CMAKE_COMMAND} -S ${SOURCES}/tests/packaging/consumer -B ${folder} -G ${first_CMAKE_GENERATOR}
    ${system} -DCMAKE_BUILD_TYPE=Release -DCMAKE_C_COMPILER=${C_COMPILER} -DCMAKE_CXX_COMPILER=${CXX_COMPILER}
    -DCMAKE_PREFIX_PATH=${prefix} -DMOX_VERSION=${VERSION} -DMOX_OTHER_MAJORS=${otherMajors})
  file(STRINGS ${folder}/CMakeCache.txt found REGEX "^mox_xmlApi_DIR:")
  string(FIND "${found}" "=${prefix}/" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "Not the package below ${prefix} was found: ${found}")
  endif()
  run(${CMAKE_COMMAND} --build ${folder})
endfunction()

# build_with_pkg_config(<folder of the .pc file> <expected folder of headers> <of libraries> <build folder>): the
# consumer, with what pkg-config says. It has to name the two folders, however it writes them.
function(build_with_pkg_config pcFolder headers libraries folder)
  find_program(PKG_CONFIG NAMES pkgconf pkg-config REQUIRED)
  set(ENV{PKG_CONFIG_LIBDIR} ${pcFolder})
  foreach(variable includedir libdir)
    execute_process(COMMAND ${PKG_CONFIG} --variable=${variable} mox_xmlApi
      OUTPUT_VARIABLE ${variable} OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    file(REAL_PATH ${${variable}} ${variable})
  endforeach()
  file(REAL_PATH ${headers} headers)
  file(REAL_PATH ${libraries} libraries)
  if(NOT includedir STREQUAL headers OR NOT libdir STREQUAL libraries)
    message(FATAL_ERROR "pkg-config says ${includedir} and ${libdir} instead of ${headers} and ${libraries}")
  endif()
  execute_process(COMMAND ${PKG_CONFIG} --modversion mox_xmlApi
    OUTPUT_VARIABLE version OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  if(NOT version STREQUAL VERSION)
    message(FATAL_ERROR "pkg-config says version ${version} instead of ${VERSION}")
  endif()
  foreach(package mox_xmlApi mox_front mox_host)
    execute_process(COMMAND ${PKG_CONFIG} --cflags --libs ${package}
      OUTPUT_VARIABLE flags_${package} OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    separate_arguments(flags_${package} UNIX_COMMAND "${flags_${package}}")
  endforeach()

  file(MAKE_DIRECTORY ${folder})
  set(consumer ${SOURCES}/tests/packaging/consumer/consumer)
  run(${C_COMPILER} -std=c11 ${consumer}.c -o ${folder}/consumer_c${CMAKE_EXECUTABLE_SUFFIX}
    ${flags_mox_xmlApi})
  run(${CXX_COMPILER} -std=c++17 ${consumer}.cpp -o ${folder}/consumer_cpp${CMAKE_EXECUTABLE_SUFFIX}
    ${flags_mox_front})
  run(${C_COMPILER} -std=c11 ${consumer}_host.c -o ${folder}/consumer_host${CMAKE_EXECUTABLE_SUFFIX}
    ${flags_mox_host})
endfunction()
