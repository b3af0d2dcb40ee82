# How the copy of the project is built in which faults are made (CMAKE_PROJECT_mox_xmlApi_INCLUDE): so that little time
# passes after a change of one source. The library is optimised enough to show that a fault makes no difference.
function(mox_mutants_settings)
  foreach(target mox_xmlApi_objects mox_front_objects mox_host_objects mox_tool_objects mox_dbtInfo mox_porting)
    target_compile_options(${target} PRIVATE -O1)
  endforeach()
  set_target_properties(mox_tool_objects PROPERTIES UNITY_BUILD OFF)
endfunction()
cmake_language(DEFER CALL mox_mutants_settings)
