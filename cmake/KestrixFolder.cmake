# One library for each folder of src, and one for each component that a stranger links.
#
#   kestrix_folder(<folder> [NAME <name>] [UNITS <unit>...] [EXCEPT <unit>...] [DEPENDS <name>...] [INTERNAL <header>...]
#                  [MODULES <module>...])
#
# makes a floor, kestrix_<name>, known to others as Kestrix::<name>. The name is the folder's with "_" for "/" unless NAME says
# another. UNITS takes only the sources that begin with one of these names, EXCEPT all others; so one folder can hold two floors.
# DEPENDS names the floors that the folder may include from; what they depend on comes with them. INTERNAL names headers (without
# ".h") that are not installed: no other header, program or example may include them. tools/check_layering reads these lines, so
# they must stand on their own: one call, plain words. MODULES are pkg-config modules, for the folder's sources alone.
# A folder that is still empty is a library without sources.
#
#   kestrix_component(<name> <floor>...)
#
# makes libkestrix_<name>, Kestrix::<name>, of these floors and all below them that no earlier component holds. What is installed,
# and what programs, examples and benchmarks link, are the components; tests link the floor that they test, so that a floor that
# needs a higher one does not link.
#
# Each source is compiled once, for both. The objects are position-independent also in a static build: they then fit into a
# stranger's plug-in or extension, and ccache shares them between the two kinds. No difference was measurable in a static build:
# -fno-semantic-interposition lets the compiler inline our functions, which nobody replaces.
#
# In a shared build a floor is another name for its component, so that class registry, locale, clock and texts exist once in a
# program. Every symbol is visible: exceptions, class infos and the statics of templates are one and the same in all libraries
# only if they are, and an export mark on each class would be a macro.
#
# Start-up code (what runs before main()) stands in the source of the unit that it starts: from a static library a linker takes only
# the objects that somebody calls, and a start-up in an object of its own would be left out.
include(GNUInstallDirs)
set(KESTRIX_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR}/kestrix)

function(kestrix_folder folder)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "NAME" "UNITS;EXCEPT;DEPENDS;INTERNAL;MODULES")
  if(NOT arg_NAME)
    string(REPLACE "/" "_" arg_NAME ${folder})
  endif()
  set(target kestrix_${arg_NAME})
  kestrix_modules(modules "${arg_MODULES}")

  kestrix_glob(sources ${CMAKE_CURRENT_SOURCE_DIR}/${folder} "${arg_UNITS}")
  foreach(unit IN LISTS arg_EXCEPT)
    list(FILTER sources EXCLUDE REGEX "/${unit}[^/]*$")
  endforeach()
  if(sources)
    add_library(${target}_objects OBJECT ${sources})
    kestrix_warnings(${target}_objects)
    kestrix_usage(${target}_objects PUBLIC)
    target_compile_options(${target}_objects PRIVATE -fno-semantic-interposition)
    set_target_properties(${target}_objects PROPERTIES POSITION_INDEPENDENT_CODE ON)
    target_link_libraries(${target}_objects PRIVATE ${modules})
  endif()
  if(sources AND NOT BUILD_SHARED_LIBS)
    add_library(${target} STATIC EXCLUDE_FROM_ALL $<TARGET_OBJECTS:${target}_objects>)
    set(scope PUBLIC)
    target_link_libraries(${target} PRIVATE ${modules})
  else()
    add_library(${target} INTERFACE)
    set(scope INTERFACE)
  endif()
  add_library(Kestrix::${arg_NAME} ALIAS ${target})
  kestrix_usage(${target} ${scope})
  list(TRANSFORM arg_DEPENDS PREPEND Kestrix:: OUTPUT_VARIABLE depends)
  target_link_libraries(${target} ${scope} ${depends})

  set_property(GLOBAL APPEND PROPERTY KESTRIX_FLOORS ${arg_NAME})
  foreach(what IN ITEMS DEPENDS INTERNAL MODULES)
    set_property(GLOBAL PROPERTY KESTRIX_${what}_OF_${arg_NAME} ${arg_${what}})
  endforeach()
  set_property(GLOBAL PROPERTY KESTRIX_FOLDER_OF_${arg_NAME} ${folder})
endfunction()

function(kestrix_component name)
  kestrix_gather(floors below ${ARGN})
  set(objects "")
  set(links "")
  set(modules "")
  foreach(floor IN LISTS floors)
    if(TARGET kestrix_${floor}_objects)
      list(APPEND objects $<TARGET_OBJECTS:kestrix_${floor}_objects>)
    endif()
    get_property(needed GLOBAL PROPERTY KESTRIX_MODULES_OF_${floor})
    kestrix_modules(link "${needed}")
    list(APPEND links ${link})
    list(APPEND modules ${needed})
    set_property(GLOBAL PROPERTY KESTRIX_COMPONENT_OF_${floor} ${name})
  endforeach()

  set(target kestrix_${name})
  if(objects)
    add_library(${target} ${objects})
    set(scope PUBLIC)
    target_link_libraries(${target} PRIVATE ${links})
    # Until 1.0 each minor version may break what strangers compiled.
    set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION} INSTALL_RPATH $ORIGIN
                                               SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
  else()
    add_library(${target} INTERFACE)
    set(scope INTERFACE)
  endif()
  add_library(Kestrix::${name} ALIAS ${target})
  kestrix_usage(${target} ${scope})
  list(TRANSFORM below PREPEND Kestrix:: OUTPUT_VARIABLE depends)
  target_link_libraries(${target} ${scope} ${depends})
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${name})
  if(BUILD_SHARED_LIBS)
    foreach(floor IN LISTS floors)
      target_link_libraries(kestrix_${floor} INTERFACE ${target})
    endforeach()
  endif()

  set_property(GLOBAL APPEND PROPERTY KESTRIX_COMPONENTS ${name})
  set_property(GLOBAL PROPERTY KESTRIX_FLOORS_OF_${name} ${floors})
  set_property(GLOBAL PROPERTY KESTRIX_BELOW_${name} ${below})
  set_property(GLOBAL PROPERTY KESTRIX_MODULES_OF_COMPONENT_${name} ${modules})
endfunction()

# What everyone needs who includes our headers.
function(kestrix_usage target scope)
  target_compile_features(${target} ${scope} cxx_std_20)
  target_include_directories(${target} ${scope} $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>
                                                $<INSTALL_INTERFACE:${KESTRIX_INCLUDE_DIR}>)
endfunction()

# The floors named and those below them that are in no component yet, and the components of the others. Floors come from the ground
# up: in a shared library what runs before main() runs in this order, and what ends runs in the opposite one.
function(kestrix_gather out_floors out_components)
  set(todo ${ARGN})
  set(mine "")
  set(components "")
  while(todo)
    list(POP_FRONT todo floor)
    get_property(component GLOBAL PROPERTY KESTRIX_COMPONENT_OF_${floor})
    if(component)
      list(APPEND components ${component})
    elseif(NOT floor IN_LIST mine)
      get_property(depends GLOBAL PROPERTY KESTRIX_DEPENDS_OF_${floor})
      list(APPEND mine ${floor})
      list(APPEND todo ${depends})
    endif()
  endwhile()
  list(REMOVE_DUPLICATES components)
  get_property(floors GLOBAL PROPERTY KESTRIX_FLOORS)
  foreach(floor IN LISTS floors)
    if(NOT floor IN_LIST mine)
      list(REMOVE_ITEM floors ${floor})
    endif()
  endforeach()
  set(${out_floors} ${floors} PARENT_SCOPE)
  set(${out_components} ${components} PARENT_SCOPE)
endfunction()

# A target for pkg-config modules. KestrixConfig.cmake makes the same name for strangers.
function(kestrix_modules out modules)
  set(${out} "" PARENT_SCOPE)
  if(modules)
    string(JOIN "_" name KESTRIX ${modules})
    if(NOT TARGET PkgConfig::${name})
      find_package(PkgConfig REQUIRED)
      pkg_check_modules(${name} REQUIRED IMPORTED_TARGET GLOBAL ${modules})
    endif()
    set(${out} PkgConfig::${name} PARENT_SCOPE)
  endif()
endfunction()

# The .cpp files of `directory`, or only those that begin with one of `units`; a new file makes CMake run again.
function(kestrix_glob out directory units)
  if(NOT units)
    set(units "")
    file(GLOB found CONFIGURE_DEPENDS ${directory}/*.cpp)
  else()
    list(TRANSFORM units PREPEND ${directory}/)
    list(TRANSFORM units APPEND *.cpp)
    file(GLOB found CONFIGURE_DEPENDS ${units})
  endif()
  set(${out} ${found} PARENT_SCOPE)
endfunction()
