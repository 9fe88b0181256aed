# Runs the generator with the example's options into WORK and compares the report and the
# settings file with the committed ones in EXAMPLES, byte for byte.
file(REMOVE_RECURSE "${WORK}")
file(MAKE_DIRECTORY "${WORK}")
execute_process(COMMAND "${GENERATOR}" -o "${WORK}/${REPORT}" RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "the generator failed: ${result}")
endif()
foreach(name IN ITEMS "${REPORT}" "Tarnwick.ini")
    execute_process(COMMAND "${CMAKE_COMMAND}" -E compare_files
                            "${EXAMPLES}/${name}" "${WORK}/${name}"
                    RESULT_VARIABLE different)
    if(NOT different EQUAL 0)
        message(FATAL_ERROR "${name} regenerated differs from the committed example")
    endif()
endforeach()
