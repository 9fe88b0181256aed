#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the checks need, only those missing.
# Usage: install-deps.sh [tool]   (tool: only what building the tool and the generator needs)
set -euo pipefail

packages=(cmake make g++ pkg-config libcli11-dev nlohmann-json3-dev libcpp-httplib-dev)
if [ "${1:-}" != tool ]; then
    packages+=(
        clang libclang-rt-14-dev libfuzzer-14-dev clang-format libgtest-dev libbenchmark-dev
        libxml2-utils python3 pybind11-dev python3-dev python3-numpy python3-pandas
        python3-pytest python3-dask python3-distributed chromium chromium-driver
        python3-selenium
    )
fi
# The web front end is built with Node.js and npm; Debian's packages only where none is installed
# (a newer Node.js from elsewhere conflicts with Debian's npm package).
if ! command -v npm >/dev/null 2>&1; then
    packages+=(nodejs npm)
fi

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$package")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

echo "Installing missing packages: ${missing[*]}"
if [ "$(id -u)" -ne 0 ]; then
    SUDO=sudo
else
    SUDO=
fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
