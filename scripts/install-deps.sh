#!/usr/bin/env bash
# Installs the Debian 12 packages Flatform needs to build, test and run; only what is missing.
set -euo pipefail

PACKAGES=(
  build-essential cmake ninja-build ccache pkg-config
  qt6-base-dev libgl-dev libjpeg62-turbo-dev libpodofo-dev libfontconfig-dev
  libgtest-dev
  python3 sqlite3
  xvfb xauth fonts-dejavu-core
  clang libclang-rt-14-dev
  chromium php-cli
  poppler-utils qpdf
)

missing=()
for p in "${PACKAGES[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

SUDO=""
if [ "$(id -u)" -ne 0 ]; then
  SUDO="sudo"
fi
echo "Installing: ${missing[*]}"
$SUDO apt-get update -qq
DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
