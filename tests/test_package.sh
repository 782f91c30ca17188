#!/usr/bin/env bash
# The Debian package of a build: made, installed into a root of its own, its programs started from there
# on a virtual display in a fresh home, taken down, and the package removed again.
#   test_package.sh <build directory> <version>
# The programs link the libraries of this machine; everything else is the package's.
set -euo pipefail
build=$1
version=$2

fail() { echo "FAIL: $*"; exit 1; }
skip() { echo "SKIP: $*"; exit 77; }

[ "${3:-}" = inside ] || {
    for tool in dpkg-shlibdeps file Xvfb xdotool; do
        command -v $tool >/dev/null || skip "$tool is not installed"
    done
    # The package manager works on files of root's.
    [ "$(id -u)" -eq 0 ] || unshare --map-root-user true 2>/dev/null ||
        skip "neither root nor user namespaces here"
    runner=()
    [ "$(id -u)" -eq 0 ] || runner=(unshare --map-root-user)
    exec "${runner[@]}" xvfb-run -a -s '-screen 0 1920x1080x24' bash "$0" "$build" "$version" inside
}

scratch=$(mktemp -d)
pid=
trap 'if [ -n "$pid" ]; then kill "$pid" 2>/dev/null || true; fi; rm -rf "$scratch"' EXIT
root=$scratch/root
mkdir -p "$root"/var/lib/dpkg/{info,updates,triggers} "$scratch"/{home/图片,desk,run,tmp}
chmod 700 "$scratch/run"
touch "$root/var/lib/dpkg/status"
manage() {
    PATH=$PATH:/sbin:/usr/sbin dpkg --root="$root" --log="$scratch/dpkg.log" --force-depends "$@" \
        >>"$scratch/dpkg.out" 2>&1 || { cat "$scratch/dpkg.out"; fail "dpkg $*"; }
}
# What stands in the root, with the contents, apart from the package manager's own notes.
listing() { (cd "$root" && find . -path ./var/lib/dpkg -prune -o -type f -exec sha256sum {} + | sort); }

cpack --config "$build/CPackConfig.cmake" -B "$scratch/cpack" >"$scratch/cpack.out" 2>&1 ||
    { cat "$scratch/cpack.out"; fail "cpack"; }
package=("$scratch"/cpack/*.deb)
rm -rf "$scratch/cpack/_CPack_Packages"
[ "$(dpkg-deb -f "${package[0]}" Version)" = "$version-1" ] || fail "version of the package"
[ "$(dpkg-parsechangelog -l "$(dirname "$0")/../packaging/linux/changelog" -S Version)" = "$version-1" ] ||
    fail "version in the changelog"
depends=$(dpkg-deb -f "${package[0]}" Depends)
for library in libqt5widgets5 libopencv-videoio libopencv-contrib; do
    case $depends in *$library*) ;; *) fail "no dependency on $library: $depends" ;; esac
done
case $(dpkg-deb -f "${package[0]}" Recommends) in *fonts-noto-cjk*) ;; *) fail "no fonts recommended" ;; esac

manage --install "${package[0]}"
listing >"$scratch/installed"
for file in usr/bin/tavorin usr/bin/tavorin_demo usr/bin/tavorin_fuse usr/share/tavorin/config.ini \
    usr/share/applications/tavorin.desktop usr/share/metainfo/tavorin.metainfo.xml \
    usr/share/man/man1/tavorin.1.gz usr/share/man/man1/tavorin_demo.1.gz \
    usr/share/man/man1/tavorin_fuse.1.gz usr/share/doc/tavorin/copyright \
    usr/share/doc/tavorin/changelog.Debian.gz usr/share/icons/hicolor/48x48/apps/tavorin.png \
    usr/share/icons/hicolor/scalable/apps/tavorin.svg; do
    [ -s "$root/$file" ] || fail "$file is not installed"
done
odd=$(find "$root/usr" ! -perm 755 ! \( -type f -perm 644 \))
[ -z "$odd" ] || fail "odd modes: $odd"

home=$scratch/home
mkdir "$home/.config"
echo 'XDG_PICTURES_DIR="$HOME/图片"' >"$home/.config/user-dirs.dirs"
inside=(env -i PATH="$root/usr/bin:/usr/bin:/bin" HOME="$home" DISPLAY="$DISPLAY"
    XAUTHORITY="${XAUTHORITY:-}" LANG=C.UTF-8 XDG_RUNTIME_DIR="$scratch/run" TMPDIR="$scratch/tmp")

[ "$("${inside[@]}" tavorin_fuse --version)" = "tavorin_fuse $version" ] || fail "tavorin_fuse does not run"

# Starts a program from a directory of the user's, waits for its window, and takes it down.
try_program() {
    local program=$1 window= folder=$home/.config/$1
    cd "$scratch/desk"
    touch picture.png
    "${inside[@]}" "$program" picture.png --no-file 2>"$scratch/$program.err" &
    pid=$!
    for _ in $(seq 300); do
        window=$(xdotool search --onlyvisible --pid "$pid" --name '^Orvane相机    190715$' || true)
        [ -n "$window" ] && break
        kill -0 "$pid" 2>/dev/null || { cat "$scratch/$program.err"; fail "$program ended by itself"; }
        sleep 0.1
    done
    [ -n "$window" ] || fail "$program shows no window with its title"
    eval "$(xdotool getwindowgeometry --shell "$window")"
    [ "$WIDTH" -gt 1500 ] && [ "$HEIGHT" -gt 800 ] || fail "$program is not maximised"
    [ "$(readlink "/proc/$pid/exe")" = "$root/usr/libexec/tavorin/$program" ] || fail "wrong program"
    [ "$(readlink "/proc/$pid/cwd")" = "$folder" ] || fail "$program runs outside its folder"
    [ "$(tr '\0' ' ' <"/proc/$pid/cmdline")" = \
        "$root/usr/libexec/tavorin/$program $scratch/desk/picture.png --no-file " ] ||
        fail "arguments of $program"
    kill "$pid"
    wait "$pid" || true
    pid=
    grep -qx 'QuickSavePath=./pictures' "$folder/config.ini" || fail "quick save path of $program"
    [ "$(find "$folder" -mindepth 1 -printf '%f ' | xargs -n1 | sort | xargs)" = "config.ini pictures" ] ||
        fail "$program left $(ls "$folder")"
}
try_program tavorin
try_program tavorin_demo

# The second start keeps what the user set.
echo '; mine' >"$home/.config/tavorin/config.ini"
try_kept() {
    "${inside[@]}" tavorin >/dev/null 2>&1 &
    pid=$!
    for _ in $(seq 300); do
        [ "$(readlink "/proc/$pid/exe" 2>/dev/null)" = "$root/usr/libexec/tavorin/tavorin" ] && break
        sleep 0.1
    done
    kill "$pid"
    wait "$pid" || true
    pid=
    [ "$(cat "$home/.config/tavorin/config.ini")" = '; mine' ] || fail "settings were overwritten"
}
try_kept

listing | diff "$scratch/installed" - || fail "running changed what was installed"
manage --purge tavorin
left=$(cd "$root" && find . -path ./var -prune -o ! -path . -print)
[ -z "$left" ] || fail "left behind: $left"
[ -z "$(ls "$scratch/tmp")" ] || fail "left in the folder for temporary files: $(ls "$scratch/tmp")"
echo "Installed, started, removed."
