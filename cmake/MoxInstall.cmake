# What `cmake --install` installs: libraries, public headers, a CMake package, a pkg-config file, documents, and the
# tool if it is built. The folders are those of GNUInstallDirs.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(mox_installed_libraries mox_xmlApi mox_host)
if(MOX_BUNDLED_COMPANIONS)
  list(APPEND mox_installed_libraries mox_dbtInfo mox_porting)
endif()
set(mox_installed_programs "")
if(TARGET mox-xml)
  set(mox_installed_programs mox-xml)
endif()

# What must be built before an installation.
add_custom_target(mox_installed DEPENDS ${mox_installed_libraries} mox_front ${mox_installed_programs})

if(UNIX AND NOT APPLE)
  # The companions are next to the library, and the path from the tool to the library is relative, so that the installed
  # folder can be moved. Companions that are not bundled are found where they are.
  set_target_properties(${mox_installed_libraries} PROPERTIES INSTALL_RPATH "$ORIGIN" INSTALL_RPATH_USE_LINK_PATH ON)
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY ${CMAKE_INSTALL_FULL_BINDIR}
    OUTPUT_VARIABLE mox_way_to_libraries)
  foreach(program IN LISTS mox_installed_programs)
    set_target_properties(${program} PROPERTIES INSTALL_RPATH "$ORIGIN/${mox_way_to_libraries}")
  endforeach()
endif()

install(TARGETS ${mox_installed_libraries} mox_front EXPORT mox_xmlApiTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
# What hosts include.
file(GLOB mox_front_headers RELATIVE ${PROJECT_SOURCE_DIR} CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/mox_xmlApi/*.hpp ${PROJECT_SOURCE_DIR}/mox_xmlApi/disk/*.hpp
  ${PROJECT_SOURCE_DIR}/mox_xmlApi/document/*.hpp ${PROJECT_SOURCE_DIR}/mox_xmlApi/front/*.hpp)
foreach(header IN LISTS mox_front_headers ITEMS
    mox_host/mox_host.h mox_xmlApi/mox_xmlApi.h mox_xmlApi/platform/mox_dbtInfo.h mox_xmlApi/platform/wchar16.h)
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${PROJECT_SOURCE_DIR}/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder})
endforeach()
if(mox_installed_programs)
  install(TARGETS ${mox_installed_programs} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

if(MINGW)
  foreach(dll IN LISTS MOX_RUNTIME_DLLS)
    install(FILES ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${dll} DESTINATION ${CMAKE_INSTALL_BINDIR})
    # Without symbols, like the other installed binaries: they are most of the bytes.
    install(CODE "
      if(CMAKE_INSTALL_DO_STRIP)
        set(dll \"${CMAKE_INSTALL_BINDIR}/${dll}\")
        cmake_path(ABSOLUTE_PATH dll BASE_DIRECTORY \"\${CMAKE_INSTALL_PREFIX}\")
        execute_process(COMMAND \"${CMAKE_STRIP}\" --strip-unneeded \"\$ENV{DESTDIR}\${dll}\"
          COMMAND_ERROR_IS_FATAL ANY)
      endif()")
  endforeach()
  install(FILES ${PROJECT_SOURCE_DIR}/cmake/runtime-dlls.txt DESTINATION ${CMAKE_INSTALL_DOCDIR})
  get_property(mox_import_libraries GLOBAL PROPERTY MOX_MSVC_IMPORT_LIBRARIES)
  install(FILES ${mox_import_libraries} DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()

install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CONTRIBUTING.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR} OPTIONAL)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION ${CMAKE_INSTALL_DOCDIR}
  FILES_MATCHING PATTERN "*.c" PATTERN "*.cpp" PATTERN "*.h" PATTERN "*.py" PATTERN "*.xml")
install(DIRECTORY ${PROJECT_SOURCE_DIR}/schemas DESTINATION ${CMAKE_INSTALL_DATADIR}/mox_xmlApi)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN "*.md" PATTERN "*.svg")

# ---- for find_package

set(mox_package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/mox_xmlApi)
install(EXPORT mox_xmlApiTargets NAMESPACE mox_xmlApi:: DESTINATION ${mox_package_folder})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/mox_xmlApiConfig.cmake.in
  ${PROJECT_BINARY_DIR}/mox_xmlApiConfig.cmake
  INSTALL_DESTINATION ${mox_package_folder}
  PATH_VARS CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/mox_xmlApiConfigVersion.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/mox_xmlApiConfig.cmake
  ${PROJECT_BINARY_DIR}/mox_xmlApiConfigVersion.cmake
  DESTINATION ${mox_package_folder})

# ---- for pkg-config

# If the library folder is relative, the prefix is derived from the location of the .pc file, so that the whole tree can
# be moved. An absolute folder is used as it is.
cmake_path(IS_ABSOLUTE CMAKE_INSTALL_LIBDIR mox_libdir_is_absolute)
if(mox_libdir_is_absolute)
  set(mox_pc_prefix ${CMAKE_INSTALL_PREFIX})
  set(mox_pc_libdir ${CMAKE_INSTALL_LIBDIR})
else()
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
    OUTPUT_VARIABLE mox_pc_prefix)
  string(PREPEND mox_pc_prefix "\${pcfiledir}/")
  set(mox_pc_libdir "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
endif()
cmake_path(IS_ABSOLUTE CMAKE_INSTALL_INCLUDEDIR mox_includedir_is_absolute)
if(mox_includedir_is_absolute)
  set(mox_pc_includedir ${CMAKE_INSTALL_INCLUDEDIR})
else()
  set(mox_pc_includedir "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
foreach(name mox_xmlApi mox_front mox_host)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
