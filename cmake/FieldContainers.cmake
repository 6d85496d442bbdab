# One generator writes the mechanical layer (<Class>Base and <Class>Fields)
# of every field container, the host core's and the library's alike, from the
# .fcd description that sits beside the hand-written class.
set(OSG_FCDGEN ${CMAKE_SOURCE_DIR}/tools/fcdgen/fcdgen.py)

# osg_generate_fcds(<out-sources-var> <gen-subdir> fcd...)
function(osg_generate_fcds outvar prefix)
  set(_srcs)
  foreach(_fcd ${ARGN})
    get_filename_component(_abs ${_fcd} ABSOLUTE)
    get_filename_component(_stem ${_fcd} NAME_WE)   # OSG<Class>
    set(_h   ${OSG_GEN_DIR}/${prefix}/${_stem}Base.h)
    set(_cpp ${OSG_GEN_DIR}/${prefix}/${_stem}Base.cpp)
    set(_f   ${OSG_GEN_DIR}/${prefix}/${_stem}Fields.h)
    add_custom_command(
      OUTPUT ${_h} ${_cpp} ${_f}
      COMMAND Python3::Interpreter ${OSG_FCDGEN} --prefix ${prefix} --out ${OSG_GEN_DIR}/${prefix} ${_abs}
      DEPENDS ${_abs} ${OSG_FCDGEN}
      COMMENT "Generating ${_stem}Base"
      VERBATIM)
    list(APPEND _srcs ${_cpp} ${_h} ${_f})
  endforeach()
  set(${outvar} ${_srcs} PARENT_SCOPE)
endfunction()
