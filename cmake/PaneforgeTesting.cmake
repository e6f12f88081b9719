# paneforge_add_qtest(<name> SOURCES <files...> LIBRARIES <targets...> [ENVIRONMENT <VAR=value...>]
#                     [LABELS <labels...>] [TIMEOUT <seconds>])
#
# Builds one Qt Test executable and registers it with CTest. Every test runs on Qt's offscreen
# platform unless it sets QT_QPA_PLATFORM itself.
function(paneforge_add_qtest name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LIBRARIES;ENVIRONMENT;LABELS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE paneforge_options Qt6::Test ${ARG_LIBRARIES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support)
  add_test(NAME ${name} COMMAND ${name})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  set_tests_properties(${name} PROPERTIES
    TIMEOUT ${ARG_TIMEOUT}
    LABELS "${ARG_LABELS}"
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp;${ARG_ENVIRONMENT}")
endfunction()

# Registers every tests/<area>/tst_*.cpp in the current directory as its own test, linked to the
# given libraries.
function(paneforge_add_qtests_in_directory)
  cmake_parse_arguments(ARG "" "PREFIX" "LIBRARIES;LABELS" ${ARGN})
  file(GLOB _tests CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/tst_*.cpp)
  foreach(_source IN LISTS _tests)
    get_filename_component(_stem ${_source} NAME_WE)
    paneforge_add_qtest(${ARG_PREFIX}${_stem} SOURCES ${_source} LIBRARIES ${ARG_LIBRARIES} LABELS ${ARG_LABELS})
  endforeach()
endfunction()
