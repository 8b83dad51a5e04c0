# One set of compiler settings for every target of the project.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

add_compile_options(-Wall -Wextra -Wconversion -Wshadow -Werror)
# Clang counts changes of sign among the conversions; the other compiler, with which all is built, not.
add_compile_options($<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion>)
# A fused multiply-add would change the last bit of a result on some processors only.
add_compile_options(-ffp-contract=off)
# Nobody reads the floating-point exception flags, nor errno after a root; minding them keeps loops
# with a comparison of floats or a root from being vectorised. Values do not change.
add_compile_options(-fno-trapping-math -fno-math-errno)
add_compile_options(-fstack-protector-strong)
# A unique symbol would keep the library that defines it loaded for good.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options(-fno-gnu-unique)
endif()
add_compile_definitions($<$<CONFIG:Release>:_FORTIFY_SOURCE=2>)
add_link_options(-Wl,-z,relro,-z,now)

set(CMAKE_CXX_FLAGS_RELEASE "-O3 -DNDEBUG")
set(CMAKE_CXX_FLAGS_DEBUG "-O0 -g -D_GLIBCXX_ASSERTIONS")

set(CMDTEXTURE_SANITIZE "" CACHE STRING "Sanitizers, as for -fsanitize=: address,undefined or thread")
if(CMDTEXTURE_SANITIZE)
  add_compile_options(-fsanitize=${CMDTEXTURE_SANITIZE} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all -g)
  add_link_options(-fsanitize=${CMDTEXTURE_SANITIZE})
  # The resolvers of multi-versioned functions run before the sanitizer's runtime is up.
  add_compile_definitions(CMDTEXTURE_NO_MULTIVERSION)
endif()

option(CMDTEXTURE_AVX512 "Compile row kernels for AVX-512, too; off to measure without it" ON)
if(NOT CMDTEXTURE_AVX512)
  add_compile_definitions(CMDTEXTURE_NO_AVX512)
endif()

# Programs, libraries and data lie in the build folder as they do under an installation prefix,
# so that everything runs in place.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib/cmdtexture)
set(CMDTEXTURE_LIB_DIR lib/cmdtexture)
set(CMDTEXTURE_DATA_DIR share/cmdtexture)
set(CMAKE_INSTALL_RPATH "$ORIGIN;$ORIGIN/../lib/cmdtexture")
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
