#!/usr/bin/env bash
# Retakes the README's picture of the main window from the shipped content, with a fresh
# settings directory so that no saved layout or recent file of this machine shows.
set -euo pipefail
cd "$(dirname "$0")/.."
zol="${1:-build/test/bin/zol}"
settings="$(mktemp -d)"
trap 'rm -rf "$settings"' EXIT
ASAN_OPTIONS=detect_leaks=0 XDG_CONFIG_HOME="$settings" xvfb-run -a -s "-screen 0 1920x1080x24" "$zol" \
  --screenshot docs/images/zol-main-window.png --do "select Operator 2" \
  content/content/particles/samples/embers.tfxs
echo "wrote docs/images/zol-main-window.png"
