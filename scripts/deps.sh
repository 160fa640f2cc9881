#!/usr/bin/env bash
# Installs what building and testing Cartulon needs on Debian 12, and nothing
# when it is all there already. Needs root (or sudo) for apt-get.
set -euo pipefail
pkgs=(cmake g++ make pkg-config libgtest-dev qt6-base-dev qt6-base-dev-tools libgl-dev
      libarchive-dev
      xvfb xauth xorriso genisoimage dosfstools exfatprogs ntfs-3g udftools mtools fonts-dejavu-core xdg-utils man-db
      qt6-translations-l10n)
missing=()
for p in "${pkgs[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if ((${#missing[@]})); then
  sudo=""; [ "$(id -u)" -eq 0 ] || sudo="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $sudo apt-get update -qq
  $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
