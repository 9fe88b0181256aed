# Builds and runs the consumer program against the library in one way:
#   MODE=subdirectory: add_subdirectory of the source tree
#   MODE=package:      cmake --install of BUILD_DIR into a prefix, then find_package
#   MODE=pkgconfig:    cmake --install of BUILD_DIR into a prefix, then the compiler with the flags
#                      of pkg-config; the installed quillon tool must run too
# Inputs: MODE, SOURCE_DIR, BUILD_DIR, WORK_DIR, CXX, CXX_FLAGS, LINKER_FLAGS.
file(REMOVE_RECURSE "${WORK_DIR}")
set(common -DCMAKE_CXX_COMPILER=${CXX} "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}"
           "-DCMAKE_EXE_LINKER_FLAGS=${LINKER_FLAGS}")

if(MODE STREQUAL "package" OR MODE STREQUAL "pkgconfig")
    execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${WORK_DIR}/prefix"
                    RESULT_VARIABLE result OUTPUT_QUIET)
    if(result)
        message(FATAL_ERROR "install failed")
    endif()
    list(APPEND common "-DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix")
else()
    list(APPEND common "-DQUILLON_SOURCE_DIR=${SOURCE_DIR}")
endif()

if(MODE STREQUAL "pkgconfig")
    file(GLOB_RECURSE pc_files "${WORK_DIR}/prefix/*/quillon.pc")
    list(LENGTH pc_files found)
    if(NOT found EQUAL 1)
        message(FATAL_ERROR "quillon.pc was not installed")
    endif()
    get_filename_component(pc_dir "${pc_files}" DIRECTORY)
    set(ENV{PKG_CONFIG_PATH} "${pc_dir}")
    execute_process(COMMAND pkg-config --cflags --libs quillon OUTPUT_VARIABLE flags
                    RESULT_VARIABLE result OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(result)
        message(FATAL_ERROR "pkg-config does not know quillon")
    endif()
    separate_arguments(flags UNIX_COMMAND "${flags}")
    separate_arguments(cxx_flags UNIX_COMMAND "${CXX_FLAGS} ${LINKER_FLAGS}")
    execute_process(COMMAND "${CXX}" ${cxx_flags} "${SOURCE_DIR}/tests/consumer/main.cpp"
                            ${flags} -o "${WORK_DIR}/consumer" RESULT_VARIABLE result)
    if(result)
        message(FATAL_ERROR "building the consumer with pkg-config's flags failed")
    endif()
    execute_process(COMMAND "${WORK_DIR}/consumer" "${WORK_DIR}/report.txt" RESULT_VARIABLE result)
    if(result)
        message(FATAL_ERROR "the consumer failed")
    endif()
    execute_process(COMMAND "${WORK_DIR}/prefix/bin/quillon" --version RESULT_VARIABLE result
                    OUTPUT_QUIET)
    if(result)
        message(FATAL_ERROR "the installed quillon tool does not run")
    endif()
    return()
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
