# Headers are included as <OpenSG/OSGxxx.h>. The sources keep them beside the
# code, in folders by concept; this links each one into build/include/OpenSG
# so that applications see OpenSG's flat include tree. Generated Base headers
# are written straight into build/gen/OpenSG.
set(OSG_INCLUDE_DIR ${CMAKE_BINARY_DIR}/include)
set(OSG_GEN_DIR ${CMAKE_BINARY_DIR}/gen)
file(MAKE_DIRECTORY ${OSG_INCLUDE_DIR}/OpenSG ${OSG_GEN_DIR}/OpenSG)

# osg_link_headers(<include-root> <source-folder>): links every header below
# the folder into <include-root>/OpenSG.
function(osg_link_headers root srcdir)
  file(GLOB_RECURSE _hdrs CONFIGURE_DEPENDS ${srcdir}/*.h ${srcdir}/*.inl)
  file(MAKE_DIRECTORY ${root}/OpenSG)
  foreach(_h ${_hdrs})
    get_filename_component(_n ${_h} NAME)
    set(_dst ${root}/OpenSG/${_n})
    if(NOT IS_SYMLINK ${_dst})
      file(CREATE_LINK ${_h} ${_dst} SYMBOLIC)
    endif()
  endforeach()
endfunction()
