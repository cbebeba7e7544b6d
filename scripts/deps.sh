#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs the Debian packages Veltano needs to build, test and run, if any is missing.
set -euo pipefail
pkgs=(cmake ninja-build g++ pkg-config qt6-base-dev qt6-base-dev-tools qt6-charts-dev qt6-translations-l10n libqt6opengl6-dev
      libsqlcipher-dev sqlcipher zlib1g-dev libsane-dev libsane1 libbenchmark-dev
      fonts-dejavu-core ca-certificates xvfb xauth)
missing=()
for p in "${pkgs[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  sudo_cmd=""
  [ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $sudo_cmd apt-get update -qq
  $sudo_cmd apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
