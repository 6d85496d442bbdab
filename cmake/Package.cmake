# Installation and the package files that let applications build against
# an installed tree:
#
#   <prefix>/lib/libOSGBase.so.V, libOSGSystem.so.V, libCorvane.so.V,
#                                   libOSGWindowGLUT.so.V, libOSGWindowX.so.V
#   <prefix>/include/OpenSG/        every public header, the generated
#                                   <Class>Base/<Class>Fields ones included
#   <prefix>/bin/corvane, osg-config
#   <prefix>/share/corvane/         transfer-function presets and sample
#                                   volumes, the sample plug-in's source
#   <prefix>/lib/cmake/Corvane/     find_package(Corvane)
#   <prefix>/lib/pkgconfig/         corvane.pc, OSGBase.pc, OSGSystem.pc,
#                                   OSGWindowGLUT.pc, OSGWindowX.pc
#
# Every path written into the package files is relative to the file
# itself, so a tree installed with `cmake --install build --prefix P` can
# be moved as a whole.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(CORVANE_INSTALL_DATADIR ${CMAKE_INSTALL_DATADIR}/corvane)
set(CORVANE_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/Corvane)
set(CORVANE_INSTALL_PKGCONFIGDIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# --- the libraries ---------------------------------------------------------
# 0.x releases may change the ABI with the minor version, so the SONAME
# carries both (libCorvane.so.0.1).
set(CORVANE_SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(CORVANE_LIBRARIES OSGBase OSGSystem OSGWindowGLUT OSGWindowX Corvane)
foreach(_lib ${CORVANE_LIBRARIES})
  set_target_properties(${_lib} PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${CORVANE_SOVERSION})
  add_library(Corvane::${_lib} ALIAS ${_lib})
endforeach()
# The two upper libraries find the ones below in their own folder. OSGBase
# needs no run path, and must have none: its SharedLibrary opens plug-ins,
# and dlopen reads the program's RPATH only for a caller without a RUNPATH.
set_target_properties(OSGSystem OSGWindowGLUT OSGWindowX Corvane PROPERTIES
                      INSTALL_RPATH "$ORIGIN")
# the headers use C++17 (if constexpr in the field templates)
target_compile_features(OSGBase PUBLIC cxx_std_17)

install(TARGETS ${CORVANE_LIBRARIES} EXPORT CorvaneTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

# --- headers: the hand-written ones beside the sources and the generated
# ones, into one flat OpenSG/ folder as in the build tree -------------------
file(GLOB_RECURSE _headers CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/opensg/*.h ${PROJECT_SOURCE_DIR}/opensg/*.inl
  ${PROJECT_SOURCE_DIR}/corvane/*.h ${PROJECT_SOURCE_DIR}/corvane/*.inl)
foreach(_lib ${CORVANE_LIBRARIES})
  get_target_property(_srcs ${_lib} SOURCES)
  foreach(_s ${_srcs})
    if(_s MATCHES "^${OSG_GEN_DIR}/.*\\.(h|inl)$")
      list(APPEND _headers ${_s})
    endif()
  endforeach()
endforeach()
install(FILES ${_headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/OpenSG)

# --- the program, its sample plug-in and the run-time data -----------------
# corvane finds its libraries and its data relative to its own folder
file(RELATIVE_PATH _bin_to_lib /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
set_target_properties(corvane PROPERTIES INSTALL_RPATH "$ORIGIN/${_bin_to_lib}")
install(TARGETS corvane RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
# the demo loads the flower plug-in from ../lib beside the program
install(TARGETS corvaneflower LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES ${PROJECT_SOURCE_DIR}/tools/plugins/FlowerPlugin.cpp
        DESTINATION ${CORVANE_INSTALL_DATADIR}/plugins)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/data/ DESTINATION ${CORVANE_INSTALL_DATADIR}
        PATTERN "*.sh" EXCLUDE PATTERN "*.py" EXCLUDE)

# --- find_package(Corvane) -------------------------------------------------
install(EXPORT CorvaneTargets NAMESPACE Corvane::
        FILE CorvaneTargets.cmake DESTINATION ${CORVANE_INSTALL_CMAKEDIR})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/package/CorvaneConfig.cmake.in
  ${PROJECT_BINARY_DIR}/package/CorvaneConfig.cmake
  INSTALL_DESTINATION ${CORVANE_INSTALL_CMAKEDIR}
  PATH_VARS CMAKE_INSTALL_INCLUDEDIR CMAKE_INSTALL_LIBDIR CORVANE_INSTALL_DATADIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/package/CorvaneConfigVersion.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/package/CorvaneConfig.cmake
              ${PROJECT_BINARY_DIR}/package/CorvaneConfigVersion.cmake
        DESTINATION ${CORVANE_INSTALL_CMAKEDIR})

# --- pkg-config and osg-config ---------------------------------------------
# the .pc files find the prefix from their own folder (${pcfiledir})
file(RELATIVE_PATH CORVANE_PC_TO_PREFIX /${CORVANE_INSTALL_PKGCONFIGDIR} /)
string(REGEX REPLACE "/$" "" CORVANE_PC_TO_PREFIX "${CORVANE_PC_TO_PREFIX}")
file(RELATIVE_PATH CORVANE_BIN_TO_PREFIX /${CMAKE_INSTALL_BINDIR} /)
string(REGEX REPLACE "/$" "" CORVANE_BIN_TO_PREFIX "${CORVANE_BIN_TO_PREFIX}")
# " -ldl" where the platform keeps dlopen in a library of its own
set(CORVANE_DL_FLAGS)
foreach(_l ${CMAKE_DL_LIBS})
  string(APPEND CORVANE_DL_FLAGS " -l${_l}")
endforeach()
foreach(_pc OSGBase OSGSystem OSGWindowGLUT OSGWindowX corvane)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/package/${_pc}.pc.in
                 ${PROJECT_BINARY_DIR}/package/${_pc}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/package/${_pc}.pc
          DESTINATION ${CORVANE_INSTALL_PKGCONFIGDIR})
endforeach()
configure_file(${CMAKE_CURRENT_LIST_DIR}/package/osg-config.in
               ${PROJECT_BINARY_DIR}/package/osg-config @ONLY)
install(PROGRAMS ${PROJECT_BINARY_DIR}/package/osg-config
        DESTINATION ${CMAKE_INSTALL_BINDIR})
