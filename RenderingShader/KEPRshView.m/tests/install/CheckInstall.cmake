# Installs the build tree into a scratch prefix, builds the consumer project against it and runs
# it. Variables: BUILD_DIR, CONSUMER_DIR, WORK_DIR, GENERATOR, CXX.
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)
function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output
                  ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${what} failed:\n${output}")
  endif()
  set(last_output "${output}" PARENT_SCOPE)
endfunction()
run("install" ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix} --strip)
run("configure the consumer" ${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/build
    -G ${GENERATOR} -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_PREFIX_PATH=${prefix})
run("build the consumer" ${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run("run the consumer" ${WORK_DIR}/build/consumer)
if(NOT last_output MATCHES "consumer: ok")
  message(FATAL_ERROR "the consumer said: ${last_output}")
endif()
# The installed program finds its libraries and its bundled samples on its own.
run("the installed rshview" ${prefix}/bin/rshview material --node red_paint)
if(NOT last_output MATCHES "share/KEPRshView/samples/startup/materials/shaders/MPM_material.cgfx")
  message(FATAL_ERROR "the installed rshview did not use its installed samples:\n${last_output}")
endif()
# Nothing installed may name the source tree (no compiled-in path, no __FILE__ of the build
# machine): the installed files must work anywhere.
file(GLOB_RECURSE installed ${prefix}/*)
foreach(file IN LISTS installed)
  if(file MATCHES "\\.(cmake|h)$" OR file MATCHES "\\.so" OR file MATCHES "/bin/")
    file(STRINGS ${file} hits REGEX "${SOURCE_DIR}")
    if(hits)
      message(FATAL_ERROR "${file} names the source tree: ${hits}")
    endif()
  endif()
endforeach()
message(STATUS "installed, consumed by another project, and the installed rshview ran")
