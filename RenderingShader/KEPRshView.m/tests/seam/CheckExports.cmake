# The module's shared library exports its entry point, its interface adapter factories, its
# introspection factories and the classes marked for export, and nothing else.
# Variables: LIBRARY, NM.
execute_process(COMMAND ${NM} -DC --defined-only ${LIBRARY} RESULT_VARIABLE result
                OUTPUT_VARIABLE output ERROR_VARIABLE error)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${NM} failed on ${LIBRARY}: ${error}")
endif()
string(REPLACE "\n" ";" lines "${output}")
set(count 0)
set(factories 0)
foreach(line IN LISTS lines)
  if(line STREQUAL "")
    continue()
  endif()
  string(REGEX REPLACE "^[0-9a-f]+ [A-Za-z] " "" symbol "${line}")
  if(NOT symbol MATCHES "^(KEPRshViewRegister$|CreateTIE|CreateBOA|fctCreate|KEPRsh|vtable for KEPRsh|vtable for KEPI|typeinfo (name )?for KEP)")
    message(FATAL_ERROR "${LIBRARY} exports ${symbol}")
  endif()
  math(EXPR count "${count} + 1")
  if(symbol MATCHES "^CreateTIE")
    math(EXPR factories "${factories} + 1")
  endif()
endforeach()
# What a host needs: the entry point, an adapter factory per registered behaviour and material
# interface (22 so far), the module's shared rule, the exported class's life cycle, and the
# introspectable controls' metaclass builders and adapter.
foreach(required IN ITEMS "KEPRshViewRegister"
                          "KEPRshIsPhysicalShaderType(std::basic_string_view"
                          "KEPRshShaderHardwareExt::KEPRshShaderHardwareExt(KEPRshShaderHardwareExt const&)"
                          "KEPRshShaderHardwareExt::operator=(KEPRshShaderHardwareExt const&)"
                          "KEPRshShaderHardwareExt::~KEPRshShaderHardwareExt()"
                          "CreateTIEKEPIHardwareMaterialKEPRshShaderHardwareDefault"
                          "CreateTIEKEPIRshShaderLinkKEPRshShaderHardwareLink"
                          "CreateTIEKEPIRshParameterImmLayoutKEPRshParameterScalarImmLayout"
                          "CreateTIEKEPIRshParameterDialogKEPRshParameterScalarDialog"
                          "CreateTIEKEPIRshShaderEditorImmLayoutKEPRshShaderEditorImmLayout"
                          "CreateTIEKEPIRshShaderEditorDialogKEPRshShaderDialog"
                          "KEPRshPreviewFrame::KEPRshPreviewFrame("
                          "fctCreateKEPRshUIScalarSoftHardRangeSYPMetaClassBuilder"
                          "fctCreateKEPRshUIScalarRatioSYPMetaClassBuilder"
                          "CreateBOAKEPISYPIntrospectableKEPRshUIScalarRatioSYPIntro"
                          "fctCreateKEPRshUICtlParameterIntegral1SYPMetaClassBuilder"
                          "CreateBOAKEPISYPIntrospectableKEPRshUICtlParameterIntegral1SYPIntro"
                          "fctCreateKEPRshUICtlScalarSpinnerSYPMetaClassBuilder"
                          "CreateBOAKEPISYPIntrospectableKEPRshUICtlScalarSpinnerSYPIntro")
  string(FIND "${output}" "${required}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "${LIBRARY} does not export ${required}")
  endif()
endforeach()
if(factories LESS 22)
  message(FATAL_ERROR "${LIBRARY} exports ${factories} adapter factories, fewer than the 22 registered")
endif()
message(STATUS "${count} exported symbols, all of them the module's own")
