# Signs the installed Paneforge.app, run by `cmake --install` and CPack after the Qt deployment
# (cmake/PaneforgePackaging.cmake sets PANEFORGE_BUNDLE and PANEFORGE_CODESIGN_IDENTITY).
#   no identity:   ad hoc ("-"), so that the bundle runs on this Mac and on Apple silicon;
#   an identity:   the hardened runtime and a secure time stamp, as notarization requires.
# Nested code is signed before what contains it: plug-ins and frameworks, then the bundle.
if(NOT EXISTS "${PANEFORGE_BUNDLE}/Contents/Info.plist")
  message(FATAL_ERROR "sign-bundle: no bundle at ${PANEFORGE_BUNDLE}")
endif()
if(PANEFORGE_CODESIGN_IDENTITY STREQUAL "")
  set(_sign codesign --force --sign -)
  message(STATUS "Signing ${PANEFORGE_BUNDLE} ad hoc (no PANEFORGE_CODESIGN_IDENTITY)")
else()
  set(_sign codesign --force --options runtime --timestamp --sign "${PANEFORGE_CODESIGN_IDENTITY}")
  message(STATUS "Signing ${PANEFORGE_BUNDLE} as ${PANEFORGE_CODESIGN_IDENTITY}")
endif()
file(GLOB_RECURSE _plugins "${PANEFORGE_BUNDLE}/Contents/PlugIns/*.dylib")
file(GLOB _libraries "${PANEFORGE_BUNDLE}/Contents/Frameworks/*.dylib")
file(GLOB _frameworks LIST_DIRECTORIES true "${PANEFORGE_BUNDLE}/Contents/Frameworks/*.framework")
foreach(_code IN LISTS _plugins _libraries _frameworks)
  execute_process(COMMAND ${_sign} "${_code}" COMMAND_ERROR_IS_FATAL ANY)
endforeach()
execute_process(COMMAND ${_sign} "${PANEFORGE_BUNDLE}" COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND codesign --verify --strict --verbose=2 "${PANEFORGE_BUNDLE}"
  COMMAND_ERROR_IS_FATAL ANY)
