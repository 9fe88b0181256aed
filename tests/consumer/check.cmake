# Builds and runs the consumer program against the library in one way:
#   MODE=subdirectory: add_subdirectory of the source tree
#   MODE=package:      cmake --install of BUILD_DIR into a prefix, then find_package
# Inputs: MODE, SOURCE_DIR, BUILD_DIR, WORK_DIR, CXX, CXX_FLAGS, LINKER_FLAGS.
file(REMOVE_RECURSE "${WORK_DIR}")
set(common -DCMAKE_CXX_COMPILER=${CXX} "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}"
           "-DCMAKE_EXE_LINKER_FLAGS=${LINKER_FLAGS}")

if(MODE STREQUAL "pkgconfig")
    # Installed with its pkg-config file, built by the compiler alone.
    execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${WORK_DIR}/prefix"
                    RESULT_VARIABLE result OUTPUT_QUIET)
    if(result)
        message(FATAL_ERROR "install failed")
    endif()
    file(GLOB_RECURSE pcfile "${WORK_DIR}/prefix/*/quillon.pc")
    get_filename_component(pcdir "${pcfile}" DIRECTORY)
    execute_process(COMMAND "${CMAKE_COMMAND}" -E env "PKG_CONFIG_PATH=${pcdir}"
                            pkg-config --cflags --libs quillon
                    OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE result)
    if(result)
        message(FATAL_ERROR "pkg-config does not know quillon")
    endif()
    separate_arguments(flags UNIX_COMMAND "${flags}")
    separate_arguments(extra UNIX_COMMAND "${CXX_FLAGS} ${LINKER_FLAGS}")
    file(MAKE_DIRECTORY "${WORK_DIR}/build")
    execute_process(COMMAND "${CXX}" ${extra} "${SOURCE_DIR}/tests/consumer/main.cpp" ${flags}
                            -o "${WORK_DIR}/build/consumer" RESULT_VARIABLE result)
    if(result)
        message(FATAL_ERROR "building the consumer with pkg-config failed")
    endif()
    execute_process(COMMAND "${WORK_DIR}/build/consumer" "${WORK_DIR}/report.txt"
                    RESULT_VARIABLE result)
    if(result)
        message(FATAL_ERROR "the consumer failed")
    endif()
    return()
endif()

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
