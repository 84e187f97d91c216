#!/usr/bin/env bash
# zol kv3 on the shipped content and on broken input, as an artist would run it.
# usage: kv3_cli_test.sh ZOL SOURCE_DIR
# No pipefail: `echo "$out" | grep -q` would fail whenever grep stops reading early.
set -u
zol=$1
src=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

mapfile -t samples < <(find "$src/content" -name '*.tfxs' | sort)
[ ${#samples[@]} -gt 0 ] || fail "no sample definitions under content/"

for f in "${samples[@]}"; do
  out=$("$zol" kv3 check "$f" 2>&1) || fail "check refused $f: $out"
  [ -z "$out" ] || fail "check printed something for a good file $f: $out"
  # Canonical form parses back and is a fixed point.
  "$zol" kv3 fmt "$f" >"$work/once.tfxs" 2>"$work/err" || fail "fmt refused $f: $(cat "$work/err")"
  "$zol" kv3 fmt "$work/once.tfxs" >"$work/twice.tfxs" 2>"$work/err" || fail "fmt refused its own output for $f: $(cat "$work/err")"
  cmp -s "$work/once.tfxs" "$work/twice.tfxs" || fail "fmt is not stable for $f"
done

# Every broken fixture is refused with FILE:line:col: and status 1, never a crash.
for f in "$src"/tests/data/kv3/broken/*; do
  out=$("$zol" kv3 check "$f" 2>&1)
  status=$?
  [ $status -eq 1 ] || fail "check exited $status on $f: $out"
  echo "$out" | grep -qE "^$f:[0-9]+:[0-9]+: .+" || fail "no FILE:line:col: message for $f: $out"
  out=$("$zol" kv3 fmt "$f" 2>&1 >/dev/null)
  [ $? -eq 1 ] || fail "fmt did not exit 1 on $f"
done

# A good and a bad file together: the good one is still checked, status is 1.
out=$("$zol" kv3 check "${samples[0]}" "$src/tests/data/kv3/broken/unterminated_table.kv3" 2>&1)
[ $? -eq 1 ] || fail "mixed check did not exit 1"
[ "$(echo "$out" | wc -l)" -eq 1 ] || fail "mixed check printed more than the bad file: $out"

"$zol" kv3 check "$work/does-not-exist.tfxs" >/dev/null 2>&1
[ $? -eq 1 ] || fail "a missing file did not exit 1"
"$zol" --help | grep -q "kv3 fmt" || fail "--help does not list kv3"

echo "$((failures == 0 ? 1 : 0)) passed, $failures failed"
[ $failures -eq 0 ]
