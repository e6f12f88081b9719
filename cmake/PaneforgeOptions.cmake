# Compiler settings shared by every Paneforge target.

add_library(paneforge_options INTERFACE)
target_compile_options(paneforge_options INTERFACE
  $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Wall -Wextra -Wpedantic -Wnon-virtual-dtor -Woverloaded-virtual>
  $<$<AND:$<BOOL:${PANEFORGE_WERROR}>,$<CXX_COMPILER_ID:GNU,Clang,AppleClang>>:-Werror>)
target_compile_definitions(paneforge_options INTERFACE
  QT_NO_KEYWORDS
  PANEFORGE_VERSION="${PROJECT_VERSION}")

# Product code names every user-visible and machine-read text explicitly (QStringLiteral,
# QLatin1String, fromUtf8); tests may use plain literals.
add_library(paneforge_strict_strings INTERFACE)
target_compile_definitions(paneforge_strict_strings INTERFACE QT_NO_CAST_FROM_ASCII)

if(PANEFORGE_SANITIZE)
  set(_paneforge_san -fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  target_compile_options(paneforge_options INTERFACE ${_paneforge_san})
  target_link_options(paneforge_options INTERFACE ${_paneforge_san})
endif()

# paneforge_layer_library(<name> LINK <targets...> SOURCES <files...>)
# One static library for a layer, from an explicit list of files relative to the current
# directory (a glob would silently miss files in sub-folders).
function(paneforge_layer_library name)
  cmake_parse_arguments(ARG "" "" "LINK;SOURCES" ${ARGN})
  list(TRANSFORM ARG_SOURCES PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${ARG_LINK} PRIVATE paneforge_options paneforge_strict_strings)
endfunction()
