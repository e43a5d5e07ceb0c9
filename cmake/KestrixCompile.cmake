# How our own code is compiled: warnings are errors, ccache where it is installed, sanitizers where they are asked for. Within a
# stranger's project the first two are the stranger's to decide.

# Work trees share their cached objects: paths below the work tree are hashed relative to the build directory.
find_program(KESTRIX_CCACHE ccache)
if(KESTRIX_CCACHE AND PROJECT_IS_TOP_LEVEL AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${KESTRIX_CCACHE})
endif()

# No precompiled headers: they would save a test file half a second of 2.4 (g++ 12, GoogleTest and the common standard headers), and
# cost the objects that presets and work trees now share.

if(KESTRIX_SANITIZE)
  # std::vector is not annotated (_GLIBCXX_SANITIZE_VECTOR): Debian's GoogleTest is compiled without, and would report falsely.
  add_compile_options(-fsanitize=address,undefined,float-cast-overflow,float-divide-by-zero -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

if(KESTRIX_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)  # all code reports where it went, and libFuzzer steers by that
endif()

# Compiles `target`, which is our own, with warnings as errors; `cmake --compile-no-warning-as-error` lets them pass, for a compiler
# that we have not met.
function(kestrix_warnings target)
  target_compile_options(
    ${target}
    PRIVATE -Wall
            -Wextra
            -Wpedantic
            -Wconversion
            -Wshadow
            # g++ 12 sees uninitialized values in instrumented code where there are none.
            $<$<AND:$<BOOL:${KESTRIX_SANITIZE}>,$<CXX_COMPILER_ID:GNU>>:-Wno-maybe-uninitialized>)
  if(PROJECT_IS_TOP_LEVEL)
    set_target_properties(${target} PROPERTIES COMPILE_WARNING_AS_ERROR ON)
  endif()
endfunction()
