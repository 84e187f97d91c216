#!/usr/bin/env bash
# zol fgd on the shipped class descriptions and on broken ones.
# usage: fgd_cli_test.sh ZOL SOURCE_DIR
# No pipefail: `echo "$out" | grep -q` would fail whenever grep stops reading early.
set -u
zol=$1
src=$2
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

mapfile -t samples < <(find "$src/content/game" -name '*.fgd' | sort)
[ ${#samples[@]} -gt 0 ] || fail "no FGD files under content/game"
for f in "${samples[@]}"; do
  out=$("$zol" fgd check "$f" 2>&1) || fail "check refused $f: $out"
  [ -z "$out" ] || fail "check printed something for a good file $f: $out"
done

out=$("$zol" fgd dump "$src/content/game/zol/zol_particles.fgd") || fail "dump failed"
echo "$out" | grep -q '^@PointClass ZolEmitContinuously' || fail "dump lacks the emitter class: $out"
echo "$out" | grep -q 'm_flEmitRate (float) = "100"' || fail "dump lacks the emit rate default: $out"

# Broken files: status 1 and FILE:(line,col): message.
for f in "$src"/tests/data/fgd/*.fgd; do
  out=$("$zol" fgd check "$f" 2>&1)
  [ $? -eq 1 ] || fail "check did not exit 1 on $f: $out"
  echo "$out" | grep -qE "^.*$(basename "$f"):\([0-9]+,[0-9]+\): .+" || fail "no FILE:(line,col): message for $f: $out"
done

# A file named by a relative path is reported under that path, as typed.
out=$(cd "$src" && "$zol" fgd check tests/data/fgd/flags_long_name.fgd 2>&1)
echo "$out" | grep -qE '^tests/data/fgd/flags_long_name\.fgd:\([0-9]+,[0-9]+\): ' || fail "relative path not printed as typed: $out"

# A bad class is reported and the next still loads.
out=$("$zol" fgd dump "$src/tests/data/fgd/bad_base_then_good.fgd" 2>/dev/null)
echo "$out" | grep -q 'StillLoads' || fail "the class after a bad one did not load: $out"

[ $failures -eq 0 ] && echo "all fgd cli checks passed"
exit $((failures > 0))
