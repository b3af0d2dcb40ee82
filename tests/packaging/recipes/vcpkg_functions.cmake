# Stands in for vcpkg: the functions that the port calls, for one configuration. They use functions of the test.

function(vcpkg_check_linkage linkage)
  if(NOT linkage STREQUAL "ONLY_DYNAMIC_LIBRARY")
    message(FATAL_ERROR "vcpkg_check_linkage: ${linkage}")
  endif()
endfunction()

# As vcpkg's, without the archive's top folder.
function(vcpkg_extract_source_archive variable)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" ARCHIVE "")
  file(ARCHIVE_EXTRACT INPUT ${arg_ARCHIVE} DESTINATION ${CURRENT_BUILDTREES_DIR}/src)
  file(GLOB top ${CURRENT_BUILDTREES_DIR}/src/*)
  set(${variable} ${top} PARENT_SCOPE)
endfunction()

function(vcpkg_cmake_configure)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" SOURCE_PATH OPTIONS)
  settings_of_first_build(settings)
  run(${CMAKE_COMMAND} -S ${arg_SOURCE_PATH} -B ${CURRENT_BUILDTREES_DIR}/build ${settings} ${arg_OPTIONS}
    -DCMAKE_INSTALL_PREFIX=${CURRENT_PACKAGES_DIR})
endfunction()

function(vcpkg_cmake_install)
  take_libraries(${CURRENT_BUILDTREES_DIR}/build)
  run(${CMAKE_COMMAND} --install ${CURRENT_BUILDTREES_DIR}/build)
endfunction()

# The files that vcpkg would move must be there.
function(vcpkg_cmake_config_fixup)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "PACKAGE_NAME;CONFIG_PATH" "")
  check_files(${CURRENT_PACKAGES_DIR}/${arg_CONFIG_PATH} ${arg_PACKAGE_NAME}Config.cmake)
endfunction()

function(vcpkg_fixup_pkgconfig)
  check_files(${CURRENT_PACKAGES_DIR}/lib/pkgconfig mox_xmlApi.pc)
endfunction()

function(vcpkg_copy_pdbs)
endfunction()
