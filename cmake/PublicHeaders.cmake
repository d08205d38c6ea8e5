# add_public_headers(TARGET HEADER...): headers that are included as <vltextstream/...> in the build
# tree as well as installed. The build tree gets there through links to the source folders.

foreach(entry detection host options scoring source standalone strategy version.hpp
        vltextstream.hpp)
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/include/vltextstream)
  file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${entry}
       ${PROJECT_BINARY_DIR}/include/vltextstream/${entry} SYMBOLIC)
endforeach()

function(add_public_headers target)
  list(TRANSFORM ARGN PREPEND ${PROJECT_BINARY_DIR}/include/vltextstream/ OUTPUT_VARIABLE files)
  target_sources(${target} PUBLIC
      FILE_SET HEADERS BASE_DIRS ${PROJECT_BINARY_DIR}/include FILES ${files})
  set_target_properties(${target} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
endfunction()
