#!/usr/bin/env bash
# Builds the .deb: the program under /usr/lib/cartulon, the launcher (as
# cartulon and cartulon-cli), man pages, bash completion, desktop entry and
# icons. The package lands in build-package/; lintian checks it when present.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
dpkg-query -W -f='${Status}' dpkg-dev 2>/dev/null | grep -q "install ok installed" || {
  sudo=""; [ "$(id -u)" -eq 0 ] || sudo="sudo"; $sudo apt-get install -y -qq dpkg-dev file; }
# Debian's hardening flags (fortify, relro, bindnow), as a Debian build would use.
eval "$(DEB_BUILD_MAINT_OPTIONS=hardening=+all dpkg-buildflags --export=sh)"
launcher=(); command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
cmake -S . -B build-package -DCMAKE_BUILD_TYPE=Release -DCARTULON_SYSTEM_PACKAGE=ON -DCARTULON_TESTS=OFF \
      "${launcher[@]}" >/dev/null
cmake --build build-package -j"$(nproc)"
(cd build-package && cpack)
if command -v lintian >/dev/null; then
  lintian --info build-package/cartulon_*.deb || true
fi
