#!/usr/bin/env bash
# zol sim on every shipped sample and on broken input.
# usage: sim_cli_test.sh ZOL SOURCE_DIR
set -uo pipefail
zol=$1
src=$2
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

mapfile -t samples < <(find "$src/content/content/particles/samples" -name '*.tfxs' | sort)
[ ${#samples[@]} -gt 0 ] || fail "no samples under content/content/particles/samples"
for f in "${samples[@]}"; do
  out=$("$zol" sim "$f" --seconds 6 2>&1) || fail "sim refused $f: $out"
  lines=$(echo "$out" | grep -c '^t=')
  [ "$lines" -eq 6 ] || fail "expected one line per second for $f, got $lines: $out"
  # Particles appear (counting children, for a system made only of children).
  peak=$(echo "$out" | sed -n 's/^summary: .*, with children \([0-9]*\), .*/\1/p')
  [ "${peak:-0}" -gt 0 ] || fail "no particles ever appeared in $f: $out"
  echo "$out" | grep -q '^summary: 6.00 s at 60 fps' || fail "no summary for $f: $out"
done

# Bursts live and die: the sparks burst is gone after its longest life.
out=$("$zol" sim "$src/content/content/particles/samples/sparks.tfxs" --seconds 0.3)
echo "$out" | grep -Eq '^t=0.30 particles (4[0-9]|5[0-9]|60) ' || fail "the sparks burst (40 to 60) is not alive at 0.3 s: $out"
out=$("$zol" sim "$src/content/content/particles/samples/sparks.tfxs" --seconds 3)
echo "$out" | grep -q '^t=3.00 particles 0 .*bounds none' || fail "sparks not dead after three seconds: $out"
echo "$out" | grep -q 'finished$' || fail "sparks not reported finished: $out"

# The same seed prints the same lines; another seed moves particles elsewhere.
a=$("$zol" sim "$src/content/content/particles/samples/fire.tfxs" --seconds 2 --seed 7)
b=$("$zol" sim "$src/content/content/particles/samples/fire.tfxs" --seconds 2 --seed 7)
c=$("$zol" sim "$src/content/content/particles/samples/fire.tfxs" --seconds 2 --seed 8)
[ "$a" = "$b" ] || fail "same seed, different output"
[ "$a" != "$c" ] || fail "different seeds, same output"

# A moved control point moves the bounds.
out=$("$zol" sim "$src/content/content/particles/samples/fire.tfxs" --seconds 1 --cp 0=1000,0,0)
echo "$out" | grep -qE '^t=1.00 .*bounds \(9[0-9][0-9]\.[0-9]' || fail "control point 0 did not move the fire: $out"

# Bad input: a clear message and status 1 (or 2 for bad options).
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
printf 'not a definition' > "$tmp/bad.tfxs"
out=$("$zol" sim "$tmp/bad.tfxs" 2>&1)
[ $? -eq 1 ] || fail "a broken file did not exit 1: $out"
[ -n "$out" ] || fail "a broken file printed no message"
out=$("$zol" sim "$tmp/missing.tfxs" 2>&1)
[ $? -eq 1 ] || fail "a missing file did not exit 1: $out"
mkdir -p "$tmp/particles"
printf -- '--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n{ _class = "CParticleSystemDefinition" m_Children = [ { m_ChildRef = "particles/gone.tfxs" } ] }\n' > "$tmp/particles/parent.tfxs"
out=$("$zol" sim "$tmp/particles/parent.tfxs" 2>&1)
[ $? -eq 1 ] || fail "a missing child did not exit 1: $out"
echo "$out" | grep -q "particles/gone.tfxs" || fail "the missing child is not named: $out"
"$zol" sim "${samples[0]}" --fps 0 >/dev/null 2>&1
[ $? -eq 2 ] || fail "--fps 0 was not refused"
"$zol" sim "${samples[0]}" --cp 99=1,2,3 >/dev/null 2>&1
[ $? -eq 2 ] || fail "--cp 99 was not refused"

[ $failures -eq 0 ] && echo "all sim cli checks passed"
exit $((failures > 0))
