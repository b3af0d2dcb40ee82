# Installs into an empty folder and builds the consumer against it by find_package and by pkg-config.
include(${CMAKE_CURRENT_LIST_DIR}/helpers.cmake)

set(prefix "${FOLDER}/an empty prefix")
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})
check_headers(${prefix}/include)
check_no_build_paths(${prefix})
check_links(${prefix}/share/doc/mox_xmlApi)
check_files(${prefix}
  lib/libmox_host.so lib/libmox_host.so.0 lib/libmox_host.so.${VERSION} lib/libmox_xmlApi.so lib/libmox_xmlApi.so.${VERSION} lib/libmox_dbtInfo.so
  lib/libmox_dbtInfo.so.${VERSION} lib/libmox_porting.so lib/libmox_porting.so.${VERSION} lib/libmox_front.a
  share/doc/mox_xmlApi/examples/host_demo.c share/doc/mox_xmlApi/examples/data/camera.xml
  share/doc/mox_xmlApi/README.md share/doc/mox_xmlApi/docs/file-format.md
  bin/mox-xml share/man/man1/mox-xml.1 share/bash-completion/completions/mox-xml)
run(${prefix}/bin/mox-xml --version)

build_with_find_package(${prefix} ${FOLDER}/found)
run_consumers(${FOLDER}/found)

# Both files derive the folders from their own location.
file(RENAME ${prefix} ${FOLDER}/moved)
build_with_pkg_config(${FOLDER}/moved/lib/pkgconfig ${FOLDER}/moved/include ${FOLDER}/moved/lib ${FOLDER}/configured)
set(ENV{LD_LIBRARY_PATH} ${FOLDER}/moved/lib)
run_consumers(${FOLDER}/configured)
