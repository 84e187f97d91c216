#!/bin/sh
# The windowed editor, crashed and started again: an edit autosaved by one run, which is
# then killed, comes back in the next run, whose recovery question a scripted answer takes.
set -e
ZOL="$1"
SOURCE="$2"
OUT="$(mktemp -d)"
trap 'kill -9 $PID 2>/dev/null || true; rm -rf "$OUT"' EXIT
export ZOL_SETTINGS_DIR="$OUT/settings"
export LSAN_OPTIONS="suppressions=$SOURCE/tests/zoltool/system_library_leaks.supp${LSAN_OPTIONS:+:$LSAN_OPTIONS}"
export QT_QPA_PLATFORM=offscreen
mkdir -p "$OUT/content/particles"
cp "$SOURCE/content/content/particles/samples/fire.tfxs" "$OUT/content/particles/"
cp "$OUT/content/particles/fire.tfxs" "$OUT/before.tfxs"
ROOTS="--game $SOURCE/content/game --content $OUT/content"

"$ZOL" $ROOTS --do "set m_nMaxParticles 4321" --do autosave "$OUT/content/particles/fire.tfxs" > "$OUT/first.txt" &
PID=$!
for i in $(seq 1 300); do
	grep -q "autosaved 1 of 1" "$OUT/first.txt" && break
	kill -0 $PID 2>/dev/null || { cat "$OUT/first.txt"; echo "the first run ended by itself"; exit 1; }
	sleep 0.2
done
grep -q "autosaved 1 of 1" "$OUT/first.txt" || { cat "$OUT/first.txt"; echo "no autosave"; exit 1; }
kill -9 $PID
wait $PID 2>/dev/null || true

"$ZOL" $ROOTS --answer "Recover Files?=Yes" --do report --do "get m_nMaxParticles" --do quit --answer "Save changes?=No" > "$OUT/second.txt"
cat "$OUT/second.txt"
grep -q "particles.fire.tfxs\" modified=1 new=0" "$OUT/second.txt" || { echo "not recovered under its name, modified"; exit 1; }
grep -q "m_nMaxParticles = 4321" "$OUT/second.txt" || { echo "the edit did not come back"; exit 1; }
cmp "$OUT/before.tfxs" "$OUT/content/particles/fire.tfxs" || { echo "the file itself changed"; exit 1; }
echo "recovered"
