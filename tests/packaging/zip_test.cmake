# Unpacks the .zip for Windows, builds the consumer against it by find_package and by pkg-config, and another one with
# the tools of the MSVC family, and runs them with the DLLs of the .zip alone.
include(${CMAKE_CURRENT_LIST_DIR}/helpers.cmake)
find_program(CLANG_CL NAMES clang-cl-14 clang-cl REQUIRED)
find_program(LLD_LINK NAMES lld-link-14 lld-link REQUIRED)
find_program(LLVM_MT NAMES llvm-mt-14 llvm-mt REQUIRED)
find_program(LLVM_RC NAMES llvm-rc-14 llvm-rc REQUIRED)
set(CMAKE_EXECUTABLE_SUFFIX .exe)

pack(ZIP package)
cmake_path(GET package FILENAME name)
if(NOT name STREQUAL "mox_xmlApi-${VERSION}-windows-x86_64.zip")
  message(FATAL_ERROR "The package has the name ${name}")
endif()
file(ARCHIVE_EXTRACT INPUT ${package} DESTINATION ${FOLDER}/unpacked)
cmake_path(GET package STEM LAST_ONLY prefix)
set(prefix ${FOLDER}/unpacked/${prefix})
check_headers(${prefix}/include)
check_no_build_paths(${prefix})
check_links(${prefix}/share/doc/mox_xmlApi)
check_files(${prefix}
  bin/mox-xml.exe bin/mox_host.dll bin/mox_xmlApi.dll bin/mox_dbtInfo.dll bin/mox_porting.dll
  bin/libstdc++-6.dll bin/libgcc_s_seh-1.dll bin/libwinpthread-1.dll
  lib/libmox_xmlApi.dll.a lib/libmox_dbtInfo.dll.a lib/libmox_front.a lib/libmox_host.dll.a lib/mox_xmlApi.lib
  lib/mox_host.lib
  share/doc/mox_xmlApi/examples/host_demo.c share/doc/mox_xmlApi/examples/data/camera.xml
  share/doc/mox_xmlApi/README.md share/doc/mox_xmlApi/docs/file-format.md share/doc/mox_xmlApi/runtime-dlls.txt)
# Without the symbols the DLLs must still have the same imports and flags.
run(${CMAKE_COMMAND}
  -DLIBRARIES=${prefix}/bin/mox_xmlApi.dll,${prefix}/bin/mox_host.dll,${prefix}/bin/mox_dbtInfo.dll,${prefix}/bin/mox_porting.dll
  -DVERSION=${VERSION} -DVERSIONED=mox_xmlApi,mox_host -DOBJDUMP=${OBJDUMP} -P ${CMAKE_CURRENT_LIST_DIR}/image_windows.cmake)

# Where Windows looks for DLLs that are not next to the program.
set(ENV{WINEPATH} Z:${prefix}/bin)
build_with_find_package(${prefix} ${FOLDER}/found)
run_consumers(${FOLDER}/found)
build_with_pkg_config(${prefix}/lib/pkgconfig ${prefix}/include ${prefix}/lib ${FOLDER}/configured)
run_consumers(${FOLDER}/configured)

# Only the compiler and the linker: without a runtime library, no test program can be linked.
set(other "")
foreach(language C CXX)
  list(APPEND other -DCMAKE_${language}_COMPILER=${CLANG_CL} -DCMAKE_${language}_COMPILER_TARGET=x86_64-pc-windows-msvc
    -DCMAKE_${language}_COMPILER_WORKS=ON -DCMAKE_${language}_STANDARD_LIBRARIES=)
endforeach()
run(${CMAKE_COMMAND} -S ${SOURCES}/tests/packaging/consumer/other_linker -B ${FOLDER}/other
  -G ${first_CMAKE_GENERATOR} -DCMAKE_SYSTEM_NAME=Windows -DCMAKE_BUILD_TYPE=Release ${other}
  -DCMAKE_LINKER=${LLD_LINK} -DCMAKE_MT=${LLVM_MT} -DCMAKE_RC_COMPILER=${LLVM_RC}
  -DCMAKE_TRY_COMPILE_TARGET_TYPE=STATIC_LIBRARY -DCMAKE_PREFIX_PATH=${prefix})
run(${CMAKE_COMMAND} --build ${FOLDER}/other)
foreach(program other_linker other_host_c other_host_cpp)
  execute_process(COMMAND ${EMULATOR} ${FOLDER}/other/${program}.exe WORKING_DIRECTORY ${FOLDER}/other
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${program} ended with ${result}: ${output}")
  endif()
endforeach()
message(STATUS "${FOLDER}/other: the programs run")
