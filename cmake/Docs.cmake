# The API documentation: `cmake --build build --target docs` runs Doxygen
# (cmake/Doxyfile.in) into build/docs/html. It exists when Doxygen is found.
#
# Inputs: the library's headers (corvane/), the usage pages (docs/usage/),
# the generated <Class>Base.h and <Class>Fields.h of the library's field
# containers (their field accessors are the containers' public API), the
# longer documents (docs/*.md), and the host core's headers (opensg/),
# which give the library's classes their bases and links. The build fails
# on any warning about corvane/ or docs/usage/
# (cmake/CheckDocWarnings.cmake); the generated headers, the documents and
# the host core may warn (the generated accessors carry no comments of
# their own), and those warnings stay in build/docs/warnings.log.
find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
  return()
endif()

set(CORVANE_DOCS_DIR ${CMAKE_BINARY_DIR}/docs)
file(GLOB_RECURSE _fcds CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/corvane/*.fcd)
set(_inputs ${CMAKE_SOURCE_DIR}/corvane ${CMAKE_SOURCE_DIR}/docs/usage)
set(_excluded)
foreach(_fcd ${_fcds})
  get_filename_component(_stem ${_fcd} NAME_WE)
  list(APPEND _inputs ${OSG_GEN_DIR}/OpenSG/${_stem}Base.h ${OSG_GEN_DIR}/OpenSG/${_stem}Fields.h)
  # OpenSG's raw-pointer typedef of every container (VolumeNodeP)
  string(REGEX REPLACE "^OSG" "" _class ${_stem})
  list(APPEND _excluded ${_class}P)
endforeach()
# the subsystems' longer documents, which the usage pages link to
file(GLOB _documents CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/docs/*.md)
list(APPEND _inputs ${_documents} ${CMAKE_SOURCE_DIR}/opensg)
list(JOIN _inputs " " CORVANE_DOCS_INPUT)
list(JOIN _excluded " " CORVANE_DOCS_EXCLUDED)
set(CORVANE_DOCS_MAINPAGE ${CMAKE_SOURCE_DIR}/docs/usage/index.md)
configure_file(${CMAKE_SOURCE_DIR}/cmake/Doxyfile.in ${CORVANE_DOCS_DIR}/Doxyfile @ONLY)

add_custom_target(docs
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${CORVANE_DOCS_DIR}/html ${CORVANE_DOCS_DIR}/warnings.log
  COMMAND Doxygen::doxygen ${CORVANE_DOCS_DIR}/Doxyfile
  COMMAND ${CMAKE_COMMAND} -DLOG=${CORVANE_DOCS_DIR}/warnings.log
          "-DSTRICT=${CMAKE_SOURCE_DIR}/corvane/|${CMAKE_SOURCE_DIR}/docs/usage/"
          -P ${CMAKE_SOURCE_DIR}/cmake/CheckDocWarnings.cmake
  WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
  COMMENT "API documentation into ${CORVANE_DOCS_DIR}/html"
  VERBATIM)
# the generated headers come with the library
add_dependencies(docs Corvane)
