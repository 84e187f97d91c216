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
# The editor opens on a sample (the content also ships the error system, shown in place of
# a missing one).
first_sample=$(find content/content/particles/samples -name '*.tfxs' | sort | head -n 1)
if [[ -n "${DISPLAY:-}" && -z "${ZOL_HEADLESS:-}" ]]; then
  exec "$zol" "$first_sample"
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
  echo "== the editor window on $first_sample (offscreen, build/release/zol.png)"
  xvfb-run -a "$zol" --screenshot build/release/zol.png "$first_sample" && echo "wrote build/release/zol.png"
  echo "== zol render $first_sample --at 1 (build/release/render.png)"
  xvfb-run -a "$zol" render "$first_sample" --at 1 --out build/release/render.png
fi
