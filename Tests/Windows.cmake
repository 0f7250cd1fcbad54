# The tests that run on Windows too: those of what has a twin there, and of what computes. GoogleTest is built from
# Debian's copy of its sources.
if(NOT TARGET gtest)
  set(INSTALL_GTEST OFF)
  add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
endif()

foreach(test "Text Text Platform" "Curves Text Database Curves" "Geometry Text Database Dxf Curves Hatching Geometry"
    "Hatching Text Database Dxf Curves Hatching")
  separate_arguments(modules UNIX_COMMAND "${test}")
  list(POP_FRONT modules subject)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${subject}/*.cpp)
  string(TOLOWER test_${subject} target)
  add_executable(${target} EXCLUDE_FROM_ALL ${sources} Places.cpp)
  target_link_libraries(${target} PRIVATE gtest_main gmock host_database_rooms)
  tolmex_uses_host(${target} ${modules})
  target_include_directories(${target} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
  list(APPEND windows_tests ${target})
endforeach()
# The room for the system is tried with the system's own headers, which those of the host interface would hide.
file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/Platform/*.cpp)
add_executable(test_platform EXCLUDE_FROM_ALL ${sources})
target_link_libraries(test_platform PRIVATE gtest_main gmock tolmexhost tolmex_options)
target_include_directories(test_platform PRIVATE ${CMAKE_CURRENT_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/Host/Sdk/include
  ${CMAKE_BINARY_DIR}/include/host_platform ${CMAKE_BINARY_DIR}/include/host_dxf ${CMAKE_BINARY_DIR}/include/host_database
  ${CMAKE_BINARY_DIR}/include/host_problems ${CMAKE_BINARY_DIR}/include/host_text)
list(APPEND windows_tests test_platform)
file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/Plugin/*.cpp)
add_executable(test_plugin EXCLUDE_FROM_ALL ${sources})
target_link_libraries(test_plugin PRIVATE gtest_main gmock tolmex_model tolmex_options)
target_include_directories(test_plugin PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
add_custom_target(windows_tests DEPENDS ${windows_tests} test_plugin)
