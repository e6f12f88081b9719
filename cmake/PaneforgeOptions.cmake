# Compiler settings shared by every Paneforge target.

add_library(paneforge_options INTERFACE)
target_compile_options(paneforge_options INTERFACE
  $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Wall -Wextra -Wpedantic -Wnon-virtual-dtor -Woverloaded-virtual>
  $<$<AND:$<BOOL:${PANEFORGE_WERROR}>,$<CXX_COMPILER_ID:GNU,Clang,AppleClang>>:-Werror>)
target_compile_definitions(paneforge_options INTERFACE
  QT_NO_KEYWORDS
  PANEFORGE_VERSION="${PROJECT_VERSION}")

if(PANEFORGE_SANITIZE)
  set(_paneforge_san -fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  target_compile_options(paneforge_options INTERFACE ${_paneforge_san})
  target_link_options(paneforge_options INTERFACE ${_paneforge_san})
endif()

# paneforge_layer_library(<name> LINK <targets...>)
# One library for the .cpp/.h files of the current directory. A layer with no sources yet is an
# interface library, so that the targets above it link the same way before and after it grows.
function(paneforge_layer_library name)
  cmake_parse_arguments(ARG "" "" "LINK;GLOBS" ${ARGN})
  if(NOT ARG_GLOBS)
    set(ARG_GLOBS *.cpp *.h)
  endif()
  list(TRANSFORM ARG_GLOBS PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  file(GLOB _sources CONFIGURE_DEPENDS ${ARG_GLOBS})
  set(_compiled ${_sources})
  list(FILTER _compiled INCLUDE REGEX "\\.(cpp|mm)$")
  if(_compiled)
    add_library(${name} STATIC ${_sources})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC ${ARG_LINK} PRIVATE paneforge_options)
  else()
    add_library(${name} INTERFACE ${_sources})
    target_include_directories(${name} INTERFACE ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name} INTERFACE ${ARG_LINK})
  endif()
endfunction()
