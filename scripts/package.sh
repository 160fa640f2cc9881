#!/usr/bin/env bash
# Builds the .deb: the program under /opt/cartulon, the launcher, the desktop
# entry and icons. The package lands in build-package/.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
dpkg-query -W -f='${Status}' dpkg-dev 2>/dev/null | grep -q "install ok installed" || {
  sudo=""; [ "$(id -u)" -eq 0 ] || sudo="sudo"; $sudo apt-get install -y -qq dpkg-dev file; }
cmake -S . -B build-package -DCMAKE_BUILD_TYPE=Release -DCARTULON_SYSTEM_PACKAGE=ON -DCARTULON_TESTS=OFF >/dev/null
cmake --build build-package -j"$(nproc)"
cd build-package && cpack
