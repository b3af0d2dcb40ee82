# Runs the vcpkg port and the Conan recipe on a source archive, with stand-ins for vcpkg and Conan, and builds the
# consumer with what they install. The sources are configured from the archive; they are not compiled again, the
# libraries are those of the build.
include(${CMAKE_CURRENT_LIST_DIR}/helpers.cmake)
find_program(PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH REQUIRED)

# take_libraries(<build folder>): puts the built libraries there.
function(take_libraries folder)
  file(GLOB libraries ${BUILD}/lib/libmox_*)
  file(COPY ${libraries} DESTINATION ${folder}/lib)
endfunction()

set(sources ${FOLDER}/mox_xmlApi)
file(GLOB documents ${SOURCES}/*.md)
file(COPY ${SOURCES}/CMakeLists.txt ${documents} ${SOURCES}/cmake ${SOURCES}/companions ${SOURCES}/docs
  ${SOURCES}/examples ${SOURCES}/mox_host ${SOURCES}/mox_xmlApi ${SOURCES}/packaging ${SOURCES}/schemas
  DESTINATION ${sources})

# ---- vcpkg

file(READ ${SOURCES}/packaging/vcpkg/vcpkg.json manifest)
string(JSON manifestVersion GET ${manifest} version-semver)
string(JSON licenseType TYPE ${manifest} license)
if(NOT manifestVersion STREQUAL VERSION OR NOT licenseType STREQUAL "NULL")
  message(FATAL_ERROR "vcpkg.json: version ${manifestVersion}, license of type ${licenseType}")
endif()
string(JSON PORT GET ${manifest} name)
file(COPY ${SOURCES}/packaging/vcpkg DESTINATION ${FOLDER})
execute_process(COMMAND ${CMAKE_COMMAND} -E tar czf vcpkg/mox_xmlApi-${VERSION}.tar.gz mox_xmlApi
  WORKING_DIRECTORY ${FOLDER} COMMAND_ERROR_IS_FATAL ANY)
set(CURRENT_BUILDTREES_DIR ${FOLDER}/buildtrees)
set(CURRENT_PACKAGES_DIR ${FOLDER}/vcpkg-packages)
include(${CMAKE_CURRENT_LIST_DIR}/recipes/vcpkg_functions.cmake)
include(${FOLDER}/vcpkg/portfile.cmake)
check_headers(${CURRENT_PACKAGES_DIR}/include)
check_files(${CURRENT_PACKAGES_DIR} share/${PORT}/copyright)
file(READ ${CURRENT_PACKAGES_DIR}/share/${PORT}/copyright copyright)
if(NOT copyright MATCHES "No licence has been chosen")
  message(FATAL_ERROR "The port's copyright file does not say that no licence has been chosen")
endif()
build_with_find_package(${CURRENT_PACKAGES_DIR} ${FOLDER}/vcpkg-consumer)
run_consumers(${FOLDER}/vcpkg-consumer)

# ---- Conan

settings_of_first_build(settings)
run(${PYTHON} ${CMAKE_CURRENT_LIST_DIR}/recipes/run_conanfile.py ${sources}/packaging/conan/conanfile.py
  ${FOLDER}/conan ${VERSION} ${BUILD} ${settings})
check_headers(${FOLDER}/conan/package/include)
build_with_find_package(${FOLDER}/conan/package ${FOLDER}/conan-consumer)
run_consumers(${FOLDER}/conan-consumer)
