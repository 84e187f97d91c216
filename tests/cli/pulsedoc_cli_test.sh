#!/usr/bin/env bash
# zol pulse check|compile|run|fmt on every shipped Pulse document (*.tpulse) and on the
# broken ones. Each document's run and its logged lines are in tests/pulsedoc/expected/
# NAME.out (the command on its first line); each broken document's messages in NAME.err.
# usage: pulsedoc_cli_test.sh ZOL SOURCE_DIR
set -uo pipefail
zol=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
src=$(cd "$2" && pwd)
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
cd "$src" || exit 1
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

expected_dir=tests/pulsedoc/expected
mapfile -t runs < <(find "$expected_dir" -name '*.out' | sort)
[ ${#runs[@]} -ge 4 ] || fail "expected outputs are missing"
for expected in "${runs[@]}"; do
  read -r -a command < <(head -1 "$expected" | sed 's/^# zol pulse //')
  want=$(grep -v '^# ' "$expected")
  doc=${command[1]}
  "$zol" pulse check "$doc" || fail "check refused $doc"
  out=$("$zol" pulse "${command[@]}" 2>/dev/null)
  [ $? -eq 0 ] || fail "zol pulse ${command[*]} failed"
  [ "$out" = "$want" ] || fail "zol pulse ${command[*]} printed:
$out"
  # The compiled definition is a graph of its own: it checks, and runs the same.
  name=$(basename "$doc" .tpulse)
  "$zol" pulse compile "$doc" -o "$tmp/$name.tpulsec" || fail "compile refused $doc"
  "$zol" pulse check "$tmp/$name.tpulsec" || fail "check refused the compiled $doc"
  command[1]=$tmp/$name.tpulsec
  out=$("$zol" pulse "${command[@]}" 2>/dev/null)
  [ "$out" = "$want" ] || fail "the compiled $doc printed:
$out"
  # Without -o the definition goes to stdout, the same text.
  [ "$("$zol" pulse compile "$doc")" = "$(cat "$tmp/$name.tpulsec")" ] || fail "compile to stdout differs from -o for $doc"
  # An unchanged document formats to its own bytes.
  "$zol" pulse fmt "$doc" > "$tmp/$name.tpulse" || fail "fmt refused $doc"
  cmp -s "$doc" "$tmp/$name.tpulse" || fail "fmt changed $doc: $(diff "$doc" "$tmp/$name.tpulse" | head -5)"
done
mapfile -t docs < <(find content/content/pulse/documents -maxdepth 1 -name '*.tpulse' | sort)
for doc in "${docs[@]}"; do
  grep -q "^# zol pulse run $doc" "$expected_dir"/*.out || fail "$doc has no expected run"
done

mapfile -t broken < <(find "$expected_dir" -name '*.err' | sort)
[ ${#broken[@]} -ge 5 ] || fail "expected messages are missing"
for expected in "${broken[@]}"; do
  doc=$(head -1 "$expected" | sed 's/^# zol pulse check //')
  out=$("$zol" pulse check "$doc" 2>&1)
  [ $? -eq 1 ] || fail "check accepted broken $doc"
  [ "$out" = "$(grep -v '^# ' "$expected" | sed "s#^#$doc: #")" ] || fail "check of $doc printed:
$out"
  "$zol" pulse run "$doc" >/dev/null 2>&1
  [ $? -eq 1 ] || fail "run did not refuse $doc"
  rm -f "$tmp/broken.tpulsec"
  "$zol" pulse compile "$doc" -o "$tmp/broken.tpulsec" >/dev/null 2>&1
  [ $? -eq 1 ] || fail "compile did not refuse $doc"
  [ -e "$tmp/broken.tpulsec" ] && fail "compile of broken $doc wrote a file"
done
mapfile -t broken_docs < <(find content/content/pulse/documents/broken -name '*.tpulse')
[ ${#broken_docs[@]} -eq ${#broken[@]} ] || fail "a broken document has no expected messages"

# Bad command lines and files: a clear message, status 1 (bad input) or 2 (bad options).
hello=content/content/pulse/documents/hello.tpulse
out=$("$zol" pulse run "$hello" --method Nope 2>&1)
[ $? -eq 1 ] && grep -q "no method 'Nope' (methods: Main)" <<< "$out" || fail "unknown method: $out"
out=$("$zol" pulse compile content/content/pulse/documents/nothere.tpulse 2>&1)
[ $? -eq 1 ] && grep -q "No such file or directory" <<< "$out" || fail "missing document: $out"
out=$("$zol" pulse fmt content/content/pulse/samples/hello.tpulsec 2>&1)
[ $? -eq 1 ] && grep -q "not a Pulse document" <<< "$out" || fail "fmt of a compiled graph: $out"
printf 'not kv3 at all {' > "$tmp/garbage.tpulse"
out=$("$zol" pulse check "$tmp/garbage.tpulse" 2>&1)
[ $? -eq 1 ] && grep -q "^$tmp/garbage.tpulse: " <<< "$out" || fail "garbage: $out"
"$zol" pulse compile "$hello" "$hello" >/dev/null 2>&1
[ $? -eq 2 ] || fail "compile of two documents was not refused"
"$zol" pulse compile "$hello" -o >/dev/null 2>&1
[ $? -eq 2 ] || fail "-o without a file was not refused"

# A document outside any game tree, checked from outside one, takes the game's events
# from --game.
cp content/content/pulse/documents/dice_game.tpulse "$tmp/dice_game.tpulse"
out=$(cd "$tmp" && "$zol" pulse check dice_game.tpulse 2>&1)
[ $? -eq 1 ] && grep -q "node 1: Node 'OnRoll' is no longer present" <<< "$out" || fail "events without a game root: $out"
out=$(cd "$tmp" && "$zol" pulse run dice_game.tpulse --game "$src/content/game" --event OnRoll --arg value=6 2>&1)
[ "$out" = "A six: ten points
score 10, lives 2" ] || fail "events with --game: $out"

[ $failures -eq 0 ] && echo "all pulse document cli checks passed"
exit $((failures > 0))
