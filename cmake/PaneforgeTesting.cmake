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

# paneforge_add_qtests(LIBRARIES <targets...> [LABELS <labels...>] TESTS <tst_name...>)
# Registers each tests/<area>/<tst_name>.cpp of the current directory as its own test.
function(paneforge_add_qtests)
  cmake_parse_arguments(ARG "" "" "LIBRARIES;LABELS;TESTS" ${ARGN})
  foreach(_test IN LISTS ARG_TESTS)
    paneforge_add_qtest(${_test} SOURCES ${_test}.cpp LIBRARIES ${ARG_LIBRARIES} LABELS ${ARG_LABELS})
  endforeach()
endfunction()
