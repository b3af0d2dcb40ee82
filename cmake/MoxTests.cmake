# How ctest runs programs: natively, or Windows programs under Wine.
#
# A program finds its data relative to its working directory, tests/, and may write only below MOX_TEST_TMP, an empty
# folder for this program.

set(MOX_TEST_RESULTS ${PROJECT_BINARY_DIR}/test-results)
file(MAKE_DIRECTORY ${MOX_TEST_RESULTS})

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

# mox_add_test(<target> [argument...]): runs the program as one test of the same name.
function(mox_add_test target)
  mox_add_command_test(${target} ${target} ${ARGN})
endfunction()

# mox_add_command_test(<name> <command>...): runs the command as one test.
function(mox_add_command_test name)
  set(scratch ${PROJECT_BINARY_DIR}/test-tmp/${name})
  mox_test_path(scratchPath ${scratch})
  mox_test_path(resultPath ${MOX_TEST_RESULTS}/${name}.xml)

  add_test(NAME fixture_${name}_folder
    COMMAND ${CMAKE_COMMAND} -DFOLDER=${scratch} -P ${PROJECT_SOURCE_DIR}/cmake/fresh_folder.cmake)
  set_tests_properties(fixture_${name}_folder PROPERTIES FIXTURES_SETUP ${name}_folder)

  set(fixtures ${name}_folder)
  if(CMAKE_CROSSCOMPILING AND WIN32)
    list(APPEND fixtures wine)
  endif()
  add_test(NAME ${name} COMMAND ${ARGN} WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}/tests)
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "${MOX_TEST_ENVIRONMENT};MOX_TEST_TMP=${scratchPath};GTEST_OUTPUT=xml:${resultPath}"
    FIXTURES_REQUIRED "${fixtures}"
    TIMEOUT 600)
  if(CMAKE_CROSSCOMPILING AND WIN32)
    # Detects a crash whatever the exit code is.
    set_tests_properties(${name} PROPERTIES FAIL_REGULAR_EXPRESSION "wine: Unhandled")
  endif()
endfunction()
