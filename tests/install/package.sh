#!/usr/bin/env bash
# `make install` into a staging folder and `make package`: the desktop's own
# validators accept the installed menu entry and metainfo, the icons are in the
# hicolor theme, and the .deb holds the same files and depends on Qt's
# Debian packages. Usage: package.sh BUILD_DIR
set -uo pipefail
build="$1"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $1"; exit 1; }

DESTDIR="$work/dest" cmake --install "$build" --prefix /usr > "$work/install.log" 2>&1 ||
  { cat "$work/install.log"; fail "cmake --install failed"; }
root="$work/dest/usr"
desktop="$root/share/applications/org.example.tarvo.desktop"
metainfo="$root/share/metainfo/org.example.tarvo.metainfo.xml"
icons=(16x16 22x22 24x24 32x32 48x48 64x64 128x128 256x256)
[ -x "$root/bin/tarvo" ] || fail "no binary in bin/"
for size in "${icons[@]}"; do
  [ "$(identify -format '%m %wx%h' "$root/share/icons/hicolor/$size/apps/tarvo.png" 2>/dev/null)" = "PNG $size" ] ||
    fail "no $size PNG icon"
done
grep -q '<svg' "$root/share/icons/hicolor/scalable/apps/tarvo.svg" || fail "no scalable icon"
desktop-file-validate "$desktop" || fail "desktop-file-validate rejects the menu entry"
appstreamcli validate --no-net "$metainfo" || fail "appstreamcli rejects the metainfo"
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
grep -q "<release version=\"$version\"" "$metainfo" ||
  fail "the metainfo's release is not the program's version"

cpack --config "$build/CPackConfig.cmake" -B "$work/pkg" > "$work/cpack.log" 2>&1 ||
  { cat "$work/cpack.log"; fail "cpack failed"; }
deb=$(ls "$work"/pkg/tarvo_*.deb 2>/dev/null | head -n 1)
[ -n "$deb" ] || fail "no .deb was built"
listing=$(dpkg-deb -c "$deb")
for path in ./usr/bin/tarvo ./usr/share/applications/org.example.tarvo.desktop \
  ./usr/share/metainfo/org.example.tarvo.metainfo.xml ./usr/share/icons/hicolor/scalable/apps/tarvo.svg; do
  grep -q " $path\$" <<< "$listing" || fail "$path is not in the package"
done
for size in "${icons[@]}"; do
  grep -q " ./usr/share/icons/hicolor/$size/apps/tarvo.png\$" <<< "$listing" || fail "no $size icon in the package"
done
depends=$(dpkg-deb -f "$deb" Depends)
for lib in libqt6widgets6 libqt6dbus6 libqt6multimedia6 libzip4; do
  grep -q "$lib" <<< "$depends" || fail "the package does not depend on $lib: $depends"
done
echo "install and package ok: $(basename "$deb")"
