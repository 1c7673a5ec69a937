#!/usr/bin/env bash
# Installs every package the project needs to build, test and benchmark, on Debian 12.
set -euo pipefail
packages=(g++ cmake ninja-build pkg-config libboost-dev libboost-thread-dev libpcre3-dev
          libgtest-dev libgmock-dev libbenchmark-dev libxml2-utils
          libcurl4-openssl-dev nlohmann-json3-dev etcd-server
          zsh fish groff-base mandoc)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  sudo=""
  [ "$(id -u)" -ne 0 ] && sudo="sudo"
  $sudo apt-get update
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y "${missing[@]}"
fi
