# A layer is one target and one folder of the tree. A layer sees its own folder and those of the
# layers that it links, each under the folder's name ("engine/CGlass.h"): its include path is a
# folder of the build tree that holds nothing but a link to it. An include of any other layer
# therefore fails to build.
function(cmdtexture_layer_include target folder scope)
  set(root ${CMAKE_BINARY_DIR}/layers/${target})
  get_filename_component(parent ${root}/${folder} DIRECTORY)
  file(MAKE_DIRECTORY ${parent})
  file(CREATE_LINK ${CMAKE_SOURCE_DIR}/${folder} ${root}/${folder} SYMBOLIC)
  target_include_directories(${target} ${scope} ${root})
endfunction()

# cmdtexture_layer(<target> <folder> <STATIC|SHARED|MODULE|EXECUTABLE> SOURCES ... LINK ...)
function(cmdtexture_layer target folder type)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK;PRIVATE_LINK" ${ARGN})
  if(type STREQUAL "EXECUTABLE")
    add_executable(${target} ${ARG_SOURCES})
  else()
    add_library(${target} ${type} ${ARG_SOURCES})
  endif()
  cmdtexture_layer_include(${target} ${folder} PUBLIC)
  target_link_libraries(${target} PUBLIC ${ARG_LINK} PRIVATE ${ARG_PRIVATE_LINK})
endfunction()
