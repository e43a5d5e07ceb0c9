# One library for each folder of src.
#
#   kestrix_folder(<folder> [NAME <name>] [UNITS <unit>...] [EXCEPT <unit>...] [DEPENDS <name>...] [LINK <target>...])
#
# makes kestrix_<name>, known to others as Kestrix::<name>. The name is the folder's with "_" for "/" unless NAME says another.
# UNITS takes only the sources that begin with one of these names, EXCEPT all others; so one folder can hold two floors.
# DEPENDS names the libraries that the folder may include from; what they depend on comes with them. tools/check_layering reads
# these lines, so they must stand on their own: one call, plain words. LINK adds libraries from outside.
# A folder that is still empty is a library without sources.
set(KESTRIX_INCLUDE_DIR include/kestrix)  # below the prefix of an install

function(kestrix_folder folder)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "NAME" "UNITS;EXCEPT;DEPENDS;LINK")
  if(NOT arg_NAME)
    string(REPLACE "/" "_" arg_NAME ${folder})
  endif()
  set(target kestrix_${arg_NAME})

  kestrix_glob(sources ${CMAKE_CURRENT_SOURCE_DIR}/${folder} "${arg_UNITS}")
  foreach(unit IN LISTS arg_EXCEPT)
    list(FILTER sources EXCLUDE REGEX "/${unit}[^/]*$")
  endforeach()
  if(sources)
    add_library(${target} STATIC ${sources})
    kestrix_warnings(${target})
    set(scope PUBLIC)
  else()
    add_library(${target} INTERFACE)
    set(scope INTERFACE)
  endif()

  add_library(Kestrix::${arg_NAME} ALIAS ${target})
  list(TRANSFORM arg_DEPENDS PREPEND Kestrix:: OUTPUT_VARIABLE depends)
  target_link_libraries(${target} ${scope} ${depends} ${arg_LINK})
  target_compile_features(${target} ${scope} cxx_std_20)
  target_include_directories(${target} ${scope} $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>
                                                $<INSTALL_INTERFACE:${KESTRIX_INCLUDE_DIR}>)
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${arg_NAME})
  set_property(GLOBAL APPEND PROPERTY KESTRIX_LIBRARIES ${target})
endfunction()

# Gathers several libraries under one name, Kestrix::<name>.
function(kestrix_bundle name)
  add_library(kestrix_${name} INTERFACE)
  add_library(Kestrix::${name} ALIAS kestrix_${name})
  list(TRANSFORM ARGN PREPEND Kestrix:: OUTPUT_VARIABLE members)
  target_link_libraries(kestrix_${name} INTERFACE ${members})
  set_target_properties(kestrix_${name} PROPERTIES EXPORT_NAME ${name})
  set_property(GLOBAL APPEND PROPERTY KESTRIX_LIBRARIES kestrix_${name})
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
