#!/usr/bin/env bash
# Installs a package from npm that something is compared with, once:  tools/npm-peer.sh NAME VERSION
# Prints the folder that requires it.
set -euo pipefail
name=${1:?usage: tools/npm-peer.sh NAME VERSION}
version=${2:?usage: tools/npm-peer.sh NAME VERSION}
folder=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)/build/peers/$name

if [[ ! -d $folder/node_modules/$name ]]; then
    echo "Installing $name $version from npm" >&2
    mkdir -p "$folder"
    npm install --silent --no-audit --no-fund --prefix "$folder" "$name@$version" >&2
fi
echo "$folder"
