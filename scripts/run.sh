#!/usr/bin/env bash
# Installs what is needed, builds Release and runs the main job on the bundled content:
# the editor on a sample when a display exists, otherwise its headless counterpart (load,
# check and simulate every sample as the editor's preview would).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release -DZOL_BUILD_TESTS=OFF >/dev/null
ninja -C build/release
zol=build/release/bin/zol

mapfile -t samples < <(find content/content -name '*.tfxs' | sort)
if [[ -n "${DISPLAY:-}" && -z "${ZOL_HEADLESS:-}" ]]; then
  exec "$zol" "${samples[0]}"
fi

mapfile -t fgds < <(find content/game -name '*.fgd' | sort)
echo "== zol fgd check (${#fgds[@]} class description files under content/game/)"
"$zol" fgd check "${fgds[@]}"
echo "== zol tfxs check (${#samples[@]} definitions under content/content/)"
"$zol" tfxs check "${samples[@]}"
echo "all definitions load as the editor loads them"
for f in "${samples[@]}"; do
  echo "== zol sim $f --seconds 3"
  "$zol" sim "$f" --seconds 3
done
if command -v xvfb-run >/dev/null; then
  echo "== the editor window on ${samples[0]} (offscreen, build/release/zol.png)"
  xvfb-run -a "$zol" --screenshot build/release/zol.png "${samples[0]}" && echo "wrote build/release/zol.png"
fi
