# Compiles every source of the plug-in against Windows' own headers, without making anything: what only those would refuse fails
# here. The compiler is Debian's g++-mingw-w64-x86-64-posix. The commercial host's SDK is not there, so the host's own names
# come from Host/Sdk/include. A precompiled header holds what all sources include first, which makes the check four times quicker.
function(tolmex_check_windows_headers)
  find_program(TOLMEX_MINGW_CXX x86_64-w64-mingw32-g++-posix)
  if(NOT TOLMEX_MINGW_CXX)
    message(STATUS "Without g++-mingw-w64-x86-64-posix the plug-in is not checked against Windows' headers")
    return()
  endif()
  set(folder ${CMAKE_BINARY_DIR}/windows-headers)
  file(MAKE_DIRECTORY ${folder})
  set(flags -std=c++20 -Wall -Wextra -Werror -DUNICODE -D_UNICODE -D_AFXEXT
    -I${CMAKE_SOURCE_DIR} -I${CMAKE_SOURCE_DIR}/Projects -I${CMAKE_SOURCE_DIR}/Host/Sdk/include)
  set(header ${folder}/first.h)
  file(CONFIGURE OUTPUT ${header} CONTENT "#include \"OrvLib/ARX/HostInterface.h\"\n")
  set(precompiled ${header}.gch)
  add_custom_command(OUTPUT ${precompiled}
    COMMAND ${TOLMEX_MINGW_CXX} ${flags} -x c++-header ${header} -o ${precompiled} -MD -MF ${precompiled}.d -MT ${precompiled}
    DEPENDS ${header} DEPFILE ${precompiled}.d VERBATIM COMMENT "Reading Windows' headers")
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS RELATIVE ${CMAKE_SOURCE_DIR}
    ${CMAKE_SOURCE_DIR}/OrvLib/*.cpp ${CMAKE_SOURCE_DIR}/Projects/Tolmex/*.cpp)
  set(stamps)
  foreach(source IN LISTS sources)
    string(REPLACE "/" "_" name ${source})
    set(stamp ${folder}/${name}.o)
    # Sources without a host do not include it.
    set(first -include ${header})
    if(source MATCHES "/Model/|/DataStruct/")
      set(first)
    endif()
    add_custom_command(OUTPUT ${stamp}
      COMMAND ${TOLMEX_MINGW_CXX} ${flags} ${first} -fsyntax-only ${CMAKE_SOURCE_DIR}/${source}
        -MD -MF ${stamp}.d -MT ${stamp}
      COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
      DEPENDS ${CMAKE_SOURCE_DIR}/${source} ${precompiled} DEPFILE ${stamp}.d VERBATIM
      COMMENT "Checking ${source} against Windows' headers")
    list(APPEND stamps ${stamp})
  endforeach()
  set(packed ${folder}/packed-input-point.o)
  add_custom_command(OUTPUT ${packed}
    COMMAND ${TOLMEX_MINGW_CXX} ${flags} -DTOLMEX_PACKED_INPUT_POINT -fsyntax-only
      ${CMAKE_SOURCE_DIR}/Projects/Tolmex/InputPointMonitor.cpp -MD -MF ${packed}.d -MT ${packed}
    COMMAND ${CMAKE_COMMAND} -E touch ${packed}
    DEPENDS ${CMAKE_SOURCE_DIR}/Projects/Tolmex/InputPointMonitor.cpp DEPFILE ${packed}.d VERBATIM
    COMMENT "Checking the packed form of input points")
  add_custom_target(windows_headers ALL DEPENDS ${stamps} ${packed})
endfunction()
