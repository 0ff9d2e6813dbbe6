#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the demo need.
# Silent when everything is already there; uses apt-get otherwise (run as root).
set -euo pipefail

packages=(
    build-essential cmake make pkg-config
    qt6-base-dev qt6-base-dev-tools qt6-5compat-dev qt6-svg-dev qt6-tools-dev qt6-tools-dev-tools
    libqt6svg6 qt6-qpa-plugins libgl-dev
    libbenchmark-dev
    clang libclang-rt-dev
    xvfb xauth
    fonts-wqy-microhei
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$p")
    fi
done

[ ${#missing[@]} -eq 0 ] && exit 0

if [ "$(id -u)" -ne 0 ]; then
    echo "Missing packages: ${missing[*]}" >&2
    echo "Run this script as root, or install them with apt-get." >&2
    exit 1
fi

echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
