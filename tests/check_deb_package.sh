#!/usr/bin/env bash
# Builds the Debian package from the build, installs it into a fresh dpkg
# root, checks that its dependencies resolve on this system, and lints it.
# Usage: check_deb_package.sh BUILD_DIR APP_ID "PROGRAMS"
set -euo pipefail
build=$1 app_id=$2 programs=$3

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work/out" >"$work/cpack.log" 2>&1 \
  || { cat "$work/cpack.log"; fail "cpack"; }
deb=$(ls "$work"/out/*.deb)

# dpkg-shlibdeps found the libraries; ffmpeg is run, not linked, so named by hand.
depends=$(dpkg-deb --field "$deb" Depends)
required=(ffmpeg libqt5widgets5 liblua5.1-0 libsdl2-mixer-2.0-0)
# The sanitizer build keeps the system allocator; the others run on mimalloc.
if readelf -d "$build/app/voskantor" | grep -q 'libmimalloc'; then
  required+=(libmimalloc2.0)
fi
for package in "${required[@]}"; do
  [[ ", $depends," == *", $package"[\ ,]* ]] || fail "Depends lacks $package: $depends"
done
apt-get install --simulate "$deb" >"$work/apt.log" 2>&1 || { cat "$work/apt.log"; fail "dependencies do not resolve"; }

# A fresh root knows no other package, so its dependencies are waived there.
root=$work/root
mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates"
touch "$root/var/lib/dpkg/status"
dpkg --root="$root" --force-not-root --force-depends --install "$deb" >"$work/dpkg.log" 2>&1 \
  || { cat "$work/dpkg.log"; fail "dpkg --install"; }
dpkg --root="$root" --listfiles voskantor >"$work/files"
for file in $(printf '/usr/bin/%s\n' $programs) $(printf '/usr/share/man/man1/%s.1.gz\n' $programs) \
            /usr/share/applications/$app_id.desktop \
            /usr/share/metainfo/$app_id.metainfo.xml \
            /usr/share/mime/packages/$app_id.xml \
            /usr/share/icons/hicolor/scalable/apps/$app_id.svg \
            /usr/share/icons/hicolor/48x48/apps/$app_id.png \
            /usr/share/doc/voskantor/copyright \
            /usr/share/doc/voskantor/changelog.gz; do
  grep -qx "$file" "$work/files" || fail "$file not in the package"
  [ -f "$root$file" ] || fail "$file not installed"
done

status=0
lintian --fail-on error,warning "$deb" >"$work/lintian.log" 2>&1 || status=$?
grep -v '^running with root privileges' "$work/lintian.log" || true
[ "$status" -eq 0 ] || fail "lintian"

echo "package checks passed"
