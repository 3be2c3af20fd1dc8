#!/bin/bash
# Installs into an empty prefix and lives there as a user would: takes the examples
# from what was installed, builds them by the CMake package and by pkg-config, and
# runs them, the Python module and the client.
#   install.sh BUILD_DIR VERSION
set -euo pipefail
build=$1 version=$2 source=$(realpath "$(dirname "$0")/../..")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

fail() { echo "install: $*" >&2; exit 1; }
quietly() { "$@" > "$work/log" 2>&1 || { cat "$work/log" >&2; fail "failed: $*"; }; }

# As after a build of the client alone: the installation makes what is missing.
rm -f "$build/docs/tessel_status.py"
quietly cmake --install "$build" --prefix "$prefix"
lib=$(dirname "$(find "$prefix" -name 'libTessel.so.*' | head -1)")
cp -r "$prefix/share/doc/libtessel-dev/examples" "$work/examples"
cd "$work/examples"

run_all() {
  local way=$1 folder=$2
  "$folder/restock" data/stock.xml data/stock.xsd "$work/$way.xml" | grep > /dev/null 'Saw: 7 -> 10' ||
    fail "$way: restock"
  "$folder/own_host" || fail "$way: own_host"
}

quietly cmake -S c -B by_cmake -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_BUILD_TYPE=Release
quietly cmake --build by_cmake
run_all cmake by_cmake

export LD_LIBRARY_PATH=$lib PKG_CONFIG_PATH=$lib/pkgconfig
quietly make -C c
run_all pkg-config c
cmp "$work/cmake.xml" "$work/pkg-config.xml"
[ "$(pkg-config --modversion tessel)" = "$version" ] || fail "the version in tessel.pc"

# The README's program, as it stands.
sed -n '/^```c$/,/^```$/p' "$source/README.md" | grep -v '^```' > readme.c
quietly cc -std=c99 -Wall -Werror readme.c -o readme \
  $(pkg-config --cflags --libs tessel tessel-host)
[ "$(./readme)" = '<floor><tile/></floor>' ] || fail "the README's program"

# The code of the pages.
[ ! -e "$prefix/bin/tessel" ] || python3 "$source/tests/packaging/pages.py" "$source/docs" \
  "$prefix/bin/tessel" || fail "the pages"

python3 python/restock.py data/stock.xml data/stock.xsd "$work/python.xml" | grep > /dev/null '^valid' ||
  fail "python: the new list is valid"
python3 python/test_tessel.py 2> /dev/null || fail "python: test_tessel.py"

# The client finds the library by itself.
unset LD_LIBRARY_PATH
if [ -e "$prefix/bin/tessel" ]; then
  "$prefix/bin/tessel" --version | grep -F > /dev/null "Tessel $version" || fail "tessel --version"
  man -l -Tascii "$prefix/share/man/man1/tessel.1" > /dev/null 2>&1 || [ -z "$(type -P man)" ] ||
    fail "the man page cannot be shown"
fi
