# How every target of this project is compiled and linked.

set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
# Run paths relative to the program, so that the same sources give the same bytes in any build folder.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

# mox_target(<target>): language level, warnings, and no paths of the build machine in the result.
function(mox_target target)
  set_target_properties(${target} PROPERTIES
    C_STANDARD 11 C_STANDARD_REQUIRED ON C_EXTENSIONS OFF
    CXX_STANDARD 20 CXX_STANDARD_REQUIRED ON CXX_EXTENSIONS OFF)
  if(MSVC)
    # Exports throw: "c" would let the compiler assume that extern "C" functions do not.
    target_compile_options(${target} PRIVATE
      $<$<COMPILE_LANGUAGE:C,CXX>:/W4 $<$<BOOL:${MOX_WARNINGS_ARE_ERRORS}>:/WX> /utf-8>
      $<$<COMPILE_LANGUAGE:CXX>:/permissive- /Zc:__cplusplus /EHsc->)
    return()
  endif()
  target_compile_options(${target} PRIVATE
    $<$<COMPILE_LANGUAGE:C,CXX>:-Wall -Wextra -Wconversion -Wshadow $<$<BOOL:${MOX_WARNINGS_ARE_ERRORS}>:-Werror>>)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # GCC 12 wrongly reports overlapping copies inside its own std::string.
    target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
  endif()
  # GCC expands a memset of known size to "rep stos", which takes longer to start than a call.
  target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:C,CXX>:-fno-builtin-memset>)
  if(CMAKE_BUILD_TYPE STREQUAL "Release")
    target_compile_options(${target} PRIVATE
      $<$<COMPILE_LANGUAGE:C,CXX>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>)
  endif()
  if(MINGW)
    target_link_options(${target} PRIVATE -Wl,--no-insert-timestamp)
  endif()
endfunction()

# mox_precompiled_warnings(<target>): turns off warnings that are wrong with precompiled headers.
function(mox_precompiled_warnings target)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # GCC 12 wrongly reports errors inside its own std::string when it is precompiled.
    target_compile_options(${target} PRIVATE
      $<$<COMPILE_LANGUAGE:CXX>:-Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread>)
  endif()
endfunction()

# mox_sources_of(<variable> <target>...): the full paths of the sources of the targets.
function(mox_sources_of variable)
  set(all "")
  foreach(target IN LISTS ARGN)
    get_target_property(sources ${target} SOURCES)
    get_target_property(folder ${target} SOURCE_DIR)
    foreach(source IN LISTS sources)
      cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY ${folder})
      list(APPEND all ${source})
    endforeach()
  endforeach()
  set(${variable} ${all} PARENT_SCOPE)
endfunction()

# mox_shared_library(<target>): file name and linker options of a shared library.
function(mox_shared_library target)
  if(WIN32)
    set_target_properties(${target} PROPERTIES PREFIX "")
  endif()
  if(MINGW)
    target_link_options(${target} PRIVATE
      -Wl,--dynamicbase,--nxcompat,--high-entropy-va -Wl,--no-insert-timestamp)
  elseif(UNIX AND NOT APPLE)
    # The loader never modifies code, and after loading only data is writable.
    target_link_options(${target} PRIVATE -Wl,-z,relro -Wl,-z,now -Wl,-z,text)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      target_link_options(${target} PRIVATE -Wl,-z,defs)
    endif()
  endif()
endfunction()

# mox_version_resource(<target>): adds the project's version as a resource of the DLL.
function(mox_version_resource target)
  if(NOT WIN32)
    return()
  endif()
  enable_language(RC)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${PROJECT_BINARY_DIR}/${target}.rc @ONLY)
  target_sources(${target} PRIVATE ${PROJECT_BINARY_DIR}/${target}.rc)
endfunction()

# mox_msvc_import_library(<target> <def file>): a .lib for MSVC's linker in addition to MinGW's own import library; adds
# its path to the global property MOX_MSVC_IMPORT_LIBRARIES. LLVM's tool writes the same as MSVC's; MinGW's writes
# another form, which MSVC's linker is not documented to accept.
function(mox_msvc_import_library target def)
  if(NOT MINGW)
    return()
  endif()
  find_program(MOX_LLVM_DLLTOOL NAMES llvm-dlltool-14 llvm-dlltool)
  if(NOT MOX_LLVM_DLLTOOL)
    message(STATUS "No llvm-dlltool: no import library for MSVC's linker")
    return()
  endif()
  cmake_path(ABSOLUTE_PATH def BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
  set(library ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}/${target}.lib)
  add_custom_command(OUTPUT ${library}
    COMMAND ${MOX_LLVM_DLLTOOL} -m i386:x86-64 -d ${def} -D ${target}.dll -l ${library}
    DEPENDS ${def} VERBATIM)
  add_custom_target(${target}_msvc_import_library ALL DEPENDS ${library})
  add_dependencies(${target} ${target}_msvc_import_library)
  set_property(GLOBAL APPEND PROPERTY MOX_MSVC_IMPORT_LIBRARIES ${library})
endfunction()

# mox_exporting_library(<name> <def file>): a shared library with the exports that the .def file lists. The code is
# linked to it as objects.
function(mox_exporting_library name def)
  add_library(${name} SHARED ${def})
  add_library(mox_xmlApi::${name} ALIAS ${name})
  target_include_directories(${name} INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
  set_target_properties(${name} PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    LINKER_LANGUAGE CXX)
  mox_shared_library(${name})
  if(UNIX AND NOT APPLE)
    # dlclose leaves it in memory: what it creates once per process (platform/letters.cpp) is never freed.
    target_link_options(${name} PRIVATE LINKER:-z,nodelete)
  endif()
  mox_export_only(${name} ${def})
  mox_version_resource(${name})
  mox_msvc_import_library(${name} ${def})
endfunction()

# Host and library share the compiler's runtime: its DLLs are copied next to the programs.
set(MOX_RUNTIME_DLLS libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
function(mox_runtime_dlls)
  foreach(name IN LISTS MOX_RUNTIME_DLLS)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
      OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT EXISTS "${path}")
      # The compiler finds some of them only in its lib folders.
      cmake_path(GET CMAKE_CXX_COMPILER PARENT_PATH bin)
      find_file(MOX_${name} ${name} PATHS ${CMAKE_FIND_ROOT_PATH}/lib ${CMAKE_FIND_ROOT_PATH}/bin ${bin}
        NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
      set(path "${MOX_${name}}")
    endif()
    configure_file("${path}" ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${name} COPYONLY)
  endforeach()
endfunction()
if(MINGW)
  mox_runtime_dlls()
endif()
