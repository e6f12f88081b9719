# Installing and packaging Paneforge. `make package` runs CPack on a build tree:
#   Linux:  paneforge_<version>_<arch>.deb (CPack DEB): /usr/bin/paneforge, the desktop entry, the
#           icon in the hicolor theme (SVG and PNGs), the man page, the copyright and changelog,
#           and the Qt/XCB run-time dependencies found by dpkg-shlibdeps.
#   macOS:  Paneforge.app (Info.plist from packaging/macos/Info.plist.in, Qt deployed into it) in
#           a drag-to-Applications Paneforge-<version>.dmg (CPack DragNDrop).
# Signing is optional (PANEFORGE_CODESIGN_IDENTITY) and notarization is a separate step: see
# docs/RELEASING.md. Included from the top-level CMakeLists.txt after src/ (it needs the
# `paneforge` target) and before tools/ (which reads PANEFORGE_MACOS_MINIMUM_SYSTEM_VERSION).

include(GNUInstallDirs)

find_package(Qt6 REQUIRED COMPONENTS Svg)

set(_pkg_source ${PROJECT_SOURCE_DIR}/packaging)
set(_pkg_binary ${PROJECT_BINARY_DIR}/packaging)

# The bundle identifier is also the one the privacy coach resets with tccutil
# (PrivacyPermissionPolicy::bundleId); tests/packaging checks that they agree.
set(PANEFORGE_BUNDLE_IDENTIFIER "app.paneforge.Paneforge")
set(PANEFORGE_BUNDLE_EXECUTABLE "Paneforge")
set(PANEFORGE_MACOS_MINIMUM_SYSTEM_VERSION "12.0" CACHE STRING
  "Oldest macOS the bundle runs on (LSMinimumSystemVersion and the update feed's default)")
set(PANEFORGE_UPDATE_FEED_URL "https://paneforge.app/appcast.xml" CACHE STRING
  "The update feed the macOS bundle reads (SUFeedURL)")
set(PANEFORGE_UPDATE_PUBLIC_ED_KEY "" CACHE STRING
  "Base64 EdDSA public key of the update feed (SUPublicEDKey, from Sparkle's generate_keys); empty in development builds")
set(PANEFORGE_CODESIGN_IDENTITY "" CACHE STRING
  "macOS code-signing identity for the installed bundle (hash or name); empty signs ad hoc")
set(PANEFORGE_PACKAGE_MAINTAINER "Paneforge Developers <dev@paneforge.invalid>" CACHE STRING
  "Maintainer of the Debian package (Name <address>)")

if(NOT PANEFORGE_UPDATE_FEED_URL MATCHES "^https://[^/]+/")
  message(FATAL_ERROR "PANEFORGE_UPDATE_FEED_URL must be an https URL (macOS refuses plain http): "
    "'${PANEFORGE_UPDATE_FEED_URL}'")
endif()
if(NOT PANEFORGE_UPDATE_PUBLIC_ED_KEY STREQUAL "" AND
   NOT PANEFORGE_UPDATE_PUBLIC_ED_KEY MATCHES "^[A-Za-z0-9+/]+=*$")
  message(FATAL_ERROR "PANEFORGE_UPDATE_PUBLIC_ED_KEY is not base64: "
    "'${PANEFORGE_UPDATE_PUBLIC_ED_KEY}'")
endif()
if(NOT PANEFORGE_MACOS_MINIMUM_SYSTEM_VERSION MATCHES "^[0-9]+(\\.[0-9]+)?(\\.[0-9]+)?$")
  message(FATAL_ERROR "PANEFORGE_MACOS_MINIMUM_SYSTEM_VERSION is not a macOS version: "
    "'${PANEFORGE_MACOS_MINIMUM_SYSTEM_VERSION}'")
endif()

# The date of this build's changelog entry and man page. CMake takes SOURCE_DATE_EPOCH when it is
# set, so a reproducible build gets a fixed date.
string(TIMESTAMP PANEFORGE_RELEASE_DATE "%Y-%m-%d" UTC)
string(TIMESTAMP PANEFORGE_RELEASE_DATE_RFC2822 "%a, %d %b %Y %H:%M:%S +0000" UTC)

# The Info.plist is configured on every platform, so that tests/packaging checks it on Linux too.
# CMake configures MACOSX_BUNDLE_INFO_PLIST once more when it writes the bundle; the file then has
# nothing left to replace.
set(PANEFORGE_INFO_PLIST ${_pkg_binary}/macos/Info.plist)
configure_file(${_pkg_source}/macos/Info.plist.in ${PANEFORGE_INFO_PLIST} @ONLY)

# Icons: the SVG is the source; the PNG sizes are rendered from it at build time.
set(_icon_svg ${_pkg_source}/icons/paneforge.svg)
set(_icon_dir ${_pkg_binary}/icons)
set(_icon_outputs)
set(_icon_arguments)
if(APPLE)
  # iconutil's icon set: each size at 1x and 2x.
  set(_iconset ${_icon_dir}/Paneforge.iconset)
  foreach(_size 16 32 128 256 512)
    math(EXPR _double "${_size} * 2")
    list(APPEND _icon_outputs ${_iconset}/icon_${_size}x${_size}.png
      ${_iconset}/icon_${_size}x${_size}@2x.png)
    list(APPEND _icon_arguments ${_iconset}/icon_${_size}x${_size}.png ${_size}
      ${_iconset}/icon_${_size}x${_size}@2x.png ${_double})
  endforeach()
else()
  set(PANEFORGE_HICOLOR_SIZES 16 22 24 32 48 64 128 256)
  foreach(_size IN LISTS PANEFORGE_HICOLOR_SIZES)
    list(APPEND _icon_outputs ${_icon_dir}/${_size}x${_size}/paneforge.png)
    list(APPEND _icon_arguments ${_icon_dir}/${_size}x${_size}/paneforge.png ${_size})
  endforeach()
endif()
add_custom_command(OUTPUT ${_icon_outputs}
  COMMAND paneforge-icon-render ${_icon_svg} ${_icon_arguments}
  DEPENDS ${_icon_svg} paneforge-icon-render
  COMMENT "Rendering the application icon"
  VERBATIM)
set(_packaging_outputs ${_icon_outputs})

if(APPLE)
  # ---- macOS: Paneforge.app in a disk image ----
  find_program(PANEFORGE_ICONUTIL iconutil REQUIRED)
  set(_icns ${_icon_dir}/Paneforge.icns)
  add_custom_command(OUTPUT ${_icns}
    COMMAND ${PANEFORGE_ICONUTIL} --convert icns --output ${_icns} ${_iconset}
    DEPENDS ${_icon_outputs}
    COMMENT "Making Paneforge.icns"
    VERBATIM)
  list(APPEND _packaging_outputs ${_icns})

  set_target_properties(paneforge PROPERTIES
    MACOSX_BUNDLE TRUE
    OUTPUT_NAME ${PANEFORGE_BUNDLE_EXECUTABLE}
    MACOSX_BUNDLE_INFO_PLIST ${PANEFORGE_INFO_PLIST})
  install(TARGETS paneforge BUNDLE DESTINATION .)
  install(FILES ${_icns} DESTINATION ${PANEFORGE_BUNDLE_EXECUTABLE}.app/Contents/Resources)

  # Copies the Qt frameworks and plug-ins into the installed bundle (macdeployqt).
  if(Qt6_VERSION VERSION_GREATER_EQUAL 6.5)
    qt_generate_deploy_app_script(TARGET paneforge OUTPUT_SCRIPT _deploy_script
      NO_UNSUPPORTED_PLATFORM_ERROR)
  else()
    qt_generate_deploy_app_script(TARGET paneforge FILENAME_VARIABLE _deploy_script
      NO_UNSUPPORTED_PLATFORM_ERROR)
  endif()
  install(SCRIPT ${_deploy_script})
  # Signs the deployed bundle, inside out: ad hoc without an identity (Apple silicon runs nothing
  # unsigned), with the hardened runtime and a timestamp with one (what notarization needs).
  install(CODE "
    set(PANEFORGE_BUNDLE \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${PANEFORGE_BUNDLE_EXECUTABLE}.app\")
    set(PANEFORGE_CODESIGN_IDENTITY \"${PANEFORGE_CODESIGN_IDENTITY}\")
    include(\"${_pkg_source}/macos/sign-bundle.cmake\")")

  set(CPACK_GENERATOR DragNDrop)
  set(CPACK_PACKAGE_FILE_NAME "Paneforge-${PROJECT_VERSION}")
  set(CPACK_DMG_VOLUME_NAME "Paneforge")
  set(CPACK_DMG_FORMAT UDZO)
  set(CPACK_PACKAGE_ICON ${_icns})
elseif(PANEFORGE_PLATFORM_X11)
  # ---- Linux: the Debian package ----
  find_program(PANEFORGE_GZIP gzip REQUIRED)

  # The man page and the changelog, compressed as Debian asks: -9, and -n for no time stamp in
  # the file.
  configure_file(${_pkg_source}/linux/paneforge.1.in ${_pkg_binary}/linux/paneforge.1 @ONLY)
  configure_file(${_pkg_source}/linux/changelog.in ${_pkg_binary}/linux/changelog @ONLY)
  foreach(_page paneforge.1 changelog)
    add_custom_command(OUTPUT ${_pkg_binary}/linux/${_page}.gz
      COMMAND ${PANEFORGE_GZIP} -9nkf ${_pkg_binary}/linux/${_page}
      DEPENDS ${_pkg_binary}/linux/${_page}
      VERBATIM)
    list(APPEND _packaging_outputs ${_pkg_binary}/linux/${_page}.gz)
  endforeach()

  # Debian's hardening: a read-only global offset table (lintian: hardening-no-bindnow).
  target_link_options(paneforge PRIVATE "LINKER:-z,relro,-z,now")
  install(TARGETS paneforge RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  # Stripped as Debian's dh_strip does, without the sections a plain strip leaves
  # (lintian: binary-has-unneeded-section).
  install(CODE "execute_process(COMMAND \"${CMAKE_STRIP}\" --strip-unneeded
      --remove-section=.comment --remove-section=.note
      \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/paneforge\"
    COMMAND_ERROR_IS_FATAL ANY)")
  install(FILES ${_pkg_source}/linux/paneforge.desktop
    DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES ${_icon_svg} DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
  foreach(_size IN LISTS PANEFORGE_HICOLOR_SIZES)
    install(FILES ${_icon_dir}/${_size}x${_size}/paneforge.png
      DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${_size}x${_size}/apps)
  endforeach()
  install(FILES ${_pkg_binary}/linux/paneforge.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES ${_pkg_source}/linux/copyright ${_pkg_binary}/linux/changelog.gz
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/paneforge)

  set(CPACK_GENERATOR DEB)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION x11)
  set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
  set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
  set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
  # dpkg-shlibdeps finds the libraries the binary links (Qt, XCB, xkbcommon, libc). The XCB
  # platform plug-in is loaded at run time, so it is named here.
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins")
  find_program(PANEFORGE_DPKG_SHLIBDEPS dpkg-shlibdeps)
  if(PANEFORGE_DPKG_SHLIBDEPS)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  else()
    message(STATUS "dpkg-shlibdeps not found: the Debian package will not declare its libraries "
      "(install dpkg-dev)")
  endif()
endif()

add_custom_target(paneforge_packaging_files ALL DEPENDS ${_packaging_outputs})

# ---- CPack, common to both ----
set(CPACK_PACKAGE_NAME "paneforge")
set(CPACK_PACKAGE_VENDOR "The Paneforge authors")
set(CPACK_PACKAGE_CONTACT "${PANEFORGE_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "zone-based window snapping")
set(CPACK_PACKAGE_DESCRIPTION [=[
Paneforge splits each display into zones of your own design. Drag any
window with a modifier key held and the zones appear; release over a zone,
or across several, and the window snaps into place. It lives in the system
tray and needs an X11 session.

The same program also checks, prints and backs up its configuration from the
command line (see paneforge(1)).]=])
set(CPACK_STRIP_FILES TRUE)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_SOURCE_GENERATOR "")
include(CPack)
