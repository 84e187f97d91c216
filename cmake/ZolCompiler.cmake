# Compiler settings shared by every target of the project.

find_program(ZOL_CCACHE ccache)
if(ZOL_CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER ${ZOL_CCACHE})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${ZOL_CCACHE})
endif()

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
endif()

add_compile_options(-Wall -Wextra)

# Nothing interposes our shared libraries' symbols, so calls inside a library may be
# direct and inlined (the value type queries the Pulse runtime makes per value, above all).
add_compile_options(-fno-semantic-interposition)

# lld links the sanitized test binaries several times faster than the default linker.
find_program(ZOL_LLD ld.lld)
if(ZOL_LLD AND CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  add_link_options(-fuse-ld=lld)
endif()

if(ZOL_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()

# Fuzzing instruments every library for coverage so the fuzz targets can link them as
# they are; only the fuzz executables themselves link the fuzzer's main.
if(ZOL_BUILD_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "ZOL_BUILD_FUZZ needs clang (libFuzzer)")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# Warnings in our own code are errors in CI so they never pile up.
option(ZOL_WERROR "Treat warnings as errors" OFF)
if(ZOL_WERROR)
  add_compile_options(-Werror)
endif()

# Adds a library of the project; SHARED for libraries that hold process-wide state.
function(zol_library name kind)
  add_library(${name} ${kind} ${ARGN})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR})
endfunction()
