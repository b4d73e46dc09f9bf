# Settings shared by every target of the project. Only our own targets link ombrix_settings, so that
# a project that adds Ombrix as a subdirectory keeps its own warnings and flags.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release)
endif()

find_program(OMBRIX_CCACHE ccache)
if(OMBRIX_CCACHE AND PROJECT_IS_TOP_LEVEL)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${OMBRIX_CCACHE})
endif()

add_library(ombrix_settings INTERFACE)
target_compile_options(ombrix_settings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
  # GCC 12 reports overlaps in std::string that cannot be (its bug 105651).
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  -fvisibility=hidden -fvisibility-inlines-hidden
  "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=")
if(OMBRIX_SANITIZE)
  target_compile_options(ombrix_settings INTERFACE
    -fsanitize=${OMBRIX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(ombrix_settings INTERFACE -fsanitize=${OMBRIX_SANITIZE})
endif()

# In the build tree the public headers are reached as <ombrix/...>, as after an installation.
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/include)
file(CREATE_LINK ${PROJECT_SOURCE_DIR}/include/api ${PROJECT_BINARY_DIR}/include/ombrix SYMBOLIC)

# Collects the sources of one folder; a new file needs no line of CMake.
function(ombrix_glob result)
  file(GLOB found CONFIGURE_DEPENDS ${ARGN})
  set(${result} ${found} PARENT_SCOPE)
endfunction()
