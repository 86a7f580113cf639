#!/usr/bin/env bash
# Installs the Debian packages Voskantor needs to build, run and test,
# skipping those already present, and the Russian UTF-8 locale the
# interface tests also run under. "install-deps.sh fuzz" adds clang and its
# libFuzzer runtime for tools/fuzz.sh.
set -euo pipefail

packages=(
  cmake g++ make pkg-config
  qtbase5-dev qttools5-dev qttools5-dev-tools qttranslations5-l10n libqt5sql5-sqlite
  liblua5.1-0-dev lua5.1
  libsdl2-mixer-dev ffmpeg
  python3 locales
  libquazip1-qt5-dev libmimalloc-dev
  xvfb xauth
  librsvg2-bin gzip
  desktop-file-utils appstream libxml2-utils shared-mime-info
  dpkg-dev lintian
)
if [ "${1:-}" = fuzz ]; then
  packages+=(clang libclang-rt-14-dev)
fi

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$package")
  fi
done

sudo=""
if [ "$(id -u)" -ne 0 ]; then
  sudo="sudo"
fi

if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

if ! locale -a | grep -qix 'ru_RU\.utf-\?8'; then
  echo "Generating the ru_RU.UTF-8 locale"
  $sudo sed -i 's/^# *\(ru_RU\.UTF-8 UTF-8\)/\1/' /etc/locale.gen
  grep -qx 'ru_RU.UTF-8 UTF-8' /etc/locale.gen || echo 'ru_RU.UTF-8 UTF-8' | $sudo tee -a /etc/locale.gen >/dev/null
  $sudo locale-gen >/dev/null
fi
