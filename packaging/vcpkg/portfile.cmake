# A port for vcpkg, to be used as an overlay (--overlay-ports). It takes the sources from an archive next to this file:
#
#   git archive --prefix=mox_xmlApi/ -o packaging/vcpkg/mox_xmlApi-<version>.tar.gz HEAD
vcpkg_check_linkage(ONLY_DYNAMIC_LIBRARY)
vcpkg_extract_source_archive(SOURCE_PATH ARCHIVE "${CMAKE_CURRENT_LIST_DIR}/mox_xmlApi-${VERSION}.tar.gz")
vcpkg_cmake_configure(SOURCE_PATH "${SOURCE_PATH}"
  OPTIONS -DMOX_BUILD_TESTS=OFF -DMOX_BUILD_EXAMPLES=OFF -DMOX_BUILD_TOOLS=OFF -DMOX_WARNINGS_ARE_ERRORS=OFF)
vcpkg_cmake_install()
vcpkg_copy_pdbs()
vcpkg_cmake_config_fixup(PACKAGE_NAME mox_xmlApi CONFIG_PATH lib/cmake/mox_xmlApi)
vcpkg_fixup_pkgconfig()
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")
# vcpkg wants this file. There is no licence to put into it.
file(WRITE "${CURRENT_PACKAGES_DIR}/share/${PORT}/copyright"
  "No licence has been chosen for this software yet. Until its makers choose one, nobody but them may pass it on.\n")
