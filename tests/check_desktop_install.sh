#!/usr/bin/env bash
# Installs the build into a scratch root and checks what a desktop reads from
# it: the launcher entry, the AppStream metadata, the icons and the project
# file type.
# Usage: check_desktop_install.sh BUILD_DIR APP_ID "PROGRAMS" "ICON_SIZES" SCREENSHOT_DIR
set -euo pipefail
build=$1 app_id=$2 programs=$3 icon_sizes=$4 screenshots=$5

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

root=$work/root
DESTDIR=$root cmake --install "$build" --prefix /usr >"$work/install.log" || { cat "$work/install.log"; fail "install"; }
share=$root/usr/share
desktop=$share/applications/$app_id.desktop
metainfo=$share/metainfo/$app_id.metainfo.xml
mime=$share/mime/packages/$app_id.xml

for program in $programs; do
  [ -x "$root/usr/bin/$program" ] || fail "program $program not installed"
done

desktop-file-validate "$desktop" || fail "desktop-file-validate"
# The tree, not the file alone: the launchable must name the installed entry.
appstreamcli validate-tree --no-net --pedantic "$root" >"$work/appstream.log" 2>&1 \
  || { cat "$work/appstream.log"; fail "appstreamcli"; }
grep -q '^ *[EWIP]: ' "$work/appstream.log" && { cat "$work/appstream.log"; fail "appstreamcli reports issues"; }

exec_program=$(sed -n 's/^Exec=\([^ ]*\).*/\1/p' "$desktop")
[ -x "$root/usr/bin/$exec_program" ] || fail "Exec=$exec_program is not an installed program"

# PNG width and height are the big-endian words at bytes 16 and 20.
png_size() { od -An -tu1 -j16 -N8 "$1" | awk '{ print $1*16777216+$2*65536+$3*256+$4 "x" $5*16777216+$6*65536+$7*256+$8 }'; }
icon=$(sed -n 's/^Icon=//p' "$desktop")
for size in $icon_sizes; do
  png=$share/icons/hicolor/${size}x$size/apps/$icon.png
  [ -f "$png" ] || fail "icon $png missing"
  [ "$(png_size "$png")" = "${size}x$size" ] || fail "icon $png is $(png_size "$png")"
done
xmllint --noout "$share/icons/hicolor/scalable/apps/$icon.svg" || fail "scalable icon"

for url in $(sed -n 's|.*<image>\(.*\)</image>.*|\1|p' "$metainfo"); do
  shot=$screenshots/$(basename "$url")
  [ -f "$shot" ] || fail "screenshot $url has no file $shot"
done

# The file type as the desktop's MIME database compiles it: a glob for the
# extension and a magic for files without one.
xmllint --noout "$mime" || fail "xmllint on $mime"
mkdir -p "$work/mime/packages"
cp "$mime" "$work/mime/packages/"
XDG_DATA_DIRS=$work update-mime-database "$work/mime" 2>"$work/mime.log" || { cat "$work/mime.log"; fail "update-mime-database"; }
[ ! -s "$work/mime.log" ] || { cat "$work/mime.log"; fail "update-mime-database complains"; }
grep -q '^50:application/x-voskantor-project:\*\.vosk$' "$work/mime/globs2" || fail "no *.vosk glob"
grep -aq 'application/x-voskantor-project' "$work/mime/magic" || fail "no magic"
grep -q "^MimeType=.*application/x-voskantor-project;" "$desktop" || fail "the launcher does not open projects"

echo "desktop install checks passed"
