#!/usr/bin/env bash
# Installs the Debian packages Voskantor needs to build, run and test,
# skipping those already present.
set -euo pipefail

packages=(
  cmake g++ make pkg-config
  qtbase5-dev qttools5-dev qttools5-dev-tools qttranslations5-l10n libqt5sql5-sqlite
  liblua5.1-0-dev lua5.1
  libsdl2-mixer-dev ffmpeg sox
  libquazip1-qt5-dev
  xvfb xauth
  librsvg2-bin gzip
  desktop-file-utils appstream libxml2-utils shared-mime-info
  dpkg-dev lintian
)

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$package")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

sudo=""
if [ "$(id -u)" -ne 0 ]; then
  sudo="sudo"
fi
echo "Installing: ${missing[*]}"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
