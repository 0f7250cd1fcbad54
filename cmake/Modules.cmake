# Modules whose includes are held to the arrows of the architecture: a module's folder is reachable only through a link
# in a folder of its own, so `#include "Database/Slot.h"` compiles only where host_database is linked.

# tolmex_module_folder(<target> <folder> <name>): lets <target>'s users include "<name>/..." from <folder>.
function(tolmex_module_folder target folder name)
  set(root ${CMAKE_BINARY_DIR}/include/${target})
  file(MAKE_DIRECTORY ${root})
  if(NOT EXISTS ${root}/${name})
    file(CREATE_LINK ${folder} ${root}/${name} SYMBOLIC)
  endif()
  target_include_directories(${target} PUBLIC ${root})
endfunction()

# tolmex_host_module(<name> [DEPENDS modules...] [LINK libraries...]): the folder Host/<name> as target host_<name>.
function(tolmex_host_module name)
  cmake_parse_arguments(arg "" "" "DEPENDS;LINK" ${ARGN})
  string(TOLOWER ${name} lower)
  set(target host_${lower})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp)
  add_library(${target} OBJECT ${sources})
  tolmex_module_folder(${target} ${CMAKE_CURRENT_SOURCE_DIR}/${name} ${name})
  foreach(dependency IN LISTS arg_DEPENDS)
    string(TOLOWER ${dependency} dependency)
    target_link_libraries(${target} PUBLIC host_${dependency})
  endforeach()
  target_link_libraries(${target} PRIVATE tolmex_options ${arg_LINK})
endfunction()

# tolmex_uses_host(<target> modules...): lets a program or test include the named modules of the host and links the
# libraries that hold them.
function(tolmex_uses_host target)
  target_link_libraries(${target} PRIVATE tolmexhost host_sdk tolmex_options)
  if(TOLMEX_SANITIZE)
    target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/cmake/LeakSuppressions.cpp)
  endif()
  foreach(module IN LISTS ARGN)
    string(TOLOWER ${module} lower)
    target_include_directories(${target} PRIVATE $<TARGET_PROPERTY:host_${lower},INTERFACE_INCLUDE_DIRECTORIES>)
    if(module STREQUAL "Picture")
      target_link_libraries(${target} PRIVATE tolmexpicture)
    endif()
  endforeach()
endfunction()
