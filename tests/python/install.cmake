# pip leaves its work in the sources, so it is given a copy.
file(REMOVE_RECURSE ${COPY} ${SITE})
file(COPY ${SOURCE}/ DESTINATION ${COPY} PATTERN __pycache__ EXCLUDE)
execute_process(COMMAND ${PYTHON} -m pip install --quiet --no-index --no-build-isolation --no-deps --target ${SITE} ${COPY}
                RESULT_VARIABLE failed OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(failed)
  message(FATAL_ERROR "pip could not install the package:\n${out}")
endif()
