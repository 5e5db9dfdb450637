# Builds the probe target, which includes a host implementation header with the module's include
# path, and passes only when that build fails because the header is not found.
execute_process(COMMAND ${CMAKE_COMMAND} --build ${BUILD_DIR} --target keprsh_seam_probe
                RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(result EQUAL 0)
  message(FATAL_ERROR "The module's include path reaches the host implementation:\n${output}")
endif()
if(output MATCHES "KEPIRshShader\\.h: No such file" OR NOT output MATCHES "KEPHostShaderNode\\.h")
  message(FATAL_ERROR "The probe failed for another reason than the missing header:\n${output}")
endif()
message(STATUS "The module cannot include KEPHostShaderNode.h, as it should be.")
