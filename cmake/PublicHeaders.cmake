# add_public_headers(TARGET HEADER...): headers that are included as <vltextstream/...>, in the source
# tree as well as installed. In the source tree the links in include/vltextstream lead to the folders,
# so that an editor finds every header before anything is configured.

function(add_public_headers target)
  list(TRANSFORM ARGN PREPEND ${PROJECT_SOURCE_DIR}/include/vltextstream/ OUTPUT_VARIABLE files)
  target_sources(${target} PUBLIC
      FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}/include FILES ${files})
  set_target_properties(${target} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
endfunction()
