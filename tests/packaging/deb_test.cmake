# Reads the .deb, unpacks it and builds the consumer against it.
include(${CMAKE_CURRENT_LIST_DIR}/helpers.cmake)
find_program(DPKG_DEB dpkg-deb REQUIRED)

# field(<name> <variable>): a field of the package's control file.
function(field name variable)
  execute_process(COMMAND ${DPKG_DEB} -f ${package} ${name}
    OUTPUT_VARIABLE value OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(${variable} "${value}" PARENT_SCOPE)
endfunction()

# check_field(<name> <pattern>)
function(check_field name pattern)
  field(${name} value)
  if(NOT value MATCHES "${pattern}")
    message(FATAL_ERROR "${name}: ${value}")
  endif()
endfunction()

pack(DEB package)
execute_process(COMMAND ${DPKG_DEB} --info ${package} OUTPUT_VARIABLE control COMMAND_ERROR_IS_FATAL ANY)
message(STATUS "${control}")
check_field(Package "^mox-xmlapi$")
check_field(Version "^${VERSION}$")
check_field(Architecture "^[a-z0-9]+$")
check_field(Section "^libdevel$")
check_field(Maintainer "^[^<>]+ <[^ ]+@[^ ]+>$")
check_field(Description "^[^\n]+\n [^\n]+")
check_field(Installed-Size "^[1-9][0-9]*$")
# From the libraries themselves, with the versions they need.
check_field(Depends "(^|, )libc6 \\(>= [0-9.]+\\)(, |$)")
check_field(Depends "(^|, )libstdc\\+\\+6 \\(>= [0-9.]+\\)(, |$)")
check_field(Depends "(^|, )libgcc-s1 \\(>= [0-9.]+\\)(, |$)")

run(${DPKG_DEB} -x ${package} ${FOLDER}/unpacked)
set(prefix ${FOLDER}/unpacked/usr)
check_headers(${prefix}/include)
check_no_build_paths(${prefix})
check_files(${prefix} lib/libmox_xmlApi.so.${VERSION} lib/libmox_host.so.${VERSION} share/doc/mox_xmlApi/README.md)
build_with_find_package(${prefix} ${FOLDER}/found)
run_consumers(${FOLDER}/found)
