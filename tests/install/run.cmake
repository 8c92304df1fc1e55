# Installs the build into a fresh prefix, builds the consumer against it and
# runs it on the installed camera models.
#   cmake -DBUILD_DIR=... -DWORK_DIR=... -DCONSUMER_DIR=... -DCXX_FLAGS=... -P run.cmake
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix}
    RESULT_VARIABLE failed OUTPUT_QUIET)
if(failed)
    message(FATAL_ERROR "install failed")
endif()
foreach(expected
        include/GenApi/GenApi.h include/OrbCam/OrbCam.h include/OrbGui/orbgenparamtreeview.h
        include/OrbGui/orbguiexport.h
        share/orbcam/cameras/orbsim-c2000.xml lib/cmake/OrbCameraGuiApi/OrbCameraGuiApiConfig.cmake)
    if(NOT EXISTS ${prefix}/${expected})
        message(FATAL_ERROR "not installed: ${expected}")
    endif()
endforeach()
execute_process(COMMAND ${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/build
        -DCMAKE_PREFIX_PATH=${prefix} "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}"
        "-DCMAKE_EXE_LINKER_FLAGS=${CXX_FLAGS}"
    RESULT_VARIABLE failed)
if(failed)
    message(FATAL_ERROR "the consumer does not configure against the package")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/build RESULT_VARIABLE failed)
if(failed)
    message(FATAL_ERROR "the consumer does not build against the package")
endif()
# The X server of the test run when there is one (Qt's offscreen platform
# leaves allocations that the leak checker reports).
set(platform)
if(NOT DEFINED ENV{DISPLAY})
    set(platform QT_QPA_PLATFORM=offscreen)
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -E env ${platform}
        ORBCAM_CAMERAS_DIR=${prefix}/share/orbcam/cameras ${WORK_DIR}/build/orb-consumer
    RESULT_VARIABLE failed)
if(failed)
    message(FATAL_ERROR "the consumer failed: ${failed}")
endif()

# Each library on its own through pkg-config, as a build without CMake uses
# it: compile, link and run one small program per .pc file.
find_program(PKG_CONFIG pkg-config REQUIRED)
find_program(CXX NAMES c++ g++ REQUIRED)
foreach(pc orbgenapi orbcameraapi orbcameraguiapi)
    if(NOT EXISTS ${prefix}/lib/pkgconfig/${pc}.pc)
        message(FATAL_ERROR "not installed: lib/pkgconfig/${pc}.pc")
    endif()
    execute_process(COMMAND ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${prefix}/lib/pkgconfig
            ${PKG_CONFIG} --cflags --libs ${pc}
        OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE failed)
    if(failed)
        message(FATAL_ERROR "pkg-config does not know ${pc}")
    endif()
    separate_arguments(flags UNIX_COMMAND "${flags}")
    separate_arguments(extra UNIX_COMMAND "${CXX_FLAGS}")
    execute_process(COMMAND ${CXX} -std=c++17 ${extra} ${CMAKE_CURRENT_LIST_DIR}/pkgconfig/${pc}.cpp
            ${flags} -o ${WORK_DIR}/${pc}-consumer
        RESULT_VARIABLE failed)
    if(failed)
        message(FATAL_ERROR "a program does not build with pkg-config's flags for ${pc}")
    endif()
    execute_process(COMMAND ${CMAKE_COMMAND} -E env ${platform}
            LD_LIBRARY_PATH=${prefix}/lib ORBCAM_CAMERAS_DIR=${prefix}/share/orbcam/cameras
            ${WORK_DIR}/${pc}-consumer
        RESULT_VARIABLE failed)
    if(failed)
        message(FATAL_ERROR "the ${pc} consumer failed: ${failed}")
    endif()
endforeach()
