# add_public_headers(TARGET HEADER...): headers that are included as <vltextstream/...>, in the source
# tree as well as installed. In the source tree the links in include/vltextstream lead to them, so
# that an editor finds every header before anything is configured.

function(add_public_headers target)
  # A file set would install the link to a header of the root folder instead of the header.
  set(root_headers ${ARGN})
  list(FILTER root_headers EXCLUDE REGEX /)
  list(TRANSFORM root_headers PREPEND ${PROJECT_SOURCE_DIR}/)

  list(FILTER ARGN INCLUDE REGEX /)
  list(TRANSFORM ARGN PREPEND ${PROJECT_SOURCE_DIR}/include/vltextstream/)
  target_sources(${target} PUBLIC
      FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}/include FILES ${ARGN})
  set_target_properties(${target} PROPERTIES
      PUBLIC_HEADER "${root_headers}"
      VERIFY_INTERFACE_HEADER_SETS ON)
endfunction()
