# `cmake --install` lays down, for each component that was built, its library, its public headers, a file for CMake's
# find_package and one for pkg-config; then the program and the language modules. No file holds an absolute path, so the folder may
# be moved afterwards (tools/check_install moves it). docs/package.md tells how a stranger's project uses it.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Kestrix)
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
set(KESTRIX_LANGUAGES_DIR ${CMAKE_INSTALL_DATADIR}/kestrix/languages)

# For linkers that are not called through a C++ compiler.
set(runtime_libraries ${CMAKE_CXX_IMPLICIT_LINK_LIBRARIES})
list(FILTER runtime_libraries INCLUDE REGEX "^(stdc\\+\\+|c\\+\\+|c\\+\\+abi|m)$")
list(REMOVE_DUPLICATES runtime_libraries)
list(TRANSFORM runtime_libraries PREPEND -l)

# Lays down a floor's public headers.
function(kestrix_install_headers floor)
  get_property(folder GLOBAL PROPERTY KESTRIX_FOLDER_OF_${floor})
  get_property(internal GLOBAL PROPERTY KESTRIX_INTERNAL_OF_${floor})
  if(NOT IS_DIRECTORY ${PROJECT_SOURCE_DIR}/src/${folder})
    return()
  endif()
  set(excluded "")
  foreach(header IN LISTS internal)
    list(APPEND excluded PATTERN ${header}.h EXCLUDE)
  endforeach()
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/${folder}/ DESTINATION ${KESTRIX_INCLUDE_DIR}/${folder}
          FILES_MATCHING PATTERN "*.h" ${excluded})
endfunction()

# Lays down kestrix-<component>.pc. A static library passes on what it needs; a shared one has it already.
function(kestrix_install_pkgconfig component modules)
  get_property(below GLOBAL PROPERTY KESTRIX_BELOW_${component})
  get_target_property(type kestrix_${component} TYPE)
  list(TRANSFORM below PREPEND kestrix- OUTPUT_VARIABLE requires)
  list(APPEND requires ${modules})
  list(JOIN requires " " PC_REQUIRES)
  set(PC_LIBS "")
  set(PC_LIBS_PRIVATE "")
  if(NOT type STREQUAL INTERFACE_LIBRARY)
    set(PC_LIBS "-L\${libdir} -lkestrix_${component}")
  endif()
  if(type STREQUAL STATIC_LIBRARY)
    list(JOIN runtime_libraries " " PC_LIBS_PRIVATE)
  endif()
  set(PC_NAME kestrix-${component})
  file(RELATIVE_PATH PC_PREFIX /prefix/${pkgconfig_dir} /prefix)
  string(REGEX REPLACE "/$" "" PC_PREFIX "${PC_PREFIX}")
  configure_file(${PROJECT_SOURCE_DIR}/cmake/kestrix.pc.in ${PROJECT_BINARY_DIR}/${PC_NAME}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${PC_NAME}.pc DESTINATION ${pkgconfig_dir})
endfunction()

get_property(KESTRIX_COMPONENTS GLOBAL PROPERTY KESTRIX_COMPONENTS)
set(KESTRIX_MODULES "")  # lines of KestrixConfig.cmake
foreach(component IN LISTS KESTRIX_COMPONENTS)
  install(TARGETS kestrix_${component} EXPORT Kestrix-${component})
  install(EXPORT Kestrix-${component} FILE Kestrix-${component}-targets.cmake NAMESPACE Kestrix:: DESTINATION ${package_dir})
  get_property(floors GLOBAL PROPERTY KESTRIX_FLOORS_OF_${component})
  foreach(floor IN LISTS floors)
    kestrix_install_headers(${floor})
  endforeach()
  get_property(modules GLOBAL PROPERTY KESTRIX_MODULES_OF_COMPONENT_${component})
  if(BUILD_SHARED_LIBS)
    set(modules "")
  endif()
  if(modules)
    string(APPEND KESTRIX_MODULES "set(_kestrix_modules_of_${component} ${modules})\n")
  endif()
  kestrix_install_pkgconfig(${component} "${modules}")
endforeach()

file(GLOB languages CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/languages/*.kres)
install(DIRECTORY DESTINATION ${KESTRIX_LANGUAGES_DIR})  # also while there is none
install(FILES ${languages} DESTINATION ${KESTRIX_LANGUAGES_DIR})
if(TARGET kestrix)
  file(RELATIVE_PATH to_libraries ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  set_target_properties(kestrix PROPERTIES INSTALL_RPATH $ORIGIN/${to_libraries})
  install(TARGETS kestrix)
endif()

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/KestrixConfig.cmake.in ${PROJECT_BINARY_DIR}/KestrixConfig.cmake
                              INSTALL_DESTINATION ${package_dir} PATH_VARS KESTRIX_LANGUAGES_DIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KestrixConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KestrixConfig.cmake ${PROJECT_BINARY_DIR}/KestrixConfigVersion.cmake
        DESTINATION ${package_dir})
