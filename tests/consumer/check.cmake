# Builds and runs the consumer program against the library in one way:
#   MODE=subdirectory: add_subdirectory of the source tree
#   MODE=package:      cmake --install of BUILD_DIR into a prefix, then find_package
# Inputs: MODE, SOURCE_DIR, BUILD_DIR, WORK_DIR, CXX, CXX_FLAGS, LINKER_FLAGS.
file(REMOVE_RECURSE "${WORK_DIR}")
set(common -DCMAKE_CXX_COMPILER=${CXX} "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}"
           "-DCMAKE_EXE_LINKER_FLAGS=${LINKER_FLAGS}")

if(MODE STREQUAL "package")
    execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${WORK_DIR}/prefix"
                    RESULT_VARIABLE result OUTPUT_QUIET)
    if(result)
        message(FATAL_ERROR "install failed")
    endif()
    list(APPEND common "-DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix")
else()
    # A Release build (-O3 with GCC), as a program that adds the library would make it; the
    # library's own warnings are not errors there.
    list(APPEND common "-DQUILLON_SOURCE_DIR=${SOURCE_DIR}" -DCMAKE_BUILD_TYPE=Release)
endif()

execute_process(COMMAND "${CMAKE_COMMAND}" -S "${SOURCE_DIR}/tests/consumer" -B "${WORK_DIR}/build"
                        ${common} RESULT_VARIABLE result)
if(result)
    message(FATAL_ERROR "configuring the consumer failed")
endif()
execute_process(COMMAND "${CMAKE_COMMAND}" --build "${WORK_DIR}/build" -j 2 RESULT_VARIABLE result)
if(result)
    message(FATAL_ERROR "building the consumer failed")
endif()
execute_process(COMMAND "${WORK_DIR}/build/consumer" "${WORK_DIR}/report.txt"
                RESULT_VARIABLE result)
if(result)
    message(FATAL_ERROR "the consumer failed")
endif()
