# Installs a build, builds the consumer project against it and runs the consumer on a file.
#   cmake -D BUILD=... -D SOURCE=... -D WORK=... -D FLAGS=... -D FILE=... -D EXPECT=... -P run.cmake
file(REMOVE_RECURSE ${WORK})

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output
                  ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN}\n${output}")
  endif()
  set(output ${output} PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/prefix)
run(${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK}/build -G Ninja -D CMAKE_CXX_COMPILER=${COMPILER}
    -D CMAKE_PREFIX_PATH=${WORK}/prefix -D CMAKE_CXX_FLAGS=${FLAGS})
run(${CMAKE_COMMAND} --build ${WORK}/build)
run(${WORK}/build/consumer ${FILE})
if(NOT output STREQUAL "${EXPECT}\n")
  message(FATAL_ERROR "expected '${EXPECT}', got '${output}'")
endif()
run(${WORK}/prefix/bin/vltext ${FILE})
