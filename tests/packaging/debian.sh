#!/bin/bash
# Makes the Debian packages, asks lintian for their faults, looks into them, and runs
# the client out of them.
#   debian.sh BUILD_DIR VERSION
set -euo pipefail
build=$1 version=$2 major=${2%%.*}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() { echo "debian: $*" >&2; exit 1; }
field() { dpkg-deb -f "$work/$1"_*.deb "$2"; }
depends() { field "$1" Depends | grep -F > /dev/null "$2" || fail "$1 does not depend on $2"; }
holds() { grep -qE "$2" "$work/$1.files"; }

cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work" > "$work/log" 2>&1 ||
  { cat "$work/log" >&2; fail "cpack failed"; }
packages="libtessel$major libtessel-dev"
[ ! -e "$build/bin/tessel" ] || packages+=" tessel"

for package in $packages; do
  [ "$(field "$package" Version)" = "$version" ] || fail "the version of $package"
  dpkg-deb -x "$work/$package"_*.deb "$work/tree"
  dpkg-deb -c "$work/$package"_*.deb | awk '!/\/$/ {print $6}' > "$work/$package.files"
  holds "$package" "/share/doc/$package/copyright$" || fail "$package has no copyright"
done
depends "libtessel$major" libxerces-c3.2
depends "libtessel$major" libxalan-c112
[ "$(dpkg-deb -f "$work"/libtessel-dev_*.deb Description | head -1)" != \
  "$(dpkg-deb -f "$work/libtessel$major"_*.deb Description | head -1)" ] || fail "one summary for all"
depends libtessel-dev "libtessel$major (= $version)"

holds "libtessel$major" "/libTessel\.so\.$major$" || fail "no library"
! holds "libtessel$major" '\.(h|pc|cmake|so)$' || fail "development files in the library"
holds libtessel-dev /include/tessel/tessel.h$ || fail "no headers"
holds libtessel-dev '/libTessel\.so$' || fail "no link for the linker"
for control in shlibs symbols triggers; do
  dpkg-deb -I "$work/libtessel$major"_*.deb $control > "$work/$control"
done
grep > /dev/null "^libTesselHost $major libtessel$major (>= $version)" "$work/shlibs" || fail "shlibs"
grep > /dev/null "^ TSXLoadFile@Base $version" "$work/symbols" || fail "symbols"
if [ "$(type -P lintian)" ]; then
  lintian --allow-root --fail-on error "$work"/*.deb > "$work/log" 2>&1 ||
    { cat "$work/log" >&2; fail "lintian"; }
fi
twice=$(sort "$work"/*.files | uniq -d)
[ -z "$twice" ] || fail "in two packages: $twice"
! grep -r -I -l --include=*.pc --include=*.cmake "$build" "$work/tree" || fail "the build folder's name"

if [[ $packages == *" tessel" ]]; then
  depends tessel "libtessel$major (= $version)"
  lib=$(dirname "$(find "$work/tree" -name "libTessel.so.$major")")
  LD_LIBRARY_PATH=$lib "$work/tree/usr/bin/tessel" --version | grep -F > /dev/null "Tessel $version" ||
    fail "the client"
fi
