# Makes the Debian packages, lets lintian check them, unpacks them with dpkg, and builds and runs programs with what is
# there.
include(${CMAKE_CURRENT_LIST_DIR}/helpers.cmake)
foreach(program dpkg dpkg-deb dpkg-architecture lintian python3)
  string(MAKE_C_IDENTIFIER ${program} variable)
  find_program(${variable} ${program} PATHS /usr/bin NO_DEFAULT_PATH REQUIRED)
endforeach()
set(names libmox-xmlapi0 libmox-xmlapi-dev mox-xml python3-mox-xmlapi)

# check_field(<package> <field of its control file> <pattern>)
function(check_field package name pattern)
  execute_process(COMMAND ${dpkg_deb} -f ${package_${package}} ${name}
    OUTPUT_VARIABLE value OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  if(NOT value MATCHES "${pattern}")
    message(FATAL_ERROR "${package}: ${name}: ${value}")
  endif()
endfunction()

run(${SOURCES}/packaging/debian/build_packages.sh ${BUILD} ${FOLDER}/packages)
execute_process(COMMAND ${dpkg_architecture} -qDEB_HOST_ARCH
  OUTPUT_VARIABLE architecture OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${dpkg_architecture} -qDEB_HOST_MULTIARCH
  OUTPUT_VARIABLE multiarch OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)

# ---- what the packages say of themselves

file(GLOB packages ${FOLDER}/packages/*)
list(LENGTH packages count)
if(NOT count EQUAL 4)
  message(FATAL_ERROR "Not four packages: ${packages}")
endif()
set(expectedWarnings "")
foreach(name IN LISTS names)
  file(GLOB package_${name} ${FOLDER}/packages/${name}_${VERSION}-0mox*.deb)
  check_field(${name} Package "^${name}$")
  check_field(${name} Source "^mox-xmlapi$")
  check_field(${name} Version "^${VERSION}-0mox[0-9]+$")
  check_field(${name} Maintainer "^[^<>]+ <[^ ]+@[^ ]+>$")
  check_field(${name} Description "^[^\n]+\n [^\n]+")
  check_field(${name} Installed-Size "^[1-9][0-9]*$")
  list(APPEND expectedWarnings "W: ${name}: copyright-without-copyright-notice")
endforeach()
foreach(name libmox-xmlapi0 libmox-xmlapi-dev mox-xml)
  check_field(${name} Architecture "^${architecture}$")
endforeach()
check_field(python3-mox-xmlapi Architecture "^all$")
foreach(name libmox-xmlapi0 libmox-xmlapi-dev)
  check_field(${name} Multi-Arch "^same$")
endforeach()
# From the files themselves, with the versions they need.
foreach(name libmox-xmlapi0 mox-xml)
  check_field(${name} Depends "(^|, )libc6 \\(>= [0-9.]+\\)(, |$)")
  check_field(${name} Depends "(^|, )libstdc\\+\\+6 \\(>= [0-9.]+\\)(, |$)")
  check_field(${name} Depends "(^|, )libgcc-s1 \\(>= [0-9.]+\\)(, |$)")
endforeach()
check_field(mox-xml Depends "(^|, )libmox-xmlapi0 \\(>= ${VERSION}\\)(, |$)")
check_field(libmox-xmlapi-dev Depends "(^|, )libmox-xmlapi0 \\(= ${VERSION}-0mox[0-9]+\\)(, |$)")
check_field(python3-mox-xmlapi Depends "(^|, )libmox-xmlapi0 \\(>= ${VERSION}\\)(, |$)")
check_field(python3-mox-xmlapi Depends "(^|, )python3:any(, |$)")

# ---- lintian: nothing but that the licence is missing, which is for the owners of the software to choose

execute_process(COMMAND ${lintian} --no-cfg ${packages} OUTPUT_VARIABLE found ERROR_VARIABLE errors RESULT_VARIABLE result)
string(REGEX REPLACE "\n$" "" found "${found}")
string(REPLACE "\n" ";" found "${found}")
list(SORT found)
list(SORT expectedWarnings)
if(NOT result EQUAL 0 OR NOT found STREQUAL expectedWarnings)
  list(JOIN found "\n" found)
  message(FATAL_ERROR "lintian ended with ${result}:\n${found}\n${errors}")
endif()

# ---- what they unpack to

set(root ${FOLDER}/unpacked)
set(prefix ${root}/usr)
file(MAKE_DIRECTORY ${root}/var/lib/dpkg/info ${root}/var/lib/dpkg/updates)
file(TOUCH ${root}/var/lib/dpkg/status ${root}/var/lib/dpkg/available)
# dpkg wants to find ldconfig.
set(ENV{PATH} "$ENV{PATH}:/usr/sbin:/sbin")
# A file that is in two of them is an error.
run(${dpkg} --root=${root} --force-not-root --log=/dev/null --unpack ${packages})
foreach(name IN LISTS names)
  # Compares the files with the package's list of their sums.
  execute_process(COMMAND ${dpkg} --root=${root} --verify ${name} OUTPUT_VARIABLE differences COMMAND_ERROR_IS_FATAL ANY)
  file(GLOB sums ${root}/var/lib/dpkg/info/${name}*.md5sums)
  if(NOT differences STREQUAL "" OR NOT sums)
    message(FATAL_ERROR "${name}: differs from its sums: ${differences}")
  endif()
  check_files(${prefix}/share/doc/${name} copyright changelog.gz changelog.Debian.gz)
  file(READ ${prefix}/share/doc/${name}/copyright copyright)
  if(NOT copyright MATCHES "No licence has been chosen")
    message(FATAL_ERROR "${name}: its copyright file does not say that no licence has been chosen")
  endif()
endforeach()
file(GLOB shlibs ${root}/var/lib/dpkg/info/libmox-xmlapi0*.shlibs)
file(STRINGS ${shlibs} shlibs)
list(SORT shlibs)
set(expectedShlibs "")
string(REGEX REPLACE "\\..*" "" major "${VERSION}")
foreach(library mox_dbtInfo mox_host mox_porting mox_xmlApi)
  list(APPEND expectedShlibs "lib${library} ${major} libmox-xmlapi0 (>= ${VERSION})")
  check_files(${prefix}/lib/${multiarch} lib${library}.so lib${library}.so.${major} lib${library}.so.${VERSION})
endforeach()
if(NOT shlibs STREQUAL expectedShlibs)
  message(FATAL_ERROR "shlibs: ${shlibs}")
endif()
check_headers(${prefix}/include)
check_no_build_paths(${prefix})
check_links(${prefix}/share/doc/libmox-xmlapi-dev)
check_files(${prefix}
  lib/${multiarch}/libmox_front.a bin/mox-xml share/man/man1/mox-xml.1.gz share/bash-completion/completions/mox-xml
  lib/python3/dist-packages/mox_xmlapi/py.typed share/doc/libmox-xmlapi-dev/examples/host_demo.c
  share/doc/libmox-xmlapi-dev/examples/data/camera.xml share/doc/libmox-xmlapi-dev/docs/file-format.md
  share/doc/python3-mox-xmlapi/examples/compare_machines.py)
if(EXISTS ${prefix}/lib/python3/dist-packages/mox_xmlapi/lib)
  message(FATAL_ERROR "The Python package has libraries of its own")
endif()

# ---- programs

# Where the loader looks by itself once the packages are installed.
set(libraries ${prefix}/lib/${multiarch})
set(ENV{LD_LIBRARY_PATH} ${libraries})
build_with_find_package(${prefix} ${FOLDER}/found)
run_consumers(${FOLDER}/found)
build_with_pkg_config(${libraries}/pkgconfig ${prefix}/include ${libraries} ${FOLDER}/configured)
run_consumers(${FOLDER}/configured)

file(COPY ${prefix}/share/doc/libmox-xmlapi-dev/examples/data/camera.xml DESTINATION ${FOLDER})
set(ENV{PYTHONPATH} ${prefix}/lib/python3/dist-packages)
set(ENV{PYTHONDONTWRITEBYTECODE} 1)
file(WRITE ${FOLDER}/write.py [[
import sys
from mox_xmlapi import Settings
with Settings.open(sys.argv[1]) as settings:
    settings["Camera"]["Exposure"] = 1234
    settings.save()
with open("/proc/self/maps", encoding="utf-8") as maps:
    assert any("/unpacked/usr/lib/" in line and "libmox_host.so" in line for line in maps)
]])
run(${python3} ${FOLDER}/write.py ${FOLDER}/camera.xml)
execute_process(COMMAND ${prefix}/bin/mox-xml get ${FOLDER}/camera.xml Camera Exposure
  OUTPUT_VARIABLE value OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
if(NOT value STREQUAL "1234")
  message(FATAL_ERROR "mox-xml reads ${value}")
endif()
