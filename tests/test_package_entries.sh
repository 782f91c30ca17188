#!/usr/bin/env bash
# The package's entries in menus and software catalogues are what their validators want.
#   test_package_entries.sh <source directory> <version>
set -euo pipefail
cd "$1/packaging/linux"

for tool in desktop-file-validate appstreamcli; do
    command -v $tool >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }
done

complaints=$(desktop-file-validate tavorin.desktop tavorin_demo.desktop 2>&1) || true
[ -z "$complaints" ] || { echo "$complaints"; exit 1; }
# The founders have no domain that an identifier could start with.
appstreamcli validate --no-net --override=cid-desktopapp-is-not-rdns=info tavorin.metainfo.xml
grep -q "<release version=\"$2\"" tavorin.metainfo.xml || { echo "no release $2 there"; exit 1; }
