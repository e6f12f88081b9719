#!/usr/bin/env bash
# Installs whatever Paneforge needs to build, run and test that this machine lacks. Safe to run
# again: it installs nothing when everything is present.
#   Debian/Ubuntu: apt packages (as root, or through sudo)
#   macOS: Homebrew formulae
set -euo pipefail

debian_packages=(
  # build
  cmake ninja-build g++ pkg-config ccache clang-format
  qt6-base-dev qt6-base-dev-tools libgl-dev
  libxcb1-dev libxcb-xinput-dev libxcb-xkb-dev libxcb-randr0-dev libxcb-icccm4-dev
  libxcb-shape0-dev libxcb-xfixes0-dev libxcb-keysyms1-dev libxkbcommon-dev libxkbcommon-x11-dev
  # packages (make package: the icon's PNGs, dpkg-shlibdeps) and their checks
  # (scripts/check-package.sh: lintian, desktop-file-validate, man)
  qt6-svg-dev dpkg-dev lintian desktop-file-utils man-db
  # end-to-end tests: a headless X server, a window manager, a tray host, a compositor, clients
  # and keyboard tools (xdotool, xmodmap, setxkbmap)
  xvfb openbox xdotool x11-apps x11-utils x11-xserver-utils x11-xkb-utils xterm trayer xcompmgr
  # locale sources, from which the tests build a comma-decimal locale of their own
  locales
  # the fuzz target (scripts/run-fuzz.sh): clang with libFuzzer
  clang libclang-rt-dev
)

install_debian() {
  local missing=()
  for package in "${debian_packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
      missing+=("$package")
    fi
  done
  if [ ${#missing[@]} -eq 0 ]; then
    return 0
  fi
  local sudo=()
  if [ "$(id -u)" -ne 0 ]; then
    if command -v sudo >/dev/null 2>&1; then
      sudo=(sudo)
    else
      echo "install-deps: missing packages (${missing[*]}) and no root or sudo to install them" >&2
      exit 1
    fi
  fi
  echo "install-deps: installing ${missing[*]}"
  "${sudo[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

install_macos() {
  if ! command -v brew >/dev/null 2>&1; then
    echo "install-deps: Homebrew is needed on macOS (https://brew.sh)" >&2
    exit 1
  fi
  local formula
  for formula in cmake ninja qt ccache; do
    brew list --formula "$formula" >/dev/null 2>&1 || brew install "$formula"
  done
}

case "$(uname -s)" in
  Linux)
    if command -v dpkg-query >/dev/null 2>&1; then
      install_debian
    else
      echo "install-deps: not a Debian-based system; install the equivalents of: ${debian_packages[*]}" >&2
    fi
    ;;
  Darwin) install_macos ;;
  *) echo "install-deps: unsupported system $(uname -s)" >&2; exit 1 ;;
esac
