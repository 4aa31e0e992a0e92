# The shared library on top of all folders, and how it is installed and found.
include(CMakePackageConfigHelpers)

add_library(Vorla SHARED cmake/framework.cpp)
add_library(Vorla::Vorla ALIAS Vorla)
vorla_configure_target(Vorla)
set_target_properties(Vorla PROPERTIES
  VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
# Threads of ours may still be at work when a host closes the library: it stays loaded.
target_link_options(Vorla PRIVATE -Wl,-z,nodelete
  -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/exports.map)
set_property(TARGET Vorla APPEND PROPERTY LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/exports.map)
target_link_libraries(Vorla PRIVATE "$<LINK_LIBRARY:WHOLE_ARCHIVE,vorla_capture>")
target_include_directories(Vorla INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/Vorla>)
target_compile_features(Vorla INTERFACE cxx_std_20)

install(TARGETS Vorla EXPORT VorlaTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
foreach(header
    capture/VLCapture.h capture/VLCaptureRequest.h settings/VLCaptureDefaultSetting.h
    platform/base/export.h)
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${PROJECT_SOURCE_DIR}/${header}
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/Vorla/${folder})
endforeach()
install(EXPORT VorlaTargets NAMESPACE Vorla:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Vorla)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/VorlaConfig.cmake.in
  ${PROJECT_BINARY_DIR}/VorlaConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Vorla)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VorlaConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VorlaConfig.cmake ${PROJECT_BINARY_DIR}/VorlaConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Vorla)
# Relative, so that the package may be installed anywhere and moved.
file(RELATIVE_PATH VORLA_PC_TO_PREFIX /p/${CMAKE_INSTALL_LIBDIR}/pkgconfig /p)
configure_file(${PROJECT_SOURCE_DIR}/cmake/vorla.pc.in ${PROJECT_BINARY_DIR}/vorla.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vorla.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
