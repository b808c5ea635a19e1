# Runs one program on ork. FAULT: a library whose dgemm_ errs in one element by one part in a million, put in front.
if(FAULT)
  set(ENV{LD_PRELOAD} ${FAULT})
  set(ENV{ORK_TEST_FAULT} s)
endif()
execute_process(COMMAND sh ${SCRIPT} --check --only ${PROGRAM} ${LIBRARIES}
                RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
message("${output}")
string(REGEX MATCHALL "(^|\n)check [^\n]*" checks "${output}")
list(LENGTH checks count)
if(status EQUAL 77)
  return() # the sentence in the output makes it a skipped test
elseif(count LESS 8)
  message(FATAL_ERROR "${PROGRAM}: exit status ${status} after ${count} checks")
elseif(FAULT AND NOT (status EQUAL 1 AND output MATCHES "check [^\n]* wrong\n"))
  message(FATAL_ERROR "${PROGRAM}: a wrong product went unnoticed, exit status ${status}")
elseif(NOT FAULT AND NOT status EQUAL 0)
  message(FATAL_ERROR "${PROGRAM}: exit status ${status}")
endif()
