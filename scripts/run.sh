#!/usr/bin/env bash
# Installs what is needed, builds Release and runs the main job on the bundled content.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release -DZOL_BUILD_TESTS=OFF >/dev/null
ninja -C build/release
zol=build/release/bin/zol

mapfile -t samples < <(find content -name '*.tfxs' | sort)
echo "== zol kv3 check (${#samples[@]} definitions under content/)"
"$zol" kv3 check "${samples[@]}"
echo "all definitions parse"
mapfile -t fgds < <(find content/game -name '*.fgd' | sort)
echo "== zol fgd check (${#fgds[@]} class description files under content/game/)"
"$zol" fgd check "${fgds[@]}"
echo "all class descriptions read without errors"
echo "== zol kv3 fmt ${samples[0]}"
"$zol" kv3 fmt "${samples[0]}"
