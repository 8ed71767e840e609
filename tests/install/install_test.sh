#!/usr/bin/env bash
# One look at the installation: install_test.sh BUILD_FOLDER CASE
# The case files installs and goes first.
set -euo pipefail
unset CDPATH
build=$1 name=$2
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
prefix=$build/tests/install/prefix
simulators=$prefix/lib/orvane/simulators
examples=$prefix/share/doc/orvane/examples
script=$examples/exchange.orv
work=$build/tests/install/$name
rm -rf "$work"
mkdir -p "$work"
cd "$work"

fail() { echo "$*" >&2; exit 1; }
need() { for tool; do command -v "$tool" >/dev/null || { echo "skipped: there is no $tool"; exit 77; }; done; }
same() { diff "$here/exchange.txt" - || fail "$name: another output"; }
files_in() { (cd "$1" && find . -type l -printf '%P -> %l\n' -o -type f -printf '%P\n' | LC_ALL=C sort); }

case $name in
  files)
    # What is installed works in another place as well.
    rm -rf "$prefix"
    (umask 077 && cmake --install "$build" --prefix "$work/first") >log || fail "$(cat log)"
    mv first "$prefix"
    files_in "$prefix" | grep -Ev '^share/(doc|man/man3)/' >installed
    version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
    sed "s/VERSION/$version/" "$here/files.txt" | diff - installed || fail "other files"
    closed=$(find "$prefix" -not -type l -not -perm -u=rw,go=r -o -type d -not -perm 755)
    [ -z "$closed" ] || fail "not everybody reads $closed"
    # Nothing simulated stands where vendor libraries are looked for.
    ! grep -l SimulatorRestart "$prefix"/lib/{,orvane/}*.so || fail "a simulator beside the library"
    grep -q SimulatorRestart "$simulators/libwinscard.so" || fail "no simulator"
    ;;
  hardening)
    need readelf
    for binary in "$prefix"/{bin/orvane,lib/liborvane.so,lib/orvane/lib{orvane_crypto,winscard}.so} "$simulators"/{,wd/}lib*.so; do
      facts=$(readelf --wide --program-headers --dynamic --dyn-syms --file-header "$binary")
      for fact in 'Type: *DYN' 'GNU_STACK.* RW ' GNU_RELRO BIND_NOW __stack_chk_fail; do
        grep -q "$fact" <<<"$facts" || fail "$binary lacks $fact"
      done
    done
    symbols=$(readelf --wide --dyn-syms "$prefix/lib/liborvane.so")
    grep -q _chk@ <<<"$symbols" || fail "no bounds are checked"
    ;;
  subproject)
    # Its own kind of build, warnings and installation stay the parent's; no tool is looked for.
    cmake -S "$here/subproject" -B . -D ORVANE="$root" -D CMAKE_INSTALL_PREFIX="$work/prefix" \
      -D CMAKE_CXX_FLAGS=-Wpadded -D CMAKE_DISABLE_FIND_PACKAGE_CLI11=ON \
      -D CMAKE_DISABLE_FIND_PACKAGE_PkgConfig=ON >log 2>&1 || fail "$(cat log)"
    cmake --build . --parallel "$(nproc)" >log 2>&1 || fail "$(cat log)"
    ! (./parent) 2>/dev/null || fail "the parent's asserts are gone"
    cmake --install . >log || fail "$(cat log)"
    [ "$(files_in prefix)" = bin/parent ] || fail "installed: $(files_in prefix)"
    ;;
  program)
    "$prefix/bin/orvane" run --simulate "$script" >out || fail "$(cat out)"
    tail -n 1 out | grep -qx 'done  3 commands sent, 3 expectations met' || fail "$(cat out)"
    "$prefix/bin/orvane" readers >out
    grep -q 'PC/SC  *libwinscard.so  */.*/lib/orvane/libwinscard.so' out || fail "$(cat out)"
    grep -q 'D8  *libdcrf32.so  *not found' out || fail "$(cat out)"
    # WD's, and the crypto module, which is not in the folder of the link.
    LD_LIBRARY_PATH=$simulators/wd "$prefix/bin/orvane" run --simulate -r 4:WDUSB1 \
      "$examples/authenticate.orv" >out || fail "$(cat out)"
    ;;
  cmake)
    for project in "$here/cmake_package" "$examples"/{c,cpp}; do
      cmake -S "$project" -B "${project##*/}" -D CMAKE_PREFIX_PATH="$prefix" \
        -D CMAKE_C_FLAGS="-std=c99 -pedantic -Wall -Wextra -Werror" -D CMAKE_CXX_FLAGS="-pedantic -Wall -Wextra -Werror" >log 2>&1 || fail "$(cat log)"
    done
    for folder in c cpp; do
      cmake --build $folder >log || fail "$(cat log)"
      $folder/exchange "$script" | same
    done
    ;;
  pkg_config)
    # A shell can't take what it prints of every path.
    short=$(mktemp -d)
    trap 'rm -r "$short"' EXIT
    ln -s "$prefix" "$short/prefix"
    export PKG_CONFIG_PATH=$short/prefix/lib/pkgconfig
    pkg-config --exact-version "$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")" orvane
    gcc -o exchange "$examples/c/exchange.c" $(pkg-config --cflags --libs orvane) \
      "-Wl,-rpath,$(pkg-config --variable=libdir orvane)" \
      "-DSIMULATOR=\"$(pkg-config --variable=simulators orvane)/libwinscard.so\""
    ./exchange "$script" | same
    # What the page of hosts shows in pieces.
    {
      printf '#include <%s>\n' orvane.h stdio.h
      echo 'int main(void) {'
      sed -n '/^```c$/,/^```$/{//!p}' "$prefix/share/doc/orvane/docs/host.md"
      echo 'return 0; }'
    } >snippet.c
    gcc -Wall -Werror -o snippet snippet.c $(pkg-config --cflags --libs orvane) \
      "-Wl,-rpath,$(pkg-config --variable=libdir orvane)"
    LD_LIBRARY_PATH=$(pkg-config --variable=simulators orvane) ./snippet >out
    diff out - <<<$'0 Simulated Reader 0: 3B6A0000803180664F5256414E45\n1 Simulated Reader 1: no card\nCardholder Name' || fail "the snippets"
    ;;
  python)
    need python3
    wheel=$("$root/script/package" python "$build")
    # The Python that has pytest may not be the first one.
    python=$(for each in python3 /usr/bin/python3; do "$each" -c 'import pytest' 2>/dev/null && echo $each && break; done)
    "$python" -m venv --system-site-packages venv >log || fail "$(cat log)"
    venv/bin/pip install -q --no-index "$wheel" >log 2>&1 || fail "$(cat log)"
    venv/bin/python -m pytest -q -p no:cacheprovider "$root/tests/bindings/python_test.py" >log || fail "$(cat log)"
    venv/bin/python "$examples/python/exchange.py" "$script" | same
    sed -n '/^```python$/,/^```$/{//!p}' "$prefix/share/doc/orvane/docs/packages.md" >test_page.py
    venv/bin/python -m pytest -q -p no:cacheprovider test_page.py >log || fail "$(cat log)"
    "$prefix/bin/orvane" run -q --simulate --record session.jsonl "$script"
    recorded() { venv/bin/python -m pytest -q -p no:cacheprovider --orvane-recording session.jsonl -k file "$@" test_page.py >log; }
    ! recorded && grep -q 'not as recorded: .*session.jsonl:[0-9]' log || fail "$(cat log)"
    sed -i 's/00A40000 02 3F00/00A40400 08 F04F5256414E4501 00/' test_page.py
    recorded || fail "$(cat log)"
    ORVANE_CARD=session.jsonl venv/bin/python "$examples/python/exchange.py" "$script" | same
    sed 's/00D685/00D686/' session.jsonl >other.jsonl
    ! ORVANE_CARD=other.jsonl venv/bin/python "$examples/python/exchange.py" "$script" >log 2>&1 &&
      grep -q '  recorded  00D686.*other.jsonl:' log || fail "a recording of something else: $(cat log)"
    ;;
  node)
    need node npm
    cp "$("$root/script/package" node "$build")" orvane.tgz
    cp "$root/tests/bindings/node_test.js" "$examples"/node/* .
    timeout --signal=KILL 30 npm install --ignore-scripts --prefer-offline --fetch-retries=0 ./orvane.tgz >log 2>&1 || {
      [ $? = 137 ] || grep -Eq 'E(NOTFOUND|AI_AGAIN|CONN|TIMEDOUT|NETUNREACH)|ERR_SOCKET|_CERT' log || fail "$(cat log)"
      echo "skipped: npm reaches no registry"
      exit 77
    }
    CASES=$root/tests/bindings/cases.txt node --test node_test.js >log || fail "$(cat log)"
    node exchange.js "$script" | same
    ;;
  csharp)
    need python3 mcs mono nuget unzip
    python3 "$here/csharp_declarations.py" "$prefix/include/orvane.h" "$root/bindings/csharp/Native.cs"
    unzip -q "$("$root/script/package" csharp "$build")" -d package
    cp -r package/lib/net47/* package/native/linux-x64/* .
    for program in "$root/tests/bindings/csharp_test.cs" "$examples/csharp/Exchange.cs"; do
      mcs -warnaserror -r:Orvane.Net.dll -out:"$(basename "$program" .cs).exe" "$program"
    done
    mono csharp_test.exe "$root/tests/bindings/cases.txt" >log || fail "$(cat log)"
    mono Exchange.exe "$script" | same
    ;;
  debian)
    need dpkg-deb dpkg-shlibdeps file
    packages=($("$root/script/package" debian "$build"))
    cp "${packages[@]}" .
    sleep 1
    (umask 077 && "$root/script/package" debian "$build") >log
    for package in *.deb; do
      cmp "$package" "$build/package/$package" || fail "the second package is another"
      dpkg-deb -x "$package" .
    done
    # The installation, with the libraries in the architecture's folder, and what Debian wants to be told.
    libraries=lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)
    diff <(files_in "$prefix" | grep -v LICENSE | sed -e "s,^lib/,$libraries/," -e 's,man/.*,&.gz,' -e 's,site-functions,vendor-completions,' | LC_ALL=C sort) \
      <(files_in usr | grep -Ev 'share/(doc/[^/]*/(changelog.gz|copyright)|lintian/overrides/orvane)$') || fail "the packages hold other files"
    dpkg-deb -f liborvane1_*.deb Depends | tr ',' '\n' | grep -q '^ *libgcrypt20 ' || fail "no dependencies"
    dpkg-deb --ctrl-tarfile liborvane1_*.deb | tar -xO ./symbols |
      diff <(grep '^  ' "$root/src/orvane.def" | sort) <(sed -n 's/^ \(.*\)@Base .*/  \1/p' | sort) || fail "other symbols"
    need lintian
    lintian --allow-root --fail-on error,warning *.deb >log 2>&1 || fail "$(cat log)"
    [ "$(id -u)" = 0 ] || { echo "skipped: only root tries them in a copy of this system"; exit 77; }
    unshare --mount --pid --fork bash "$here/debian_test.sh" . <"$here/exchange.txt" || fail "installed"
    ;;
  *) fail "there is no case $name" ;;
esac
