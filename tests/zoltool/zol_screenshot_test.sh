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

# A function selected for the picture: the Properties dock shows its fields.
OUTPUT=$(xvfb-run -a env $PRELOAD "$ZOL" --screenshot "$OUT/selected.png" --do "select Emitter 0" "$SOURCE/content/content/particles/samples/fire.tfxs" 2>&1)
case "$OUTPUT" in
*"select Emitter 0: selected Emitter 0 (Continuous Emitter)"*) ;;
*) echo "the emitter was not selected: $OUTPUT"; exit 1 ;;
esac
test "$(wc -c < "$OUT/selected.png")" -gt 10000 || { echo "the picture with a selection is blank"; exit 1; }
# An element the definition doesn't have is refused, and the run fails.
set +e
OUTPUT=$(xvfb-run -a env $PRELOAD "$ZOL" --screenshot "$OUT/none.png" --do "select Emitter 7" "$SOURCE/content/content/particles/samples/fire.tfxs" 2>&1)
CODE=$?
set -e
test "$CODE" -eq 3 || { echo "a missing element gave exit status $CODE"; exit 1; }
case "$OUTPUT" in
*"select Emitter 7\": no such element"*) ;;
*) echo "no message for the missing element: $OUTPUT"; exit 1 ;;
esac
# A control point selected for the picture carries the gizmo; a number past the last point
# is refused.
OUTPUT=$(xvfb-run -a env $PRELOAD "$ZOL" --screenshot "$OUT/cp.png" --do "select cp 0" "$SOURCE/content/content/particles/samples/beacon.tfxs" 2>&1)
case "$OUTPUT" in
*"select cp 0: selected control point 0"*) ;;
*) echo "the control point was not selected: $OUTPUT"; exit 1 ;;
esac
set +e
OUTPUT=$(xvfb-run -a env $PRELOAD "$ZOL" --screenshot "$OUT/cpnone.png" --do "select cp 64" "$SOURCE/content/content/particles/samples/beacon.tfxs" 2>&1)
CODE=$?
set -e
test "$CODE" -eq 3 || { echo "a control point past the last gave exit status $CODE"; exit 1; }
case "$OUTPUT" in
*"a control point is a number from 0 to 63"*) ;;
*) echo "no message for the control point past the last: $OUTPUT"; exit 1 ;;
esac
echo "selected screenshot: ok"
# A file outside the content tree asks whether to open it; a batch run answers with the
# default and says so, instead of waiting for a user who isn't there.
mkdir -p "$OUT/outside"
cp "$SOURCE/content/content/particles/samples/smoke.tfxs" "$OUT/outside/"
timeout 300 xvfb-run -a env $PRELOAD "$ZOL" --screenshot "$OUT/outside.png" "$OUT/outside/smoke.tfxs" > "$OUT/outside.log" 2>&1 || { cat "$OUT/outside.log"; echo "the run outside the content tree failed"; exit 1; }
grep -q "answered Yes without a user interface" "$OUT/outside.log" || { cat "$OUT/outside.log"; echo "the question wasn't answered and logged"; exit 1; }
test -f "$OUT/outside.png" || { echo "no screenshot of the file outside the content tree"; exit 1; }
echo "outside the content tree: answered and written"
