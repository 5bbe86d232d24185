# How every target of this project is compiled, in one place.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_FLAGS_DEBUG "-Og -g")
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

find_program(QUELLON_CCACHE ccache)
if(QUELLON_CCACHE)
  # Precompiled headers and ccache agree only under these relaxations.
  set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
      CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} ${QUELLON_CCACHE})
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
                    -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 sees dangling and out-of-bounds accesses in the standard library's own inlined string code.
  add_compile_options(-Wno-restrict -Wno-stringop-overflow -Wno-stringop-overread -Wno-array-bounds
                      -Wno-maybe-uninitialized)
endif()
if(QUELLON_SANITIZE)
  add_compile_options(-fsanitize=${QUELLON_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -O1 -g1)
  add_link_options(-fsanitize=${QUELLON_SANITIZE})
endif()
if(QUELLON_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# quellon_sources(variable folder...): every .cpp and .h below the folders, in sorted order; a new file is picked up
# by the next build.
function(quellon_sources variable)
  set(patterns)
  foreach(folder IN LISTS ARGN)
    list(APPEND patterns ${folder}/*.cpp ${folder}/*.h)
  endforeach()
  file(GLOB_RECURSE found CONFIGURE_DEPENDS ${patterns})
  set(${variable} ${found} PARENT_SCOPE)
endfunction()
