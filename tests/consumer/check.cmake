# Builds and runs the consumer program against the library in one way:
#   MODE=subdirectory: add_subdirectory of the source tree
#   MODE=package:      cmake --install of BUILD_DIR into a prefix, then find_package
#   MODE=pkgconfig:    the same install, then the compiler alone with pkg-config's flags
# Inputs: MODE, SOURCE_DIR, BUILD_DIR, WORK_DIR, CXX, CXX_FLAGS, LINKER_FLAGS.
file(REMOVE_RECURSE "${WORK_DIR}")
set(common -DCMAKE_CXX_COMPILER=${CXX} "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}"
           "-DCMAKE_EXE_LINKER_FLAGS=${LINKER_FLAGS}")

# Runs the command that follows the description; stops with "<what> failed" when it fails.
function(run what)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result)
    if(result)
        message(FATAL_ERROR "${what} failed")
    endif()
endfunction()

if(MODE STREQUAL "subdirectory")
    # A Release build (-O3 with GCC), as a program that adds the library would make it; the
    # library's own warnings are not errors there.
    list(APPEND common "-DQUILLON_SOURCE_DIR=${SOURCE_DIR}" -DCMAKE_BUILD_TYPE=Release)
else()
    run("install" "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${WORK_DIR}/prefix"
        OUTPUT_QUIET)
    list(APPEND common "-DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix")
endif()

if(MODE STREQUAL "pkgconfig")
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
    run("building the consumer with pkg-config" "${CXX}" ${extra}
        "${SOURCE_DIR}/tests/consumer/main.cpp" ${flags} -o "${WORK_DIR}/build/consumer")
else()
    run("configuring the consumer" "${CMAKE_COMMAND}" -S "${SOURCE_DIR}/tests/consumer"
        -B "${WORK_DIR}/build" ${common})
    run("building the consumer" "${CMAKE_COMMAND}" --build "${WORK_DIR}/build" -j 2)
endif()
run("the consumer" "${WORK_DIR}/build/consumer" "${WORK_DIR}/report.txt")
