#!/usr/bin/env bash
# Installs the Debian 12 packages that building, testing and benchmarking VNFoundation need.
# Idempotent: packages already present are left alone, and apt is only asked when one is missing.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config clang-format python3
  libicu-dev libcurl4-openssl-dev libyajl-dev libminizip-dev zlib1g-dev libssl-dev uuid-dev
  libasio-dev libplist-dev media-types libcpp-httplib-dev openssl nghttp2-server
  libgtest-dev libgmock-dev libbenchmark-dev libgeos-dev
)

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$package")
  fi
done

if [ "${#missing[@]}" -eq 0 ]; then
  exit 0
fi

sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
  sudo_cmd=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
