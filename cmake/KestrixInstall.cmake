# `cmake --install` lays down headers, libraries, the program and a package, so that a user's CMakeLists.txt says
#   find_package(Kestrix REQUIRED)
#   target_link_libraries(mine PRIVATE Kestrix::core Kestrix::headless Kestrix::cairo)
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Kestrix)
get_property(libraries GLOBAL PROPERTY KESTRIX_LIBRARIES)
install(TARGETS ${libraries} EXPORT KestrixTargets)
install(EXPORT KestrixTargets NAMESPACE Kestrix:: DESTINATION ${package_dir})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/ DESTINATION ${KESTRIX_INCLUDE_DIR} FILES_MATCHING PATTERN "*.h")
if(TARGET kestrix)
  install(TARGETS kestrix)
endif()

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/KestrixConfig.cmake.in ${PROJECT_BINARY_DIR}/KestrixConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KestrixConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KestrixConfig.cmake ${PROJECT_BINARY_DIR}/KestrixConfigVersion.cmake
        DESTINATION ${package_dir})
