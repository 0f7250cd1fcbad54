# Files inside programs and libraries, and resources of Windows' kind.
find_program(WINDRES x86_64-w64-mingw32-windres REQUIRED)
enable_language(ASM)

# tolmex_embed(<target> <symbol> <file> [EXPORTED]): puts a file into a program or library, eight bytes of its length
# before it.
function(tolmex_embed target symbol file)
  cmake_parse_arguments(arg "EXPORTED" "" "" ${ARGN})
  set(section ".section .rodata")
  set(kind ".type ${symbol}, %object")
  set(size ".size ${symbol}, . - ${symbol}")
  set(rest ".section .note.GNU-stack, \"\", %progbits")
  if(WIN32)
    set(section ".section .rdata, \"dr\"")
    set(kind)
    set(size)
    set(rest)
    if(arg_EXPORTED)
      set(rest ".section .drectve\n    .ascii \" -export:${symbol},data\"")
    endif()
  endif()
  set(source ${CMAKE_CURRENT_BINARY_DIR}/${symbol}.S)
  file(CONFIGURE OUTPUT ${source} @ONLY CONTENT [[
    @section@
    .balign 8
    .globl @symbol@
    @kind@
@symbol@:
    .quad 2f - 1f
1:  .incbin "@file@"
2:
    @size@
    @rest@
]])
  set_source_files_properties(${source} PROPERTIES OBJECT_DEPENDS ${file})
  target_sources(${target} PRIVATE ${source})
endfunction()

# tolmex_module_resources(<target> <script>): compiles a Windows resource script with Debian's own resource compiler and
# puts the result into a module, where the embedded host finds it (Host/Win32/Resources.h says how).
function(tolmex_module_resources target script)
  cmake_path(GET script STEM name)
  set(res ${CMAKE_CURRENT_BINARY_DIR}/${name}.res)
  # The script is preprocessed by the project's own compiler: the package of the resource compiler brings none.
  add_custom_command(OUTPUT ${res}
    COMMAND ${WINDRES} --codepage=65001 --output-format=res
      --preprocessor=${CMAKE_CXX_COMPILER} --preprocessor-arg=-E --preprocessor-arg=-xc-header --preprocessor-arg=-DRC_INVOKED
      --include-dir=${CMAKE_CURRENT_SOURCE_DIR} ${script} ${res}
    DEPENDS ${script} ${CMAKE_CURRENT_SOURCE_DIR}/Resource.h VERBATIM)
  tolmex_embed(${target} tolmexhost_module_resources ${res} EXPORTED)
endfunction()
