# The window: a module, and the library of it.
tolmex_host_module(Window ROOMS DEPENDS Platform Picture Preview Win32 Editor Dxf Geometry Hatching Curves Database
  LINK Qt6::Core Qt6::Gui Qt6::Widgets Qt6::PrintSupport)
set_target_properties(host_window PROPERTIES AUTOMOC ON)

# The window; `tolmex desktop` loads it.
add_library(tolmexwindow SHARED)
target_link_libraries(tolmexwindow PRIVATE host_window tolmexpicture tolmexhost tolmex_options Qt6::Core Qt6::Gui Qt6::Widgets
  Qt6::PrintSupport)

# Its Finnish texts, inside the library.
find_program(LRELEASE lrelease HINTS /usr/lib/qt6/bin REQUIRED)
set(window_texts ${CMAKE_CURRENT_BINARY_DIR}/window_texts)
file(MAKE_DIRECTORY ${window_texts})
file(WRITE ${window_texts}/texts.qrc
  "<RCC><qresource prefix=\"/tolmex\"><file>tolmex_fi.qm</file></qresource></RCC>\n")
add_custom_command(OUTPUT ${window_texts}/texts.cpp
  COMMAND ${LRELEASE} -silent ${CMAKE_CURRENT_SOURCE_DIR}/Window/translations/tolmex_fi.ts -qm ${window_texts}/tolmex_fi.qm
  COMMAND Qt6::rcc -name window_texts ${window_texts}/texts.qrc -o ${window_texts}/texts.cpp
  DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/Window/translations/tolmex_fi.ts VERBATIM)
target_sources(tolmexwindow PRIVATE ${window_texts}/texts.cpp)

# Its table of commands and its icons lie in a folder beside it.
tolmex_copy_folder(window_data ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/window
  ${CMAKE_CURRENT_SOURCE_DIR}/Window menu.tsv tolmex.svg icons states)
add_dependencies(tolmexwindow window_data)
