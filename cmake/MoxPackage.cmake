# The packages that CPack makes from the installed files: a .zip for Windows, a .tar.gz and a .deb for Linux.
set(CPACK_PACKAGE_NAME mox_xmlApi)
set(CPACK_PACKAGE_VENDOR "mox_xmlApi maintainers")
set(CPACK_PACKAGE_CONTACT "mox_xmlApi maintainers <maintainers@example.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_MONOLITHIC_INSTALL ON)

if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME ${CPACK_PACKAGE_NAME}-${PROJECT_VERSION}-windows-x86_64)
else()
  set(CPACK_GENERATOR TGZ DEB)
  string(TOLOWER ${CMAKE_SYSTEM_NAME} mox_system)
  set(CPACK_PACKAGE_FILE_NAME
    ${CPACK_PACKAGE_NAME}-${PROJECT_VERSION}-${mox_system}-${CMAKE_SYSTEM_PROCESSOR})
endif()

set(CPACK_DEBIAN_PACKAGE_NAME mox-xmlapi)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
string(JOIN "\n" CPACK_DEBIAN_PACKAGE_DESCRIPTION
  "A dynamic library that keeps configuration data and data tables in XML files and"
  "offers them to host programs through plain exported C functions. The package holds"
  "the library with its two companions, the headers, and files for CMake and pkg-config.")
# The dependencies are derived from the libraries by dpkg-shlibdeps (Debian: dpkg-dev).
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)

include(CPack)
