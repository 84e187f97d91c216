#!/bin/sh
# The editor starts under a virtual display, opens a shipped sample, runs its frames and
# writes a picture of its main window.
set -e
ZOL="$1"
SOURCE="$2"
OUT="$(mktemp -d)"
trap 'rm -rf "$OUT"' EXIT
# The run keeps its settings to itself, and the system libraries' own leaks are not ours.
export ZOL_SETTINGS_DIR="$OUT"
export LSAN_OPTIONS="suppressions=$SOURCE/tests/zoltool/system_library_leaks.supp${LSAN_OPTIONS:+:$LSAN_OPTIONS}"
# Mesa unloads its software driver when the display closes at exit, and the leak checker
# then reports the driver's own leftovers without a name to suppress them by; kept loaded,
# they stay reachable.
DRIVER=/usr/lib/x86_64-linux-gnu/dri/swrast_dri.so
PRELOAD=""
[ -f "$DRIVER" ] && PRELOAD="LD_PRELOAD=$DRIVER"
xvfb-run -a env $PRELOAD "$ZOL" --screenshot "$OUT/shot.png" "$SOURCE/content/content/particles/samples/fire.tfxs"
test -f "$OUT/shot.png" || { echo "no screenshot written"; exit 1; }
SIZE=$(wc -c < "$OUT/shot.png")
# A blank or tiny image means the window never painted.
test "$SIZE" -gt 10000 || { echo "screenshot is only $SIZE bytes"; exit 1; }
echo "screenshot: $SIZE bytes"
