# Installs, moves the prefix, and builds and runs the consumer with find_package and with pkg-config.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}\nended with ${status}:\n${output}")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/first)
file(RENAME ${WORK}/first ${WORK}/moved)
set(prefix ${WORK}/moved)
if(EXISTS ${WORK}/first)
  message(FATAL_ERROR "the first prefix is still there")
endif()

foreach(drop_in libblas.so.3 libblas64.so.3 liblapack_ork.so.3 libfftw3.so.3 libfftw3f.so.3)
  if(NOT EXISTS ${prefix}/${LIBDIR}/ork/${drop_in})
    message(FATAL_ERROR "${drop_in} was not installed")
  endif()
endforeach()

set(flags)
if(SANITIZE)
  set(flags -fsanitize=${SANITIZE})
endif()

# With CMake: a C and a C++ program on the core, and a C program on the drop-in.
run(${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK}/build -G ${GENERATOR} -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_C_COMPILER=${CC}
    -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_C_FLAGS=${flags} -DCMAKE_CXX_FLAGS=${flags})
run(${CMAKE_COMMAND} --build ${WORK}/build)
foreach(program c cpp fortran_names)
  run(${WORK}/build/consumer_${program})
endforeach()
# The program on the archive needs no library of ork.
if(NOT SANITIZE)
  run(${WORK}/build/consumer_static)
  execute_process(COMMAND env LD_DEBUG=files ${WORK}/build/consumer_static ERROR_VARIABLE files OUTPUT_QUIET)
  if(files MATCHES "libork_(core|nx2)")
    message(FATAL_ERROR "a program that was linked statically opened a library of ork:\n${files}")
  endif()
endif()
# The program on the drop-in doesn't hold the core itself: what it calls comes through libblas.so.3.
execute_process(COMMAND env LD_DEBUG=files ${WORK}/build/consumer_fortran_names ERROR_VARIABLE files OUTPUT_QUIET)
if(NOT files MATCHES "${prefix}/${LIBDIR}/ork/libblas.so.3")
  message(FATAL_ERROR "the drop-in was not loaded from ${prefix}:\n${files}")
endif()

# With pkg-config, which need not be there.
find_program(pkg_config pkg-config)
if(pkg_config)
  execute_process(COMMAND env PKG_CONFIG_PATH=${prefix}/${LIBDIR}/pkgconfig ${pkg_config} --cflags --libs ork
                  OUTPUT_VARIABLE options OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(options)
  run(${CC} ${flags} ${SOURCE}/main.c -o ${WORK}/from_pc_c ${options})
  run(${CXX} ${flags} ${SOURCE}/main.cpp -o ${WORK}/from_pc_cpp ${options})
  foreach(program from_pc_c from_pc_cpp)
    run(env LD_LIBRARY_PATH=${prefix}/${LIBDIR} ${WORK}/${program})
  endforeach()

  if(NOT SANITIZE)
    execute_process(COMMAND env PKG_CONFIG_PATH=${prefix}/${LIBDIR}/pkgconfig ${pkg_config} --cflags --libs ork-static
                    OUTPUT_VARIABLE static_options OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    separate_arguments(static_options)
    run(${CC} -static ${SOURCE}/main.c -o ${WORK}/from_pc_static ${static_options})
    run(${WORK}/from_pc_static)
  endif()

  # The examples are built as they say at their heads, and read the data that came with them.
  set(examples ${prefix}/share/ork/examples)
  run(${CC} ${flags} ${examples}/nearest_mean.c -o ${WORK}/nearest_mean ${options})
  run(env LD_LIBRARY_PATH=${prefix}/${LIBDIR} ${WORK}/nearest_mean ${examples}/data/digits.csv)
  run(${CC} ${flags} ${examples}/plate.c -o ${WORK}/plate ${options} -lm)
  run(env LD_LIBRARY_PATH=${prefix}/${LIBDIR} ${WORK}/plate)
endif()

if(TOOLS)
  run(${prefix}/${BINDIR}/ork info)
  run(${prefix}/${BINDIR}/ork demo --out ${WORK})
endif()
file(REMOVE_RECURSE ${WORK})
