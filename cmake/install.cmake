# Install rules. The result can be moved as a whole: libraries find each other by $ORIGIN, the CMake package and ork.pc
# find the prefix from where they stand. Each rule names the Debian package (cmake/packages.cmake) that its files go to.
include(CMakePackageConfigHelpers)

# The kernel library stands beside the core, which looks for it there and nowhere else.
set_target_properties(ork_core PROPERTIES EXPORT_NAME core)
install(TARGETS ork_core EXPORT orkTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT core
        NAMELINK_COMPONENT dev)
install(TARGETS ork_nx2 LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT core)
if(TARGET ork_static)
  install(TARGETS ork_static EXPORT orkTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev)
endif()
install(DIRECTORY include/ork DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)

# The drop-ins carry the symbols of the system's BLAS, LAPACK and FFTW, so they keep to a folder that no program searches
# unasked.
set(ORK_DROP_IN_DIR ${CMAKE_INSTALL_LIBDIR}/ork)
foreach(name blas blas64 lapack fftw3 fftw3f)
  # Both paths from the start: CMake would fill a shorter one up with colons, which stand for the working directory.
  set_target_properties(ork_${name} PROPERTIES EXPORT_NAME ${name} INSTALL_RPATH "$ORIGIN/..;$ORIGIN"
                        BUILD_WITH_INSTALL_RPATH ON)
  install(TARGETS ork_${name} EXPORT orkTargets LIBRARY DESTINATION ${ORK_DROP_IN_DIR} COMPONENT blas
          NAMELINK_COMPONENT dev)
endforeach()

foreach(name fftw3 fftw3f)
  foreach(threads threads omp)
    install(FILES ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/lib${name}_${threads}.so.3 DESTINATION ${ORK_DROP_IN_DIR}
            COMPONENT blas)
  endforeach()
endforeach()

install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DATADIR}/ork COMPONENT tools USE_SOURCE_PERMISSIONS
        FILES_MATCHING REGEX "\\.(c|f90|py|R|m|sh)$" PATTERN "README.md" PATTERN "common.h" PATTERN "Makefile")

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ork)
install(EXPORT orkTargets NAMESPACE ork:: DESTINATION ${package_dir} COMPONENT dev)
configure_package_config_file(cmake/orkConfig.cmake.in ${CMAKE_BINARY_DIR}/orkConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/orkConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/orkConfig.cmake ${CMAKE_BINARY_DIR}/orkConfigVersion.cmake DESTINATION ${package_dir}
        COMPONENT dev)

file(RELATIVE_PATH ORK_PC_TO_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" ORK_PC_TO_PREFIX "${ORK_PC_TO_PREFIX}")
function(ork_install_pc name libraries)
  set(ORK_PC_NAME ${name})
  set(ORK_PC_LIBRARIES ${libraries})
  configure_file(cmake/ork.pc.in ${CMAKE_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${CMAKE_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)
endfunction()
ork_install_pc(ork "-lork_core")
if(TARGET ork_static)
  ork_install_pc(ork-static "-l:libork.a -lm -pthread")
endif()
