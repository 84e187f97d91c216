#!/usr/bin/env bash
# zol upgrade, zol refs and zol convert-cp on a golden tree of definitions: parents and
# children across folders, a switched-off child, a missing child, a cycle, a system that is
# its own child, a file newer than this editor. A dry run changes no byte and no time
# stamp and prints the golden report, the real run writes the golden files, and a second
# run changes nothing; read-only files and bad arguments are refused with their reasons.
# usage: maintenance_cli_test.sh ZOL SOURCE_DIR
set -uo pipefail
zol=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
src=$(cd "$2" && pwd)
data=$src/tests/data/maintenance
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
work=$(mktemp -d "${TMPDIR:-/tmp}/zol_maintenance_$$.XXXXXX")
trap 'chmod -R u+w "$work" 2>/dev/null; rm -rf "$work"' EXIT

# fresh: a new copy of the tree as the content root, the working folder.
fresh() {
  chmod -R u+w "$work" 2>/dev/null
  rm -rf "$work/content"
  mkdir -p "$work/content"
  cp -r "$data/tree/particles" "$work/content/"
  cd "$work/content" || exit 1
}
# snapshot: every file with its bytes' sum and its time stamp.
snapshot() { find particles -type f -printf '%p %T@ ' -exec md5sum {} \; | sort; }
# same_as_golden FILE: the file as the golden copy has it.
same_as_golden() { cmp -s "$1" "$data/expected/$1" || fail "$1 differs from its golden copy: $(diff "$data/expected/$1" "$1" | head -20)"; }
# expect STATUS NAME COMMAND...: runs the command, checks its status, keeps its output in $out.
expect() {
  local status=$1 name=$2
  shift 2
  out=$("$@" 2>"$work/stderr")
  local got=$?
  [ "$got" -eq "$status" ] || fail "$name: exit $got, not $status; output: $out $(cat "$work/stderr")"
}

# --- upgrade -------------------------------------------------------------------------
fresh
files=(particles/fx/explosion.tfxs particles/future/newer.tfxs)
before=$(snapshot)
expect 1 "upgrade dry run" "$zol" upgrade --recursive --dry-run "${files[@]}"
[ "$out" = "$(cat "$data/expected/upgrade_dry_run.txt")" ] || fail "dry run report: $(diff <(echo "$out") "$data/expected/upgrade_dry_run.txt")"
[ "$(snapshot)" = "$before" ] || fail "the dry run changed a file or its time stamp"
expect 1 "upgrade check" "$zol" upgrade --recursive --check "${files[@]}"
[ "$(snapshot)" = "$before" ] || fail "--check changed a file or its time stamp"
expect 3 "check of the old tree alone" "$zol" upgrade --recursive --check particles/fx/explosion.tfxs

expect 1 "upgrade" "$zol" upgrade --recursive "${files[@]}"
[ "$out" = "$(cat "$data/expected/upgrade.txt")" ] || fail "upgrade report: $(diff <(echo "$out") "$data/expected/upgrade.txt")"
for f in particles/fx/explosion.tfxs particles/fx/parts/sparks.tfxs particles/fx/cycle/ember_a.tfxs; do same_as_golden "$f"; done
# Files at the current version, newer ones and the switched-off child stay as they were.
for f in particles/shared/smoke.tfxs particles/future/newer.tfxs particles/fx/parts/debris.tfxs particles/fx/cycle/ember_b.tfxs; do
  cmp -s "$f" "$data/tree/$f" || fail "$f was written though it needed no upgrade"
done

after=$(snapshot)
expect 0 "second upgrade" "$zol" upgrade --recursive particles/fx/explosion.tfxs
grep -q 'upgrade' <<<"$out" && fail "a second run upgraded again: $out"
[ "$(snapshot)" = "$after" ] || fail "a second run changed a file"
expect 0 "check after the upgrade" "$zol" upgrade --recursive --check particles/fx/explosion.tfxs

# --all takes every system of the content root; the switched-off child's turn comes too.
expect 1 "upgrade --all" "$zol" upgrade --all
grep -qx 'particles/fx/parts/debris.tfxs: upgraded from behavior version 2 to 12' <<<"$out" || fail "--all skipped the switched-off child: $out"
grep -q 'particles/future/newer.tfxs: error: ' <<<"$out" || fail "--all didn't refuse the newer file: $out"

# A read-only file: an error line, exit 1, the file untouched, the others done.
fresh
chmod a-w particles/fx/parts/sparks.tfxs
locked=$(md5sum particles/fx/parts/sparks.tfxs)
expect 1 "upgrade with a read-only child" "$zol" upgrade --recursive particles/fx/explosion.tfxs
grep -qx 'particles/fx/parts/sparks.tfxs: error: not upgraded: the file is read only' <<<"$out" || fail "no error line for the read-only file: $out"
[ "$(md5sum particles/fx/parts/sparks.tfxs)" = "$locked" ] || fail "the read-only file changed"
same_as_golden particles/fx/explosion.tfxs
same_as_golden particles/fx/cycle/ember_a.tfxs
expect 1 "dry run with a read-only child" "$zol" upgrade --recursive --dry-run particles/fx/parts/sparks.tfxs
grep -qx 'particles/fx/parts/sparks.tfxs: error: can'"'"'t be upgraded: the file is read only' <<<"$out" || fail "the dry run didn't foresee the refusal: $out"

# Misuse.
expect 2 "no file" "$zol" upgrade
expect 2 "files and --all" "$zol" upgrade --all particles/fx/explosion.tfxs
expect 2 "dry run and check" "$zol" upgrade --dry-run --check particles/fx/explosion.tfxs
expect 2 "unknown option" "$zol" upgrade --fast particles/fx/explosion.tfxs
expect 1 "missing file" "$zol" upgrade particles/none.tfxs
[ "$out" = "particles/none.tfxs: error: no such file" ] || fail "missing file: $out"
echo '{}' > "$work/outside.tfxs"
expect 1 "file outside the content root" "$zol" --content . upgrade "$work/outside.tfxs"
grep -q 'not a particle system definition (\*.tfxs) inside the content root' <<<"$out" || fail "file outside the root: $out"

# --- refs ----------------------------------------------------------------------------
fresh
expect 0 "refs" "$zol" refs particles/fx/explosion.tfxs
[ "$out" = "$(cat "$data/expected/refs.txt")" ] || fail "refs chart: $(diff <(echo "$out") "$data/expected/refs.txt")"
expect 0 "refs --cp" "$zol" refs particles/fx/explosion.tfxs --cp 1
grep -q 'WindStrength' <<<"$out" && fail "--cp 1 shows other columns: $out"
grep -qE '^  row  system +CP1$' <<<"$out" || fail "--cp 1 lacks its column: $out"
expect 0 "refs --json" "$zol" refs --all --json --name windstrength
if command -v python3 > /dev/null; then
  python3 -c 'import json,sys; d=json.load(sys.stdin); assert d["keys"]==["WindStrength"], d["keys"]; assert any(f["severity"]=="warning" for f in d["findings"])' <<<"$out" ||
    fail "refs --json: $out"
fi
expect 2 "refs --cp and --name" "$zol" refs --all --cp 1 --name x
expect 2 "refs --cp out of range" "$zol" refs --all --cp 64
expect 1 "refs of a missing file" "$zol" refs particles/none.tfxs

# --- convert-cp ----------------------------------------------------------------------
fresh
before=$(snapshot)
expect 0 "convert dry run" "$zol" convert-cp --cp 3 --name Lean --dry-run particles/convert/torch.tfxs
[ "$out" = "$(cat "$data/expected/convert_dry_run.txt")" ] || fail "convert dry run: $(diff <(echo "$out") "$data/expected/convert_dry_run.txt")"
[ "$(snapshot)" = "$before" ] || fail "the conversion's dry run changed a file"
# An added float read can't share the transform variable: refused, nothing written.
expect 1 "convert with a float read" "$zol" convert-cp --cp 3 --name Lean particles/convert/lantern.tfxs
grep -qx 'particles/convert/lantern.tfxs: error: build: Initializers #2 Init Float: Access type cannot be unified! CP index 3 is type PVAL_FLOAT, prior type was PVAL_VEC3' <<<"$out" ||
  fail "no unification error: $out"
grep -qx 'particles/convert/lantern.tfxs: error: not applied: the plan lists errors; nothing was changed' <<<"$out" || fail "applied despite errors: $out"
[ "$(snapshot)" = "$before" ] || fail "a refused conversion changed a file"
expect 1 "convert a write" "$zol" convert-cp --cp 3 --name Lean particles/convert/marker.tfxs
grep -q "Don't know how to convert a write yet" <<<"$out" || fail "no write message: $out"
expect 0 "convert" "$zol" convert-cp --cp 3 --name Lean particles/convert/torch.tfxs
[ "$out" = "$(cat "$data/expected/convert.txt")" ] || fail "conversion: $(diff <(echo "$out") "$data/expected/convert.txt")"
same_as_golden particles/convert/torch.tfxs
same_as_golden particles/convert/flame.tfxs
after=$(snapshot)
expect 0 "convert again" "$zol" convert-cp --cp 3 --name Lean particles/convert/torch.tfxs
[ "$(snapshot)" = "$after" ] || fail "a second conversion changed a file"
# The converted tree is still a tree zol tfxs check takes.
expect 0 "check the converted torch" "$zol" tfxs check particles/convert/torch.tfxs
expect 2 "convert without --name" "$zol" convert-cp --cp 3 particles/convert/torch.tfxs
expect 2 "convert with a bad type" "$zol" convert-cp --cp 3 --name X --type PVAL_NOTHING particles/convert/torch.tfxs
expect 2 "convert two files" "$zol" convert-cp --cp 3 --name X particles/convert/torch.tfxs particles/convert/flame.tfxs

[ "$failures" -eq 0 ] && echo "maintenance commands: all passed"
exit $((failures > 0))
