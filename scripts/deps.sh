#!/usr/bin/env bash
# Installs the Debian 12 packages the build, the tests and the tools need. Packages already
# present are skipped; apt-get runs only when something is missing. With --bench it also
# installs hledger, the comparison point of bench/run for the agenda and the forecast (not needed
# by the build or the tests). The chart module's CMake files need the OpenGL module's, which
# Debian ships in libqt6opengl6-dev without making qt6-charts-dev depend on it.
set -euo pipefail
packages=(
  cmake ninja-build g++ clang libclang-rt-14-dev pkg-config
  libsqlite3-dev sqlite3 libpq-dev postgresql
  libfmt-dev nlohmann-json3-dev libcli11-dev
  libgtest-dev libgmock-dev libbenchmark-dev libmuparser-dev
  qt6-base-dev qt6-charts-dev libqt6opengl6-dev xvfb xauth
  python3-icalendar
)
if [ "${1:-}" = "--bench" ]; then packages+=(hledger); fi
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if ((${#missing[@]})); then
  echo "Installing: ${missing[*]}"
  sudo_cmd=""
  [ "$(id -u)" -eq 0 ] || sudo_cmd="sudo"
  $sudo_cmd apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
