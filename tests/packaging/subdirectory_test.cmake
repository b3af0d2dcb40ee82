# Builds the consumer with the sources of the library as part of it; then installs the library from there into folders
# that are given as absolute paths, and builds the consumer against those.
include(${CMAKE_CURRENT_LIST_DIR}/helpers.cmake)

settings_of_first_build(settings)
run(${CMAKE_COMMAND} -S ${SOURCES}/tests/packaging/consumer -B ${FOLDER}/whole ${settings}
  -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0
  -DMOX_SOURCES=${SOURCES} -DMOX_INSTALL=ON
  -DCMAKE_INSTALL_PREFIX=${FOLDER}/prefix
  -DCMAKE_INSTALL_LIBDIR=${FOLDER}/elsewhere/lib -DCMAKE_INSTALL_INCLUDEDIR=${FOLDER}/other/headers)
run(${CMAKE_COMMAND} --build ${FOLDER}/whole --parallel 2)
run_consumers(${FOLDER}/whole)

run(${CMAKE_COMMAND} --install ${FOLDER}/whole)
check_headers(${FOLDER}/other/headers)
build_with_pkg_config(${FOLDER}/elsewhere/lib/pkgconfig ${FOLDER}/other/headers ${FOLDER}/elsewhere/lib ${FOLDER}/configured)
set(ENV{LD_LIBRARY_PATH} ${FOLDER}/elsewhere/lib)
run_consumers(${FOLDER}/configured)
unset(ENV{LD_LIBRARY_PATH})
build_with_find_package(${FOLDER}/elsewhere ${FOLDER}/found)
run_consumers(${FOLDER}/found)
