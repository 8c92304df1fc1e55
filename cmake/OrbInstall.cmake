# Installs the three libraries, their public headers, the simulated camera
# models and a CMake package, so that an application can say
#   find_package(OrbCameraGuiApi) and link Orb::CameraGuiApi
# (or only Orb::GenApi / Orb::CameraApi for code without a GUI).
include(CMakePackageConfigHelpers)

set_target_properties(OrbGenApi PROPERTIES EXPORT_NAME GenApi)
set_target_properties(OrbCameraApi PROPERTIES EXPORT_NAME CameraApi)
set_target_properties(OrbCameraGuiApi PROPERTIES EXPORT_NAME CameraGuiApi)

install(TARGETS OrbGenApi OrbCameraApi OrbCameraGuiApi
    EXPORT OrbCameraGuiApiTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY
    ${PROJECT_SOURCE_DIR}/platform/genapi/include/
    ${PROJECT_SOURCE_DIR}/platform/orbcam/include/
    ${PROJECT_SOURCE_DIR}/include/
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${PROJECT_BINARY_DIR}/include/OrbGui/orbguiexport.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/OrbGui)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/platform/orbcam/cameras/
    DESTINATION ${CMAKE_INSTALL_DATADIR}/orbcam/cameras)

set(configDir ${CMAKE_INSTALL_LIBDIR}/cmake/OrbCameraGuiApi)
install(EXPORT OrbCameraGuiApiTargets NAMESPACE Orb:: DESTINATION ${configDir})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/OrbCameraGuiApiConfig.cmake.in
    ${PROJECT_BINARY_DIR}/OrbCameraGuiApiConfig.cmake
    INSTALL_DESTINATION ${configDir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OrbCameraGuiApiConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/OrbCameraGuiApiConfig.cmake
    ${PROJECT_BINARY_DIR}/OrbCameraGuiApiConfigVersion.cmake
    DESTINATION ${configDir})

# pkg-config files for builds that do not use CMake. They find their prefix
# relative to their own folder, so an installed tree can be moved.
file(RELATIVE_PATH ORB_PC_TO_PREFIX "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
string(REGEX REPLACE "/$" "" ORB_PC_TO_PREFIX "${ORB_PC_TO_PREFIX}")
foreach(pc orbgenapi orbcameraapi orbcameraguiapi)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/pkgconfig/${pc}.pc.in
        ${PROJECT_BINARY_DIR}/pkgconfig/${pc}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/pkgconfig/${pc}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
