# How ctest runs programs: natively, or Windows programs under Wine.
#
# A program finds its data relative to its working directory, tests/, and may write only below MOX_TEST_TMP, an empty
# folder for this program.

# A program starts in 15 ms, with the sanitizers and under Wine in 60: together one to two minutes of processor time for
# all cases. Most presets therefore have ctest run each suite as one test; these are ten times fewer.
option(MOX_CTEST_SUITES "One test of ctest for each suite, not for each case" OFF)

set(MOX_TEST_ENVIRONMENT
  ASAN_OPTIONS=detect_stack_use_after_return=1:strict_string_checks=1:detect_leaks=1
  UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1)

if(CMAKE_CROSSCOMPILING AND WIN32)
  # Wine shows the whole file system as drive Z:.
  set(MOX_TEST_DRIVE "Z:")
  list(APPEND MOX_TEST_ENVIRONMENT WINEPREFIX=${PROJECT_BINARY_DIR}/wine)
  add_test(NAME fixture_wine_start COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} --start)
  add_test(NAME fixture_wine_stop COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} --stop)
  set_tests_properties(fixture_wine_start PROPERTIES FIXTURES_SETUP wine)
  set_tests_properties(fixture_wine_stop PROPERTIES FIXTURES_CLEANUP wine)
  set_tests_properties(fixture_wine_start fixture_wine_stop PROPERTIES
    ENVIRONMENT "${MOX_TEST_ENVIRONMENT}" TIMEOUT 300)
else()
  set(MOX_TEST_DRIVE "")
endif()

# mox_test_path(<variable> <path>): the path in the form that the tested program needs.
function(mox_test_path variable path)
  set(${variable} "${MOX_TEST_DRIVE}${path}" PARENT_SCOPE)
endfunction()

# What the output of a test says when it crashed under Wine, whatever the exit code makes of it.
set(MOX_CRASH "")
if(CMAKE_CROSSCOMPILING AND WIN32)
  set(MOX_CRASH "wine: Unhandled")
endif()

# mox_test_folder(<name> <environment> <fixtures>): a fixture that empties the folder test-tmp/<name> of the build
# folder. Sets the two variables to the environment and the fixtures of a test that writes there.
function(mox_test_folder name environment fixtures)
  set(folder ${PROJECT_BINARY_DIR}/test-tmp/${name})
  mox_test_path(path ${folder})
  add_test(NAME fixture_${name}_folder
    COMMAND ${CMAKE_COMMAND} -DFOLDER=${folder} -P ${PROJECT_SOURCE_DIR}/cmake/fresh_folder.cmake)
  set_tests_properties(fixture_${name}_folder PROPERTIES FIXTURES_SETUP ${name}_folder)

  set(${environment} ${MOX_TEST_ENVIRONMENT} MOX_TEST_TMP=${path} PARENT_SCOPE)
  set(needed ${name}_folder)
  if(CMAKE_CROSSCOMPILING AND WIN32)
    list(APPEND needed wine)
  endif()
  set(${fixtures} ${needed} PARENT_SCOPE)
endfunction()

# mox_add_test(<target> [argument...]): runs the program as one test of the same name.
function(mox_add_test target)
  mox_add_command_test(${target} ${target} ${ARGN})
endfunction()

# mox_add_command_test(<name> <command>...): runs the command as one test.
function(mox_add_command_test name)
  mox_test_folder(${name} environment fixtures)
  add_test(NAME ${name} COMMAND ${ARGN} WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}/tests)
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "${environment}" FIXTURES_REQUIRED "${fixtures}" FAIL_REGULAR_EXPRESSION "${MOX_CRASH}" TIMEOUT 600)
endfunction()

# mox_add_cases(<name> <program>... [COST <seconds>] [ENVIRONMENT <variable=value>...] [FIXTURES_SETUP <fixture>...]):
# the cases of GoogleTest programs as tests, named "<name>.<suite>.<case>". ctest asks the programs for them, when it
# starts. They share one folder and so run one after the other.
function(mox_add_cases name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "COST" "ENVIRONMENT;FIXTURES_SETUP")
  mox_test_folder(${name} environment fixtures)
  list(APPEND environment ${arg_ENVIRONMENT})
  list(TRANSFORM environment REPLACE ".+" "\"\\0\"" OUTPUT_VARIABLE environmentWords)
  list(JOIN environmentWords " " environmentWords)
  # What has run nothing has not passed.
  set(failing ${MOX_CRASH} "Running 0 tests")
  set(emulatorWord "")
  if(CMAKE_CROSSCOMPILING)
    set(emulatorWord "\"${CMAKE_CROSSCOMPILING_EMULATOR}\"")
  endif()
  foreach(target IN LISTS arg_UNPARSED_ARGUMENTS)
    set(program ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${target}${CMAKE_EXECUTABLE_SUFFIX})
    set(cases ${CMAKE_CURRENT_BINARY_DIR}/${target}_cases.cmake)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/test_cases.cmake.in ${cases} @ONLY)
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${cases})
  endforeach()
endfunction()
