# The two shared libraries on top of all folders, and how they are installed and found.
include(CMakePackageConfigHelpers)

# vorla_add_framework(name MAP FOLDERS...): a shared library of all objects of the folders, exporting
# what the version script says. What the folders stand on is linked by the caller.
function(vorla_add_framework name map)
  add_library(${name} SHARED ${PROJECT_SOURCE_DIR}/cmake/framework.cpp)
  vorla_configure_target(${name})
  set_target_properties(${name} PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
    INSTALL_RPATH "$ORIGIN")
  # Threads of ours may still be at work when a host closes the library: it stays loaded. Names are
  # bound at loading: a crash handler must not enter the loader.
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${map} ${PROJECT_BINARY_DIR}/${map} @ONLY)
  target_link_options(${name} PRIVATE -Wl,-z,nodelete -Wl,-z,now -Wl,-Bsymbolic-functions
    -Wl,--as-needed
    -Wl,--version-script=${PROJECT_BINARY_DIR}/${map})
  set_property(TARGET ${name} APPEND PROPERTY LINK_DEPENDS ${PROJECT_BINARY_DIR}/${map})
  foreach(folder IN LISTS ARGN)
    target_sources(${name} PRIVATE $<TARGET_OBJECTS:${folder}>)
  endforeach()
  target_include_directories(${name} INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_compile_features(${name} INTERFACE cxx_std_20)
  install(TARGETS ${name} EXPORT VorlaTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
endfunction()

# Statistics, RPC and encoding: no toolkit.
get_property(services GLOBAL PROPERTY VORLA_SERVICES)
vorla_add_framework(VorlaServices services.map ${services})
target_link_libraries(VorlaServices PRIVATE ${services})
set_target_properties(VorlaServices PROPERTIES EXPORT_NAME Services)
add_library(Vorla::Services ALIAS VorlaServices)

# The capture library stands on it. Named first among the libraries, the services' shared form
# satisfies every reference, and nothing of their archives is linked a second time.
vorla_add_framework(Vorla capture.map vorla_capture vorla_cinterface_capture vorla_switch)
set_target_properties(Vorla PROPERTIES EXPORT_NAME Capture)
target_link_libraries(Vorla PUBLIC VorlaServices
  PRIVATE vorla_capture vorla_cinterface_capture vorla_switch)
add_library(Vorla::Capture ALIAS Vorla)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/vorla DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
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
foreach(package vorla vorla-services)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${package}.pc.in ${PROJECT_BINARY_DIR}/${package}.pc
    @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${package}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
