# use_project_settings(TARGET): language, warnings and hardening that all targets of the project share.
# precompile_headers(TARGET HEADER...): compiles headers of other projects once for all sources.

set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR})

# A project that embeds this one chooses its compiler cache itself.
if(PROJECT_IS_TOP_LEVEL)
  find_program(CCACHE ccache)
  if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
  endif()
endif()

add_link_options(-Wl,-z,relro -Wl,-z,now)

function(use_project_settings target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_compile_options(${target} PRIVATE
      -Wall -Wextra -Wpedantic -Wconversion -Wshadow
      $<$<BOOL:${VLTEXTSTREAM_WARNINGS_AS_ERRORS}>:-Werror>
      -fstack-protector-strong
      # Scores are compared exactly: no operation may be fused into another.
      -ffp-contract=off)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}
      ${PROJECT_SOURCE_DIR}/include)
  set_target_properties(${target} PROPERTIES
      CXX_EXTENSIONS OFF
      CXX_VISIBILITY_PRESET hidden
      VISIBILITY_INLINES_HIDDEN ON
      POSITION_INDEPENDENT_CODE ON)
endfunction()

# Builds with a compiler cache do without, and so find missing includes.
function(precompile_headers target)
  if(NOT CCACHE)
    target_precompile_headers(${target} PRIVATE ${ARGN})
  endif()
endfunction()
