#!/usr/bin/env bash
# Checks the Debian package that `make package` built in a build tree (default build/default):
#   - it holds exactly the expected files, and declares the Qt/XCB libraries it needs;
#   - lintian reports no error (warnings and notes are printed, not fatal);
#   - the desktop entry validates and the man page renders without a groff warning;
#   - the packaged binary, extracted from the package, prints the project's version.
set -euo pipefail
cd "$(dirname "$0")/.."

build_dir=${1:-build/default}
shopt -s nullglob
debs=("$build_dir"/paneforge_*.deb)
if [ ${#debs[@]} -ne 1 ]; then
  echo "check-package: expected one paneforge_*.deb in $build_dir, found ${#debs[@]} (run make package)" >&2
  exit 1
fi
deb=${debs[0]}
version=$(dpkg-deb --field "$deb" Version)
arch=$(dpkg-deb --field "$deb" Architecture)
failures=0
fail() {
  echo "check-package: $*" >&2
  failures=$((failures + 1))
}

echo "check-package: $deb"
[ "$(basename "$deb")" = "paneforge_${version}_${arch}.deb" ] ||
  fail "file name $(basename "$deb") does not follow paneforge_<version>_<arch>.deb"
project_version=$(sed -n 's/^project(Paneforge VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
[ "$version" = "$project_version" ] ||
  fail "package version $version is not the project's version $project_version"

# The files (directories aside), exactly.
expected_files=(
  ./usr/bin/paneforge
  ./usr/share/applications/paneforge.desktop
  ./usr/share/doc/paneforge/changelog.gz
  ./usr/share/doc/paneforge/copyright
  ./usr/share/icons/hicolor/scalable/apps/paneforge.svg
  ./usr/share/man/man1/paneforge.1.gz
)
for size in 16 22 24 32 48 64 128 256; do
  expected_files+=("./usr/share/icons/hicolor/${size}x${size}/apps/paneforge.png")
done
actual=$(dpkg-deb --contents "$deb" | awk '$1 !~ /^d/ { print $NF }' | sort)
expected=$(printf '%s\n' "${expected_files[@]}" | sort)
if [ "$actual" != "$expected" ]; then
  fail "the package's files differ from the expected ones (< expected, > packaged):"
  diff <(echo "$expected") <(echo "$actual") >&2 || true
fi

depends=$(dpkg-deb --field "$deb" Depends)
for library in libqt6core6 libqt6gui6 libqt6widgets6 libxcb1 libxcb-xinput0 qt6-qpa-plugins; do
  pattern="(^|[ ,])${library}([ ,(]|\$)"
  [[ "$depends" =~ $pattern ]] || fail "Depends lacks $library: $depends"
done

tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT

# lintian exits non-zero on errors only (--fail-on error); its warnings and notes are shown.
lintian_status=0
lintian --fail-on error --pedantic --display-info "$deb" >"$tree.lintian" 2>&1 ||
  lintian_status=$?
grep -v '^running with root privileges is not recommended!$' "$tree.lintian" || true
rm -f "$tree.lintian"
[ "$lintian_status" -eq 0 ] || fail "lintian reports errors"
dpkg-deb --extract "$deb" "$tree"

desktop-file-validate "$tree/usr/share/applications/paneforge.desktop" ||
  fail "the desktop entry is not valid"

man_warnings=$(LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z \
  "$tree/usr/share/man/man1/paneforge.1.gz" 2>&1 >/dev/null)
[ -z "$man_warnings" ] || fail "the man page has warnings: $man_warnings"

# The packaged binary, from the extracted tree, without any display.
printed=$(env -u DISPLAY -u WAYLAND_DISPLAY "$tree/usr/bin/paneforge" --version)
[ "$printed" = "Paneforge $version" ] ||
  fail "the packaged paneforge --version printed '$printed', not 'Paneforge $version'"

if [ "$failures" -ne 0 ]; then
  echo "check-package: $failures problem(s) in $deb" >&2
  exit 1
fi
echo "check-package: $deb is fine (Paneforge $version, $arch)"
