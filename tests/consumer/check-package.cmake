# Builds a program with the libraries, in one of the three ways that a project may take them, and
# runs it on a file.
#   cmake -D WAY=installed|pkg-config|embedded -D BUILD=... -D SOURCE=... -D WORK=...
#         -D COMPILER=... -D FLAGS=... -D FILE=... -D EXPECT=... -P check-package.cmake
# BUILD is a finished build of the project SOURCE, WORK a folder that the script replaces, EXPECT
# the output of the program for FILE.
set(consumer ${CMAKE_CURRENT_LIST_DIR})
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})

# Runs a command and sets `output`.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output
                  ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN}\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

function(configure project)
  run(${CMAKE_COMMAND} -S ${consumer}/${project} -B ${WORK}/build -G Ninja
      -D CMAKE_CXX_COMPILER=${COMPILER} -D CMAKE_CXX_FLAGS=${FLAGS} ${ARGN})
endfunction()

function(expect_answer program)
  run(${program} ${FILE})
  if(NOT output STREQUAL "${EXPECT}\n")
    message(FATAL_ERROR "expected '${EXPECT}', got '${output}'")
  endif()
endfunction()

if(NOT WAY STREQUAL "embedded")
  run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/first)
  # An installation still works after it was moved.
  file(RENAME ${WORK}/first ${WORK}/prefix)
endif()

if(WAY STREQUAL "installed")
  configure(installed -D CMAKE_PREFIX_PATH=${WORK}/prefix)
  run(${CMAKE_COMMAND} --build ${WORK}/build)
  expect_answer(${WORK}/build/consumer)
  run(${WORK}/prefix/bin/vltext ${FILE})
elseif(WAY STREQUAL "pkg-config")
  file(GLOB_RECURSE package ${WORK}/prefix/vlthost.pc)
  cmake_path(GET package PARENT_PATH packages)
  set(ENV{PKG_CONFIG_PATH} ${packages})
  run(pkg-config --cflags --libs vlthost)
  string(STRIP "${output}" arguments)
  separate_arguments(arguments UNIX_COMMAND "${FLAGS} ${arguments}")
  run(pkg-config --variable=libdir vltextstream)
  string(STRIP "${output}" libraries)
  # Some systems link only what the program itself calls.
  run(${COMPILER} -std=c++20 -Wl,--as-needed -Wl,-rpath,${libraries} -o ${WORK}/consumer
      ${consumer}/main.cpp ${arguments})
  expect_answer(${WORK}/consumer)
elseif(WAY STREQUAL "embedded")
  configure(embedded -D LIBRARY_SOURCE=${SOURCE})
  run(${CMAKE_COMMAND} --build ${WORK}/build)
  expect_answer(${WORK}/build/consumer)
  # The project installs what it wants to.
  run(${CMAKE_COMMAND} --install ${WORK}/build --prefix ${WORK}/prefix)
  file(GLOB_RECURSE installed ${WORK}/prefix/*)
  if(installed)
    message(FATAL_ERROR "an embedding project installs ${installed}")
  endif()
else()
  message(FATAL_ERROR "WAY is '${WAY}'")
endif()
