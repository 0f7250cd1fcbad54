# Fails when a plug-in source includes anything but the standard library, the plug-in itself or the host interface, and
# when a source that needs no host (the model and the part of OrvLib in HostFree.cmake) includes one that does.
cmake_minimum_required(VERSION 3.25)
include(${ROOT}/OrvLib/HostFree.cmake)
list(TRANSFORM ORVLIB_HOST_FREE_HEADERS PREPEND OrvLib/ OUTPUT_VARIABLE host_free_headers)
list(TRANSFORM ORVLIB_HOST_FREE_SOURCES PREPEND OrvLib/ OUTPUT_VARIABLE host_free_sources)

file(GLOB_RECURSE sources RELATIVE ${ROOT}
  ${ROOT}/OrvLib/*.h ${ROOT}/OrvLib/*.cpp ${ROOT}/Projects/Tolmex/*.h ${ROOT}/Projects/Tolmex/*.cpp)
set(bad "")
foreach(source IN LISTS sources)
  if(source MATCHES "^Projects/Tolmex/Model/" OR source IN_LIST host_free_headers OR source IN_LIST host_free_sources)
    set(is_host_free TRUE)
  else()
    set(is_host_free FALSE)
  endif()
  file(STRINGS ${ROOT}/${source} lines REGEX "^[ \t]*#[ \t]*include")
  foreach(line IN LISTS lines)
    if(line MATCHES "include[ \t]*<([^>]+)>")
      set(name ${CMAKE_MATCH_1})
      # Standard headers have no dot and no slash; everything else in angle brackets must be a host interface header.
      # Windows' compiler declares its handling of system exceptions in a header of its own.
      if(name MATCHES "[./]" AND
         (is_host_free OR (NOT name STREQUAL "eh.h" AND NOT EXISTS ${ROOT}/Host/Sdk/include/${name} AND
          NOT EXISTS ${ROOT}/Host/Sdk/win32/${name})))
        list(APPEND bad "${source}: <${name}>")
      endif()
    elseif(line MATCHES "include[ \t]*\"([^\"]+)\"")
      set(name ${CMAKE_MATCH_1})
      if(name MATCHES "\\.\\." OR NOT name MATCHES "^(OrvLib|Tolmex)/")
        list(APPEND bad "${source}: \"${name}\"")
      elseif(is_host_free AND NOT name MATCHES "^Tolmex/Model/" AND NOT name IN_LIST host_free_headers)
        list(APPEND bad "${source}: \"${name}\", which needs a host")
      elseif(source MATCHES "^OrvLib/" AND name MATCHES "^Tolmex/")
        list(APPEND bad "${source}: \"${name}\", which stands above it")
      endif()
    endif()
  endforeach()
endforeach()
if(bad)
  list(JOIN bad "\n  " text)
  message(FATAL_ERROR "The plug-in may include only the standard library, OrvLib/, Tolmex/ and host interface headers, "
    "its model no header that needs a host:\n  ${text}")
endif()
