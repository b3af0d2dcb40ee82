# The packages that CPack makes from the installed files: a .zip for Windows, a .tar.gz for Linux. The Debian packages are
# made by packaging/debian/build_packages.sh.
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
  set(CPACK_GENERATOR TGZ)
  string(TOLOWER ${CMAKE_SYSTEM_NAME} mox_system)
  set(CPACK_PACKAGE_FILE_NAME
    ${CPACK_PACKAGE_NAME}-${PROJECT_VERSION}-${mox_system}-${CMAKE_SYSTEM_PROCESSOR})
endif()

include(CPack)
