# Modules whose includes are held to the arrows of the architecture: a module's folder is reachable only through a link
# in a folder of its own, so `#include "Database/Slot.h"` compiles only where host_database is linked.

# tolmex_module_folder(<target> <folder> <name>): lets <target>'s users include "<name>/..." from <folder>, or the one
# header "<name>".
function(tolmex_module_folder target folder name)
  set(root ${CMAKE_BINARY_DIR}/include/${target})
  cmake_path(GET name PARENT_PATH parent)
  file(MAKE_DIRECTORY ${root}/${parent})
  if(NOT EXISTS ${root}/${name})
    file(CREATE_LINK ${folder} ${root}/${name} SYMBOLIC)
  endif()
  target_include_directories(${target} PUBLIC ${root})
endfunction()

# tolmex_include_folder(<root> <folder> <name>): lets those who have <root> on their include path include "<name>/...".
function(tolmex_include_folder root folder name)
  file(MAKE_DIRECTORY ${root})
  if(NOT EXISTS ${root}/${name})
    file(CREATE_LINK ${folder} ${root}/${name} SYMBOLIC)
  endif()
endfunction()

# tolmex_module_headers(<target> <folder> <name>): the same for the headers of the folder itself, not of its sub-folders.
function(tolmex_module_headers target folder name)
  set(root ${CMAKE_BINARY_DIR}/include/${target})
  if(IS_SYMLINK ${root}/${name})
    file(REMOVE ${root}/${name})
  endif()
  file(MAKE_DIRECTORY ${root}/${name})
  file(GLOB headers CONFIGURE_DEPENDS ${folder}/*.h)
  file(GLOB links ${root}/${name}/*.h)
  foreach(link IN LISTS links)
    get_filename_component(header ${link} NAME)
    if(NOT EXISTS ${folder}/${header})
      file(REMOVE ${link})
    endif()
  endforeach()
  foreach(path IN LISTS headers)
    get_filename_component(header ${path} NAME)
    if(NOT EXISTS ${root}/${name}/${header})
      file(CREATE_LINK ${path} ${root}/${name}/${header} SYMBOLIC)
    endif()
  endforeach()
  target_include_directories(${target} PUBLIC ${root})
endfunction()

# tolmex_host_module(<name> [ROOMS] [DEPENDS modules...] [LINK libraries...]): the folder Host/<name> as target
# host_<name>. Of a module with ROOMS others can include the headers that stand in the folder itself; those in its
# sub-folders only with host_<name>_rooms.
function(tolmex_host_module name)
  cmake_parse_arguments(arg "ROOMS" "" "DEPENDS;LINK" ${ARGN})
  string(TOLOWER ${name} lower)
  set(target host_${lower})
  set(folder ${CMAKE_CURRENT_SOURCE_DIR}/${name})
  file(GLOB sources CONFIGURE_DEPENDS ${folder}/*.cpp)
  if(arg_ROOMS)
    file(GLOB room_sources CONFIGURE_DEPENDS ${folder}/*/*.cpp)
    add_library(${target} OBJECT ${sources} ${room_sources})
    tolmex_module_headers(${target} ${folder} ${name})
    add_library(${target}_rooms INTERFACE)
    set(rooms ${CMAKE_BINARY_DIR}/include/${target}_rooms)
    file(MAKE_DIRECTORY ${rooms})
    if(NOT EXISTS ${rooms}/${name})
      file(CREATE_LINK ${folder} ${rooms}/${name} SYMBOLIC)
    endif()
    target_include_directories(${target}_rooms INTERFACE ${rooms})
    target_link_libraries(${target} PRIVATE ${target}_rooms)
  else()
    add_library(${target} OBJECT ${sources})
    tolmex_module_folder(${target} ${folder} ${name})
  endif()
  foreach(dependency IN LISTS arg_DEPENDS)
    string(TOLOWER ${dependency} dependency)
    target_link_libraries(${target} PUBLIC host_${dependency})
  endforeach()
  target_link_libraries(${target} PRIVATE tolmex_options ${arg_LINK})
  target_compile_definitions(${target} PRIVATE NOMINMAX)  # Windows' headers define min and max
endfunction()

# tolmex_uses_host(<target> modules...): lets a program or test include the named modules of the host and links the
# libraries that hold them.
function(tolmex_uses_host target)
  target_link_libraries(${target} PRIVATE tolmexhost host_sdk tolmex_options)
  target_compile_definitions(${target} PRIVATE NOMINMAX)
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

# tolmex_copy_folder(<target> <to> <from> items...): keeps copies of files and folders of one folder in another.
function(tolmex_copy_folder target to from)
  set(files)
  set(commands)
  foreach(item IN LISTS ARGN)
    if(IS_DIRECTORY ${from}/${item})
      file(GLOB inside CONFIGURE_DEPENDS ${from}/${item}/*)
      list(APPEND files ${inside})
      list(APPEND commands COMMAND ${CMAKE_COMMAND} -E make_directory ${to}/${item}
        COMMAND ${CMAKE_COMMAND} -E copy_if_different ${inside} ${to}/${item})
    else()
      list(APPEND files ${from}/${item})
      list(APPEND commands COMMAND ${CMAKE_COMMAND} -E copy_if_different ${from}/${item} ${to})
    endif()
  endforeach()
  add_custom_command(OUTPUT ${to}/.stamp
    COMMAND ${CMAKE_COMMAND} -E make_directory ${to} ${commands}
    COMMAND ${CMAKE_COMMAND} -E touch ${to}/.stamp
    DEPENDS ${files} VERBATIM)
  add_custom_target(${target} ALL DEPENDS ${to}/.stamp)
endfunction()
