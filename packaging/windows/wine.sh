# Sourced by the steps that run Windows programs: a Windows of their own in build/windows/wine, with
# a drive D: and the built libraries in reach.
export WINEPREFIX=$output/wine WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml=
export WINEPATH="Z:$prefix/bin;Z:/usr/x86_64-w64-mingw32/lib;Z:$(
    dirname "$(x86_64-w64-mingw32-gcc -print-file-name=libgcc_s_seh-1.dll)")"
# File names in any alphabet reach the disk as UTF-8.
export LC_ALL=C.UTF-8
wine=/usr/lib/wine/wine64
server=/usr/lib/wine/wineserver64
[ -x "$server" ] || server=/usr/lib/wine/wineserver

if [ ! -e "$WINEPREFIX/system.reg" ]; then
    rm -rf "$WINEPREFIX"
    timeout 600 "$wine" wineboot --init
    "$server" -w
    mkdir -p "$output/drive_d"
    ln -sfn ../../drive_d "$WINEPREFIX/dosdevices/d:"
fi
trap '"$server" -k || true' EXIT

# A path of this machine as the Windows programs see it.
seenByWine() { echo "Z:${1//\//\\}"; }
