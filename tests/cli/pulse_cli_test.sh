#!/usr/bin/env bash
# zol pulse check|disasm|run on every shipped graph and on broken input. The expected
# output of each sample is tests/pulse_runtime/expected/NAME.out (the run's command on its
# first line); each broken graph's messages are in NAME.err.
# usage: pulse_cli_test.sh ZOL SOURCE_DIR
set -uo pipefail
zol=$1
src=$2
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
cd "$src" || exit 1

expected_dir=tests/pulse_runtime/expected
mapfile -t runs < <(find "$expected_dir" -name '*.out' | sort)
[ ${#runs[@]} -ge 9 ] || fail "expected outputs are missing"
for expected in "${runs[@]}"; do
  read -r -a command < <(head -1 "$expected" | sed 's/^# zol pulse //')
  want_status=0
  grep -qx '# exit 1' "$expected" && want_status=1
  out=$("$zol" pulse "${command[@]}" 2>/dev/null)
  status=$?
  [ $status -eq $want_status ] || fail "zol pulse ${command[*]} exited $status, not $want_status"
  [ "$out" = "$(grep -v '^# ' "$expected")" ] || fail "zol pulse ${command[*]} printed:
$out"
done

mapfile -t samples < <(find content/content/pulse/samples -name '*.tpulsec' | sort)
for f in "${samples[@]}"; do
  "$zol" pulse check "$f" || fail "check refused $f"
  out=$("$zol" pulse disasm "$f") || fail "disasm refused $f"
  [ "${out%%$'\n'*}" = '== PulseGraphDef ==' ] || fail "disasm of $f has no header"
  chunks=$(grep -c '^\[ Chunk' <<< "$out")
  grep -q "^$chunks Chunks:$" <<< "$out" || fail "disasm of $f doesn't list its $chunks chunks"
done
out=$("$zol" pulse disasm content/content/pulse/samples/arithmetic.tpulsec)
grep -q 'C0:I0  {F=10        ,V=-1        } GetInlineConst R0 <- C0 (PVAL_INT 7)' <<< "$out" || fail "arithmetic dump: $out"
grep -q 'Mul R2 <- R0 \* R1' <<< "$out" || fail "arithmetic dump has no Mul: $out"

for expected in "$expected_dir"/*.err; do
  f=$(head -1 "$expected" | sed 's/^# zol pulse check //')
  out=$("$zol" pulse check "$f" 2>&1)
  [ $? -eq 1 ] || fail "check accepted broken $f"
  [ "$out" = "$(grep -v '^# ' "$expected" | sed "s#^#$f: #")" ] || fail "check of $f printed:
$out"
  "$zol" pulse run "$f" >/dev/null 2>&1
  [ $? -eq 1 ] || fail "run did not refuse $f"
  "$zol" pulse disasm "$f" >/dev/null 2>&1
  [ $? -eq 1 ] || fail "disasm did not refuse $f"
done

# Bad command lines: a clear message and status 1 (bad input) or 2 (bad options).
hello=content/content/pulse/samples/hello.tpulsec
out=$("$zol" pulse run "$hello" --method Nope 2>&1)
[ $? -eq 1 ] && grep -q "no method 'Nope' (methods: Main)" <<< "$out" || fail "unknown method: $out"
out=$("$zol" pulse run "$hello" --event Boom 2>&1)
[ $? -eq 1 ] && grep -q "no event 'Boom' (events: none)" <<< "$out" || fail "unknown event: $out"
out=$("$zol" pulse run content/content/pulse/samples/event.tpulsec --event OnDamage --arg amount=lots 2>&1)
[ $? -eq 1 ] && grep -q "'lots' is no PVAL_INT" <<< "$out" || fail "bad argument: $out"
out=$("$zol" pulse run "$hello" --arg missing=1 2>&1)
[ $? -eq 1 ] && grep -q "has no argument 'missing'" <<< "$out" || fail "unknown argument: $out"
out=$("$zol" pulse run content/content/pulse/samples/wait.tpulsec --seconds 0.5 2>&1 >/dev/null)
grep -q "1 cursor(s) still waiting at 0.50 s" <<< "$out" || fail "a cut-short run doesn't say what still waits: $out"
out=$("$zol" pulse run content/content/pulse/nothere.tpulsec 2>&1)
[ $? -eq 1 ] && grep -q "No such file or directory" <<< "$out" || fail "missing file: $out"
out=$("$zol" pulse check /dev/zero 2>&1)
[ $? -eq 1 ] && grep -q "not a regular file" <<< "$out" || fail "a device: $out"
"$zol" pulse run "$hello" --seconds -1 >/dev/null 2>&1
[ $? -eq 2 ] || fail "--seconds -1 was not refused"
"$zol" pulse run "$hello" --dt >/dev/null 2>&1
[ $? -eq 2 ] || fail "--dt without a value was not refused"
"$zol" pulse frobnicate "$hello" >/dev/null 2>&1
[ $? -eq 2 ] || fail "an unknown subcommand was not refused"

[ $failures -eq 0 ] && echo "all pulse cli checks passed"
exit $((failures > 0))
