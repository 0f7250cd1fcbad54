# tolmex_module_resources(<target> <script>): compiles a Windows resource script with Debian's own resource compiler and
# puts the result into a module, where the embedded host finds it (Host/Win32/Resources.h says how).
find_program(WINDRES x86_64-w64-mingw32-windres REQUIRED)
enable_language(ASM)

function(tolmex_module_resources target script)
  cmake_path(GET script STEM name)
  set(res ${CMAKE_CURRENT_BINARY_DIR}/${name}.res)
  # The script is preprocessed by the project's own compiler: the package of the resource compiler brings none.
  add_custom_command(OUTPUT ${res}
    COMMAND ${WINDRES} --codepage=65001 --output-format=res
      --preprocessor=${CMAKE_CXX_COMPILER} --preprocessor-arg=-E --preprocessor-arg=-xc-header --preprocessor-arg=-DRC_INVOKED
      --include-dir=${CMAKE_CURRENT_SOURCE_DIR} ${script} ${res}
    DEPENDS ${script} ${CMAKE_CURRENT_SOURCE_DIR}/Resource.h VERBATIM)
  set(source ${CMAKE_CURRENT_BINARY_DIR}/${name}.res.S)
  file(CONFIGURE OUTPUT ${source} @ONLY CONTENT [[
    .section .rodata
    .balign 8
    .globl tolmexhost_module_resources
    .type tolmexhost_module_resources, %object
tolmexhost_module_resources:
    .quad 2f - 1f
1:  .incbin "@res@"
2:
    .size tolmexhost_module_resources, . - tolmexhost_module_resources
    .section .note.GNU-stack, "", %progbits
]])
  set_source_files_properties(${source} PROPERTIES OBJECT_DEPENDS ${res})
  target_sources(${target} PRIVATE ${source})
endfunction()
