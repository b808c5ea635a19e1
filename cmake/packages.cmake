# Debian packages, one a component of the install rules: scripts/package builds them.
set(packages_core libork)
set(packages_dev libork-dev)
set(packages_blas libork-blas)
set(packages_tools ork-tools)

set(CPACK_COMPONENTS_ALL core dev blas)
if(ORK_TOOLS)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
get_cmake_property(components COMPONENTS)
foreach(component ${components})
  if(NOT DEFINED packages_${component})
    message(FATAL_ERROR "An install() rule has the component ${component}, which is in no package")
  endif()
endforeach()

# With CMAKE_INSTALL_PREFIX=/usr the libraries are in Debian's folder of the architecture, otherwise in /usr/lib.
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_GENERATOR DEB)
set(CPACK_SOURCE_GENERATOR "")
set(CPACK_PACKAGE_NAME ork)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_STRIP_FILES ON)
set(CPACK_THREADS 0) # one a processor
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
                                                WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The ork authors <ork@packages.invalid>" CACHE STRING "Who answers for the packages")
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

# What the system's libraries are called is found out; what the packages need of each other is the same version of it,
# as the core and the kernels are one build.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(same "(= ${PROJECT_VERSION})")

# The first line of each is the short description.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(cpu "A processor with SSE4.2 is needed.")

set(CPACK_DEBIAN_CORE_PACKAGE_NAME ${packages_core})
set(CPACK_COMPONENT_CORE_DESCRIPTION "numerical kernels for x86-64: libraries
BLAS, LAPACK, Fourier transforms, sparse matrices, Poisson solvers and
convolution: the library of kernels, written for 128-bit vectors, and the
library that serves them. ${cpu}")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME ${packages_dev})
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "libork ${same}, libork-blas ${same}")
set(CPACK_COMPONENT_DEV_DESCRIPTION "numerical kernels for x86-64: headers and archive
Headers for C and C++, an archive of the whole for programs that are linked
statically, and what CMake and pkg-config read.")

set(CPACK_DEBIAN_BLAS_PACKAGE_NAME ${packages_blas})
set(CPACK_DEBIAN_BLAS_PACKAGE_DEPENDS "libork ${same}")
set(CPACK_DEBIAN_BLAS_PACKAGE_PROVIDES "libblas.so.3, libblas64.so.3")
set(CPACK_COMPONENT_BLAS_DESCRIPTION "numerical kernels for x86-64: BLAS of the system
Programs that use the system's BLAS run on ork: its libblas.so.3 and
libblas64.so.3 are alternatives to the reference library's. Beside them, where
no program looks unasked, are a library to put in front of the system's LAPACK
and replacements for FFTW. ${cpu}")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME ${packages_tools})
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION math)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "libork ${same}")
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "numerical kernels for x86-64: program and examples
The program ork shows the processor and the kernels in use, runs a
demonstration on real data, measures and checks. The examples and their data
are in /usr/share/ork.")

# packaging/libork/shlibs tells packages of others where libork_core.so.0 is from. libork-blas has none: its libraries
# are known by the names of the system's.
set(packaging ${CMAKE_SOURCE_DIR}/packaging)
set(ORK_MULTIARCH x86_64-linux-gnu)
foreach(script postinst prerm)
  configure_file(${packaging}/libork-blas/${script}.in ${CMAKE_BINARY_DIR}/packaging/${script} @ONLY)
endforeach()
set(CPACK_DEBIAN_CORE_PACKAGE_CONTROL_EXTRA ${packaging}/libork/shlibs ${packaging}/triggers)
set(CPACK_DEBIAN_BLAS_PACKAGE_CONTROL_EXTRA ${CMAKE_BINARY_DIR}/packaging/postinst ${CMAKE_BINARY_DIR}/packaging/prerm
    ${packaging}/triggers)

# Every package has its licence and its history; an install without packages has no use for them.
find_program(ORK_GZIP gzip)
mark_as_advanced(ORK_GZIP)
if(ORK_GZIP)
  execute_process(COMMAND ${ORK_GZIP} -9nc ${packaging}/changelog OUTPUT_FILE ${CMAKE_BINARY_DIR}/packaging/changelog.gz
                  COMMAND_ERROR_IS_FATAL ANY)
endif()
foreach(component ${CPACK_COMPONENTS_ALL})
  set(doc share/doc/${packages_${component}})
  install(FILES LICENSE DESTINATION ${doc} RENAME copyright COMPONENT ${component} EXCLUDE_FROM_ALL)
  install(FILES ${CMAKE_BINARY_DIR}/packaging/changelog.gz DESTINATION ${doc} COMPONENT ${component} EXCLUDE_FROM_ALL
          OPTIONAL)
endforeach()

include(CPack)
