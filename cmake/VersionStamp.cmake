# Sets VERSION_STAMP_SOURCE, a source file with the version, the day of the build (that of
# SOURCE_DATE_EPOCH when it is set) and the place of the library in an installation.

string(TIMESTAMP VERSION_STAMP_DATE "%Y-%m-%d" UTC)
set(VERSION_STAMP_PATH
    "${CMAKE_INSTALL_LIBDIR}/${CMAKE_SHARED_LIBRARY_PREFIX}vltextstream${CMAKE_SHARED_LIBRARY_SUFFIX}")
set(VERSION_STAMP_SOURCE ${PROJECT_BINARY_DIR}/version.cpp)
configure_file(${PROJECT_SOURCE_DIR}/cmake/version.cpp.in ${VERSION_STAMP_SOURCE} @ONLY)
