#!/usr/bin/env bash
# Gets everything that building and testing VekLib needs on Debian 12 (or a derivative), and does nothing when it is
# all there. Packages go to the system; the rest (32-bit Wine, its prefixes, expat and GoogleTest for both targets,
# the command line parser's header) goes to one private folder that every clone of the repository shares.
#
#   tools/setup.sh            set up; one line per step that was really done
#   tools/setup.sh --msvc     what the builds with Microsoft's C++ ABI need, too
#   tools/setup.sh --peers    the libraries that ./bench.sh --peers compares with, too
#   tools/setup.sh --where    print the private folder
#
# VEKLIB_DEPS names another private folder; VEKLIB_WINE32 and VEKLIB_WINE64 name Wine loaders to use instead.

set -u
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

# HOME can be missing or unusable where no user is logged in; every script has to find the same folder even so.
deps_folder() {
    local home=${HOME:-}
    if [ -n "${VEKLIB_DEPS:-}" ]; then printf '%s\n' "$VEKLIB_DEPS"; return; fi
    if [ -n "${XDG_CACHE_HOME:-}" ]; then printf '%s\n' "$XDG_CACHE_HOME/veklib"; return; fi
    if [ -z "$home" ] || [ ! -w "$home" ]; then
        home=$(getent passwd "$(id -u)" 2>/dev/null | cut -d: -f6)
    fi
    if [ -n "$home" ] && [ -w "$home" ]; then printf '%s\n' "$home/.cache/veklib"; return; fi
    printf '%s\n' "${TMPDIR:-/tmp}/veklib-$(id -u)"
}

deps=$(deps_folder)
msvc=
peers=
for argument; do
    case $argument in
        --where) printf '%s\n' "$deps"; exit 0 ;;
        --msvc) msvc=yes ;;
        --peers) peers=yes ;;
        *) echo "usage: tools/setup.sh [--msvc] [--peers] | --where" >&2; exit 2 ;;
    esac
done

# --- what has to be there ---------------------------------------------------------------------------------------------

# package, and a file or command that only it brings
packages='
cmake                       cmake
ninja-build                 ninja
g++-mingw-w64-i686-posix    i686-w64-mingw32-g++-posix
g++-mingw-w64-x86-64-posix  x86_64-w64-mingw32-g++-posix
googletest                  /usr/src/googletest/CMakeLists.txt
libcli11-dev                /usr/include/CLI/CLI.hpp
shared-mime-info            /usr/share/mime/packages/freedesktop.org.xml
dpkg-dev                    dpkg-source
clang                       clang++
clang-tidy                  clang-tidy
clang-format                clang-format
cppcheck                    cppcheck
doxygen                     doxygen
libxml2-utils               xmllint
expat                       xmlwf
libc6-i386                  /lib/ld-linux.so.2
wine64                      /usr/lib/wine/wine64
xvfb                        Xvfb
xdotool                     xdotool
gdb-mingw-w64               i686-w64-mingw32-gdb
gdb-mingw-w64-target        /usr/share/win32/gdbserver.exe
python3                     python3
zip                         zip
unzip                       unzip
pkgconf                     pkg-config
'
llvm=/usr/lib/llvm-19
[ -z "$msvc" ] || packages+="
clang-19                    $llvm/bin/clang
lld-19                      $llvm/bin/lld-link
llvm-19                     $llvm/bin/llvm-dlltool
libc++-19-dev               $llvm/include/c++/v1/version
libwine-dev                 /usr/include/wine/wine/windows/windows.h
"

# A component is complete when its stamp holds the key given here. Change a key to have the component made anew.
expat_minimum=2.8.3
expat_suite=trixie
declare -A key=(
    [wine32]='2 private root'
    [expat-source]="1 $expat_minimum"
    [expat-i686]="2 $expat_minimum wide O2 sse2 stackrealign no context"
    [expat-x86_64]="2 $expat_minimum wide O2 no context"
    [gtest-i686]='1 O1 sse2 stackrealign'
    [gtest-x86_64]='1 O1'
    [cli11]='1'
    [prefix-win32]='1'
    [prefix-win64]='1'
)
[ -z "$msvc" ] || key+=(
    [libcxx-source]='1 19'
    [msvc-sdk-i686]='3'
    [msvc-sdk-x86_64]='3'
    [expat-i686-msvc]="1 $expat_minimum"
    [expat-x86_64-msvc]="1 $expat_minimum"
    [gtest-i686-msvc]='1'
    [gtest-x86_64-msvc]='1'
)
peer_headers='libeigen3-dev libglm-dev libmsgpack-cxx-dev'
peer_sources='pugixml tinyxml2'
[ -z "$peers" ] || key[peers]='1'
declare -A witness=(
    [wine32]='loader'
    [expat-source]='CMakeLists.txt'
    [expat-i686]='lib/libexpatw.a'
    [expat-x86_64]='lib/libexpatw.a'
    [gtest-i686]='lib/libgtest.a'
    [gtest-x86_64]='lib/libgtest.a'
    [cli11]='include/CLI/CLI.hpp'
    [prefix-win32]='system.reg'
    [prefix-win64]='system.reg'
    [libcxx-source]='src/new.cpp'
    [msvc-sdk-i686]='lib/libc++.lib'
    [msvc-sdk-x86_64]='lib/libc++.lib'
    [expat-i686-msvc]='lib/libexpatwMT.lib'
    [expat-x86_64-msvc]='lib/libexpatwMT.lib'
    [gtest-i686-msvc]='lib/gtest.lib'
    [gtest-x86_64-msvc]='lib/gtest.lib'
    [peers]='tinyxml2/tinyxml2.cpp'
)

have() {
    local stamp=$deps/$1/.veklib-stamp text
    [ -e "$deps/$1/${witness[$1]}" ] && [ -r "$stamp" ] && read -r text < "$stamp" && [ "$text" = "${key[$1]}" ]
}

missing_packages() {
    local package sign
    while read -r package sign; do
        [ -n "$package" ] || continue
        case $sign in
            /*) [ -e "$sign" ] || echo "$package" ;;
            *) command -v "$sign" > /dev/null || echo "$package" ;;
        esac
    done <<< "$packages"
}

all_there() {
    local component
    [ -z "$(missing_packages)" ] || return 1
    for component in "${!key[@]}"; do have "$component" || return 1; done
}

if all_there; then exit 0; fi

# --- one run at a time, messages, clean-up ----------------------------------------------------------------------------

mkdir -p "$deps" 2>/dev/null && [ -w "$deps" ] || { echo "setup: cannot write to $deps (VEKLIB_DEPS names another folder)" >&2; exit 1; }
deps=$(cd "$deps" && pwd)
log=$deps/setup.log
exec 9> "$deps/.lock"
if ! flock -n 9; then
    echo "setup: waiting for another run to finish"
    flock 9
    if all_there; then exit 0; fi
fi
rm -rf "$deps"/.new.*            # what an interrupted run left
: > "$log"
work=$(mktemp -d "$deps/.new.XXXXXX")
children=()
cleanup() {
    local child
    for child in ${children[@]+"${children[@]}"}; do kill -- "-$child" 2>/dev/null; done
    # Wine's processes leave the group they were started in.
    for child in "$deps/wine32/usr/lib/wine/wineserver:$work/prefix-win32" "/usr/lib/wine/wineserver:$work/prefix-win64"; do
        [ -d "${child#*:}" ] && [ -x "${child%%:*}" ] && WINEPREFIX=${child#*:} timeout 10 "${child%%:*}" -k 2>/dev/null
    done
    rm -rf "$work" 2>/dev/null     # what is left is removed by the next run
}
trap cleanup EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

say() { echo "setup: $*"; }
die() { echo "setup: $* (log: $log)" >&2; exit 1; }

# Moves a finished folder into place, stamp included, in one step.
publish() {
    local component=$1 folder=$2
    printf '%s\n' "${key[$component]}" > "$folder/.veklib-stamp"
    rm -rf "${deps:?}/$component"
    mv "$folder" "$deps/$component"
}

# --- packages ---------------------------------------------------------------------------------------------------------

as_root() {
    if [ "$(id -u)" = 0 ]; then env "$@"; else sudo -n env "$@"; fi
}

install_packages() {
    local list=("$@")
    if ! command -v apt-get > /dev/null; then die "needs these packages, and there is no apt-get to get them: ${list[*]}"; fi
    if [ "$(id -u)" != 0 ] && ! sudo -n true 2>/dev/null; then
        die "neither root nor sudo without a password; have these packages installed first: ${list[*]}"
    fi
    local install=(apt-get -y -q --no-install-recommends -oDPkg::Lock::Timeout=300
        -oDpkg::Options::=--force-confdef -oDpkg::Options::=--force-confold -oDpkg::Options::=--force-unsafe-io install "${list[@]}")
    as_root DEBIAN_FRONTEND=noninteractive apt-get -q -oDPkg::Lock::Timeout=300 update || true
    as_root DEBIAN_FRONTEND=noninteractive "${install[@]}" && return
    # An installation that was broken off before leaves packages unpacked only.
    as_root DEBIAN_FRONTEND=noninteractive dpkg --configure -a
    as_root DEBIAN_FRONTEND=noninteractive apt-get -y -q --fix-broken install
    as_root DEBIAN_FRONTEND=noninteractive "${install[@]}"
}

# --- sources that apt hands out without touching the machine's own state ----------------------------------------------

# apt options for a private state in folder $1
private_apt() {
    local state=$1
    mkdir -p "$state"/{lists/partial,archives/partial,parts}
    : > "$state/status"
    apt_options=(-q -oDir::State="$state" -oDir::State::lists="$state/lists" -oDir::State::status="$state/status"
        -oDir::Cache="$state" -oDir::Cache::archives="$state/archives" -oAPT::Sandbox::User=root
        -oAPT::Install-Recommends=false -oAPT::Update::Post-Invoke::= -oAPT::Keep-Downloaded-Packages=true)
}

own_suite() { (. /etc/os-release; echo "${VERSION_CODENAME:-bookworm}"); }

# Turns the machine's own package sources into source-package entries for suite $2, in folder $1.
derive_sources() {
    local into=$1 suite=$2 codename file
    codename=$(own_suite)
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
        [ -r "$file" ] || continue
        sed -nE "s/^[[:space:]]*deb[[:space:]]+((\[[^]]*\][[:space:]]+)?[^[:space:]]+[[:space:]]+)$codename((-[a-z]+)?)[[:space:]].*/deb-src \1$suite\3 main/p" "$file"
    done | grep -v -e "-backports" | sort -u > "$into/private.list"
    for file in /etc/apt/sources.list.d/*.sources; do
        [ -r "$file" ] || continue
        grep -v '^#' "$file"
        echo
    done | awk -v codename="$codename" -v suite="$suite" '
        BEGIN { RS = ""; FS = "\n" }
        {
            types = uris = suites = keys = field = ""; enabled = 1
            for (i = 1; i <= NF; ++i) {
                if ($i ~ /^[ \t]/) { if (field == "signed-by") keys = keys "\n" $i; continue }
                field = tolower(substr($i, 1, index($i, ":") - 1))
                value = substr($i, index($i, ":") + 1)
                if (field == "types") types = value
                else if (field == "uris") uris = value
                else if (field == "suites") suites = value
                else if (field == "signed-by") keys = value
                else if (field == "enabled" && tolower(value) ~ /no|false/) enabled = 0
            }
            wanted = ""
            n = split(suites, word, /[ \t]+/)
            for (i = 1; i <= n; ++i)
                if (word[i] == codename || word[i] == codename "-updates" || word[i] == codename "-security")
                    wanted = wanted " " suite substr(word[i], length(codename) + 1)
            if (!enabled || types !~ /(^|[ \t])deb([ \t]|$)/ || wanted == "") next
            print "Types: deb-src\nURIs:" uris "\nSuites:" wanted "\nComponents: main"
            if (keys != "") print "Signed-By:" keys
            print ""
        }' > "$into/private.sources"
    [ -s "$into/private.list" ] || [ -s "$into/private.sources" ]
}

use_sources() {     # folder, suite
    private_apt "$1/apt"
    derive_sources "$1/apt/parts" "$2" || return
    apt_options+=(-oDir::Etc::sourcelist=/dev/null -oDir::Etc::sourceparts="$1/apt/parts")
    apt-get "${apt_options[@]}" update
}

download_source() { # folder, source package, the version that is new enough
    local folder=$1 package=$2 minimum=$3
    # Newest first. An archive's index can name a version whose files are gone or not there yet: then the next one.
    local versions version
    mapfile -t versions < <(apt-cache "${apt_options[@]}" showsrc "$package" | awk '/^Version:/ { print $2 }' | sort -Vru)
    for version in ${versions[@]+"${versions[@]}"}; do
        dpkg --compare-versions "$version" ge "$minimum" || continue
        echo "$package: trying version $version"
        rm -f "$folder/${package}_"*
        (cd "$folder" && apt-get "${apt_options[@]}" --download-only --only-source source "$package=$version") &&
            ls "$folder/${package}_"*.dsc && return
    done
    return 1
}

fetch_source() {    # folder, source package, suite, the version that is new enough
    use_sources "$1" "$3"
    download_source "$1" "$2" "$4"
}

# Headers out of binary packages, which stay uninstalled, and sources; an archive may have those of one suite only.
fetch_peers() {
    local folder=$1 suite package
    private_apt "$folder/apt"
    apt-get "${apt_options[@]}" update
    (cd "$folder" && apt-get "${apt_options[@]}" download $peer_headers) || return
    mkdir "$folder/unpacked"
    for package in "$folder"/*.deb; do dpkg-deb -x "$package" "$folder/unpacked" || return; done
    for suite in "$(own_suite)" "$expat_suite"; do
        use_sources "$folder" "$suite"
        for package in $peer_sources; do
            [ ! -e "$folder/unpacked/$package" ] && download_source "$folder" "$package" 0 || continue
            dpkg-source --no-check -x "$folder/${package}_"*.dsc "$folder/unpacked/$package" || return
        done
    done
    for package in $peer_sources; do [ -e "$folder/unpacked/$package" ] || return; done
    publish peers "$folder/unpacked"
}

unpack_expat() {
    local folder=$1 version
    dpkg-source --no-check -x "$folder"/*.dsc "$folder/unpacked" || return
    local source=$folder/unpacked
    [ -e "$source/CMakeLists.txt" ] || source=$folder/unpacked/expat
    version=$(awk '/^#[ \t]*define XML_(MAJOR|MINOR|MICRO)_VERSION/ { printf "%s%s", dot, $NF; dot = "." }' "$source/lib/expat.h")
    echo "expat $version"
    dpkg --compare-versions "$version" ge "$expat_minimum" || return
    publish expat-source "$source"
}

# The C++ library's sources out of the compiler's; its headers are a package of the same version.
unpack_libcxx() {
    local folder=$1 installed
    installed=$(dpkg-query -W -f '${Version}' libc++-19-dev) || return
    installed=${installed#*:}
    [ -e "$folder/llvm-toolchain-19_${installed%%-*}.orig.tar.xz" ] || { echo "the installed headers are of $installed"; return 1; }
    tar -C "$folder" -xJf "$folder"/llvm-toolchain-19_*.orig.tar.xz --wildcards '*/libcxx/src/*' || return
    publish libcxx-source "$(echo "$folder"/*/libcxx)"
}

# 32-bit Wine in a root of its own: the machine's package set stays as it is.
fetch_wine32() {
    local folder=$1 deb
    private_apt "$folder/apt"
    apt_options+=(-oAPT::Architecture=i386 -oAPT::Architectures::=i386)
    apt-get "${apt_options[@]}" update || true      # one index out of step does not matter if the rest gives a set
    apt-get "${apt_options[@]}" install -y --download-only wine32 || return
    mkdir "$folder/root"
    for deb in "$folder"/apt/archives/*.deb; do dpkg-deb -x "$deb" "$folder/root" || return; done
    ln -s usr/lib/wine/wine "$folder/root/loader"
    # Debian's script prefers the machine's own server by absolute path; the two need not be of one version.
    ln -sf wineserver32 "$folder/root/usr/lib/wine/wineserver"
    [ -x "$folder/root/usr/lib/wine/wine" ] || return
    publish wine32 "$folder/root"
}

# --- libraries for the target -----------------------------------------------------------------------------------------

target_flags() {
    case $1 in
        i686) echo "-fstack-protector-strong -msse2 -mfpmath=sse -mstackrealign" ;;
        *) echo "-fstack-protector-strong" ;;
    esac
}

cross_build() {     # component, source, target, optimisation, options...
    local component=$1 source=$2 target=$3 optimise=$4 build=$work/$1.build
    shift 4
    cmake -S "$source" -B "$build" -G Ninja -DCMAKE_SYSTEM_NAME=Windows -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_C_COMPILER="$target-w64-mingw32-gcc-posix" -DCMAKE_CXX_COMPILER="$target-w64-mingw32-g++-posix" \
        -DCMAKE_RC_COMPILER="$target-w64-mingw32-windres" -DCMAKE_FIND_ROOT_PATH="/usr/$target-w64-mingw32" \
        -DCMAKE_C_FLAGS="$(target_flags "$target")" -DCMAKE_CXX_FLAGS="$(target_flags "$target")" \
        -DCMAKE_C_FLAGS_RELEASE="$optimise -DNDEBUG" -DCMAKE_CXX_FLAGS_RELEASE="$optimise -DNDEBUG" \
        -DCMAKE_INSTALL_PREFIX="$deps/$component" -DCMAKE_INSTALL_LIBDIR=lib "$@" &&
    cmake --build "$build" &&
    DESTDIR="$work/$component.image" cmake --install "$build" &&
    publish "$component" "$work/$component.image$deps/$component"
}

# Without a context kept around the parse point, a document in memory is read where it stands instead of copied.
expat_options=(-DEXPAT_CHAR_TYPE=wchar_t -DEXPAT_SHARED_LIBS=OFF -DEXPAT_MSVC_STATIC_CRT=ON -DEXPAT_BUILD_TOOLS=OFF -DEXPAT_BUILD_TESTS=OFF
    -DEXPAT_BUILD_EXAMPLES=OFF -DEXPAT_BUILD_DOCS=OFF -DEXPAT_CONTEXT_BYTES=0)
build_expat() {
    cross_build "expat-$1" "$deps/expat-source" "$1" -O2 "${expat_options[@]}"
}

build_gtest() {
    cross_build "gtest-$1" /usr/src/googletest "$1" -O1 -DCMAKE_CXX_STANDARD=17
}

make_msvc_sdk() {
    "$here/msvc-sdk/make-sdk.sh" "$1" "$work/msvc-sdk-$1" "$deps/libcxx-source" && publish "msvc-sdk-$1" "$work/msvc-sdk-$1"
}

msvc_build() {      # component, source, target, options...
    local component=$1 source=$2 target=$3 bits=32 build=$work/$1.build
    [ "$target" = i686 ] || bits=64
    shift 3
    cmake -S "$source" -B "$build" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$here/../cmake/toolchain-msvc$bits.cmake" -DCMAKE_BUILD_TYPE=Release \
        -DVEKLIB_MSVC_SDK="$deps/msvc-sdk-$target" -DCMAKE_POLICY_DEFAULT_CMP0091=NEW -DCMAKE_INSTALL_PREFIX="$deps/$component" \
        -DCMAKE_C_FLAGS_RELEASE="/O2 /GS /guard:cf -DNDEBUG" -DCMAKE_CXX_FLAGS_RELEASE="/O1 /EHsc /GR -DNDEBUG" "$@" &&
    cmake --build "$build" &&
    DESTDIR="$work/$component.image" cmake --install "$build" &&
    publish "$component" "$work/$component.image$deps/$component"
}

build_msvc() {      # target: both libraries
    have "expat-$1-msvc" || msvc_build "expat-$1-msvc" "$deps/expat-source" "$1" "${expat_options[@]}" || return
    have "gtest-$1-msvc" || msvc_build "gtest-$1-msvc" /usr/src/googletest "$1" -DCMAKE_CXX_STANDARD=17
}

stage_cli11() {
    mkdir -p "$work/cli11/include" && cp -RL /usr/include/CLI "$work/cli11/include/" && publish cli11 "$work/cli11"
}

# --- Wine -------------------------------------------------------------------------------------------------------------

# Is there a Wine of the user's own that really runs a 32-bit program?
own_wine_works() {
    local wine
    wine=$(command -v "${VEKLIB_WINE32:-wine}") || return
    echo 'int main(void) { return 42; }' > "$work/probe.c"
    i686-w64-mingw32-gcc-posix -static -o "$work/probe.exe" "$work/probe.c" || return
    WINEPREFIX=$work/probe-prefix WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml,winemenubuilder.exe=' \
        timeout 60 "$wine" "$work/probe.exe" < /dev/null > /dev/null 2>&1 9>&-
    [ $? = 42 ] || return
    mkdir "$work/own-wine" && ln -s "$wine" "$work/own-wine/loader" && touch "$work/own-wine/is-users-own" &&
        publish wine32 "$work/own-wine"
}

make_prefix() {     # win32 or win64
    local prefix=$work/prefix-$1
    mkdir -p "$prefix/drive_c/windows/system32"
    if [ "$1" = win32 ] && [ -e "$deps/wine32/usr/i686-w64-mingw32/lib/zlib1.dll" ]; then
        # user32.dll asks for it, and a root of its own is not on Wine's fixed search path.
        cp "$deps/wine32/usr/i686-w64-mingw32/lib/zlib1.dll" "$prefix/drive_c/windows/system32/"
    fi
    VEKLIB_DEPS=$deps VEKLIB_PREFIX=$prefix timeout --foreground 120 "$here/wine-run" --boot "$1" < /dev/null > /dev/null 2>&1 9>&-
    [ -e "$prefix/system.reg" ] || return
    publish "prefix-$1" "$prefix"
}

# --- the steps --------------------------------------------------------------------------------------------------------

# Runs a step in a process group of its own with its output in a file; the lock is not handed down to it.
start() {
    local name=$1
    shift
    set -m
    ( "$@" ) > "$work/$name.log" 2>&1 < /dev/null 9>&- &
    set +m
    children+=($!)
    started[$name]=$!
}
declare -A started=()
finish() {          # name, what the user is told could not be had
    local name=$1 status
    [ -n "${started[$name]:-}" ] || return 0
    wait "${started[$name]}"
    status=$?
    unset "started[$name]"
    { echo "=== $name"; cat "$work/$name.log"; } >> "$log"
    [ $status = 0 ] || die "$2"
}

begin=$SECONDS
mapfile -t missing < <(missing_packages)

if [ ${#missing[@]} -gt 0 ]; then
    say "installing ${missing[*]}"
    start packages install_packages "${missing[@]}"
fi
if ! have wine32 && ! command -v "${VEKLIB_WINE32:-wine}" > /dev/null; then
    say "fetching a private 32-bit Wine"
    mkdir "$work/wine32.fetch"
    start wine32 fetch_wine32 "$work/wine32.fetch"
fi
if ! have expat-source; then
    say "fetching expat's source"
    mkdir "$work/expat.fetch"
    start expat-fetch fetch_source "$work/expat.fetch" expat "$expat_suite" "$expat_minimum"
fi
if [ -n "$msvc" ] && ! have libcxx-source; then
    say "fetching the C++ library's source"
    mkdir "$work/libcxx.fetch"
    start libcxx-fetch fetch_source "$work/libcxx.fetch" llvm-toolchain-19 "$(own_suite)" 1:19
fi

if [ -n "$peers" ] && ! have peers; then
    say "fetching the sources of what the benchmarks compare with"
    mkdir "$work/peers.fetch"
    start peers fetch_peers "$work/peers.fetch"
fi

if [ -n "${started[packages]:-}" ]; then
    if ! wait "${started[packages]}"; then
        grep -h '^setup: ' "$work/packages.log" >&2 && exit 1
    fi
    finish packages "could not install ${missing[*]}"
    mapfile -t missing < <(missing_packages)
    [ ${#missing[@]} = 0 ] || die "still missing after the installation: ${missing[*]}"
fi

for target in i686 x86_64; do
    have "gtest-$target" && continue
    say "building GoogleTest for $target"
    start "gtest-$target" build_gtest "$target"
done
finish expat-fetch "could not get expat's source package ($expat_minimum or newer)"
if ! have expat-source; then
    start expat-unpack unpack_expat "$work/expat.fetch"
    finish expat-unpack "could not unpack expat's source, or it is older than $expat_minimum"
fi
for target in i686 x86_64; do
    have "expat-$target" && continue
    say "building expat for $target"
    start "expat-$target" build_expat "$target"
done
if [ -n "$msvc" ]; then
    finish libcxx-fetch "could not get the C++ library's source package (llvm-toolchain-19)"
    if ! have libcxx-source; then
        start libcxx-unpack unpack_libcxx "$work/libcxx.fetch"
        finish libcxx-unpack "could not unpack the C++ library's source, or it is not of the installed headers' version"
    fi
    for target in i686 x86_64; do
        have "msvc-sdk-$target" && continue
        say "making the tools of Microsoft's C++ ABI for $target"
        start "msvc-sdk-$target" make_msvc_sdk "$target"
    done
fi
have cli11 || { start cli11 stage_cli11; finish cli11 "could not stage the command line parser's header"; }
if ! have prefix-win64; then
    say "making the 64-bit Wine prefix"
    start prefix-win64 make_prefix win64
fi
finish wine32 "could not get a private 32-bit Wine"
if ! have wine32; then
    own_wine_works >> "$log" 2>&1 || {
        say "fetching a private 32-bit Wine"
        mkdir "$work/wine32.fetch"
        start wine32 fetch_wine32 "$work/wine32.fetch"
        finish wine32 "could not get a private 32-bit Wine"
    }
fi
if ! have prefix-win32; then
    say "making the 32-bit Wine prefix"
    start prefix-win32 make_prefix win32
fi
for target in i686 x86_64; do
    finish "gtest-$target" "could not build GoogleTest for $target"
    finish "expat-$target" "could not build expat for $target"
done
if [ -n "$msvc" ]; then
    for target in i686 x86_64; do
        finish "msvc-sdk-$target" "could not make the tools of Microsoft's C++ ABI for $target"
        have "expat-$target-msvc" && have "gtest-$target-msvc" && continue
        say "building expat and GoogleTest with Microsoft's C++ ABI for $target"
        start "$target-msvc" build_msvc "$target"
    done
    for target in i686 x86_64; do
        finish "$target-msvc" "could not build expat or GoogleTest with Microsoft's C++ ABI for $target"
    done
fi
finish peers "could not get the packages $peer_headers and the sources of $peer_sources"
finish prefix-win64 "could not make the 64-bit Wine prefix"
finish prefix-win32 "could not make the 32-bit Wine prefix"

all_there || die "something is still missing"
say "done in $((SECONDS - begin)) s, private files in $deps"
