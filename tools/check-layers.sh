#!/usr/bin/env bash
# The law of who may include whom: models know the interfaces, never an adapter; arrows between
# the subsystems point one way.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

declare -A allowed=(
    [platform]='platform'
    [playlist]='playlist platform'
    [player]='player playlist platform'
    [download]='download platform'
    [finder]='finder download playlist platform'
    [recording]='recording player playlist platform'
    [display]='display player playlist platform'
    [ui]='ui'
)
broken=0
for folder in "${!allowed[@]}"; do
    [[ -d $folder ]] || continue
    while IFS=: read -r file line include; do
        target=$(sed -E 's/.*"([^"]+)".*/\1/' <<<"$include")
        top=${target%%/*}
        if [[ " ${allowed[$folder]} " != *" $top "* ]]; then
            echo "$file:$line: $folder may not include $target"
            broken=1
        elif [[ $target == platform/*/* && $file != platform/*/* ]]; then
            echo "$file:$line: only the composition root picks an adapter ($target)"
            broken=1
        fi
    done < <(grep -rnE '^#include "[a-z]+/' --include='*.h' --include='*.cpp' "$folder" || true)
done
exit $broken
