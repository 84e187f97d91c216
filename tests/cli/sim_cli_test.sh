#!/usr/bin/env bash
# zol sim on every shipped sample and on broken input.
# usage: sim_cli_test.sh ZOL SOURCE_DIR
# No pipefail: `echo "$out" | grep -q` would fail whenever grep stops reading early.
set -u
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
echo "$out" | grep -qE '^t=1.00 .*bounds \(9[0-9][0-9](\.[0-9]+)? ' || fail "control point 0 did not move the fire: $out"

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

# Cameras: an emission rate driven by the closest camera's distance.
header='--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---'
printf '%s\n{ _class = "CParticleSystemDefinition" m_flConstantLifespan = 100.0 m_nMaxParticles = 5000 m_Emitters = [ { _class = "C_OP_ContinuousEmitter" m_flEmitRate = { m_nType = "PF_TYPE_CLOSEST_CAMERA_DISTANCE" m_flNoCameraFallback = 20.0 } } ] }\n' "$header" > "$tmp/camera.tfxs"
peak() { echo "$1" | sed -n 's/^summary: .*, peak particles \([0-9]*\),.*/\1/p'; }
out=$("$zol" sim "$tmp/camera.tfxs" --seconds 1 2>&1) || fail "camera definition refused: $out"
[ "$(peak "$out")" -ge 18 ] && [ "$(peak "$out")" -le 22 ] || fail "no camera should emit at the fallback rate 20: $out"
out=$("$zol" sim "$tmp/camera.tfxs" --seconds 1 --camera 0,0,300 2>&1) || fail "--camera refused: $out"
[ "$(peak "$out")" -ge 290 ] && [ "$(peak "$out")" -le 310 ] || fail "a camera 300 away should emit about 300: $out"
out=$("$zol" sim "$tmp/camera.tfxs" --seconds 1 --camera 0,0,300 --camera 100,0,0 2>&1) || fail "two cameras refused: $out"
[ "$(peak "$out")" -ge 95 ] && [ "$(peak "$out")" -le 105 ] || fail "the nearer of two cameras should count: $out"
"$zol" sim "$tmp/camera.tfxs" --camera 1,2 >/dev/null 2>&1
[ $? -eq 2 ] || fail "--camera 1,2 was not refused"

# Models: particles born on the shipped crate's hitbox, moved with its control point.
printf '%s\n{ _class = "CParticleSystemDefinition" m_flConstantLifespan = 100.0 m_flConstantRadius = 0.0 m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 300 } ] m_Initializers = [ { _class = "C_INIT_CreateOnModel" m_modelInput = { m_nType = "PM_TYPE_CONTROL_POINT" m_nControlPoint = 1 } m_transformInput = { m_nControlPoint = 1 } } ] }\n' "$header" > "$tmp/onmodel.tfxs"
crate="$src/content/content/models/crate.tmsh"
out=$("$zol" sim "$tmp/onmodel.tfxs" --seconds 1 --cp-model 1="$crate" --cp 1=100,0,0 2>&1) || fail "--cp-model refused: $out"
echo "$out" | grep -qE '^t=1.00 particles 300 .*bounds \(8[45](\.[0-9]+)? -1[56](\.[0-9]+)? 0(\.[0-9]+)?\)-\(11[56](\.[0-9]+)? 1[56](\.[0-9]+)? 3[12](\.[0-9]+)?\)' ||
  fail "particles are not on the crate at control point 1: $out"
out=$("$zol" sim "$tmp/onmodel.tfxs" --seconds 1 2>&1) || fail "create on model without a model refused: $out"
echo "$out" | grep -qE '^t=1.00 particles 300 .*bounds \(-[78](\.[0-9]+)? ' || fail "without a model the stand-in sphere should be used: $out"
printf '%s\n{ m_Triangles = [ 0, 1, 2 ] }\n' "$header" > "$tmp/broken.tmsh"
out=$("$zol" sim "$tmp/onmodel.tfxs" --cp-model 1="$tmp/broken.tmsh" 2>&1)
[ $? -eq 1 ] || fail "a broken model did not exit 1: $out"
echo "$out" | grep -q 'm_Triangles\[0\]' || fail "the broken model's fault is not named: $out"
out=$("$zol" sim "$tmp/onmodel.tfxs" --cp-model 1="$tmp/nothere.tmsh" 2>&1)
[ $? -eq 1 ] || fail "a missing model did not exit 1: $out"
"$zol" sim "$tmp/onmodel.tfxs" --cp-model 64="$crate" >/dev/null 2>&1
[ $? -eq 2 ] || fail "--cp-model 64 was not refused"

# Bounds carry every digit a float holds.
out=$("$zol" sim "$src/content/content/particles/samples/fire.tfxs" --seconds 1)
echo "$out" | grep -qE '^t=1.00 .*bounds \(-?[0-9]+\.[0-9]{4,}' || fail "bounds are not printed at full precision: $out"

# --every N prints every N frames, the last frame too.
out=$("$zol" sim "$src/content/content/particles/samples/fire.tfxs" --seconds 0.5 --every 6)
[ "$(echo "$out" | grep -c '^t=')" -eq 5 ] || fail "--every 6 over 30 frames did not print 5 lines: $out"
echo "$out" | grep -q '^t=0.10 ' || fail "--every 6 at 60 fps did not print t=0.10: $out"
out=$("$zol" sim "$src/content/content/particles/samples/fire.tfxs" --seconds 0.05 --every 1)
echo "$out" | grep -q '^t=0.0166666667 ' || fail "a time between hundredths is not printed in full: $out"

# --dump: one JSON record per printed step and collection, with every particle.
dump="$tmp/campfire.jsonl"
"$zol" sim "$src/content/content/particles/samples/campfire.tfxs" --seconds 2 --dump "$dump" >/dev/null || fail "--dump failed"
[ "$(wc -l < "$dump")" -eq 8 ] || fail "the campfire and its three children over two printed steps are not 8 records: $(wc -l < "$dump")"
python3 - "$dump" <<'PY' || fail "the dump is not what it should be"
import json, sys
records = [json.loads(line) for line in open(sys.argv[1])]
paths = sorted({r["path"] for r in records})
assert paths == ["0", "0/0", "0/1", "0/2"], paths
for r in records:
    assert set(r) >= {"frame", "t", "path", "system", "time", "started", "finished", "count", "particles"}, r.keys()
    assert r["count"] == len(r["particles"])
    for p in r["particles"]:
        assert set(p) == {"id", "created", "life", "pos", "vel", "radius", "alpha", "color"}, p.keys()
        assert len(p["pos"]) == 3 and len(p["vel"]) == 3 and len(p["color"]) == 3
        assert p["created"] <= r["time"] + 1e-6 and p["life"] > 0 and p["radius"] is not None
# The sparks child waits 1.5 s: not started at 1 s, started at 2 s.
sparks = {r["frame"]: r for r in records if r["path"] == "0/2"}
assert not sparks[60]["started"] and sparks[60]["count"] == 0, sparks[60]
assert sparks[120]["started"], sparks[120]
root = [r for r in records if r["path"] == "0"]
assert root[0]["count"] == 12 and root[0]["system"].endswith("campfire.tfxs")
PY
"$zol" sim "${samples[0]}" --dump "$tmp/no/such/dir/x.jsonl" >/dev/null 2>&1
[ $? -eq 1 ] || fail "a dump that can't be written did not exit 1"

# --content before or after the command word: children resolve through it.
mkdir -p "$tmp/roots/content/fx" "$tmp/roots/elsewhere"
printf '%s\n{ _class = "CParticleSystemDefinition" m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 3 } ] }\n' "$header" > "$tmp/roots/content/fx/leaf.tfxs"
printf '%s\n{ _class = "CParticleSystemDefinition" m_Children = [ { m_ChildRef = "fx/leaf.tfxs" } ] }\n' "$header" > "$tmp/roots/elsewhere/top.tfxs"
out=$("$zol" sim "$tmp/roots/elsewhere/top.tfxs" --seconds 1 2>&1)
[ $? -eq 1 ] || fail "a child outside the found content root resolved: $out"
out=$("$zol" --content "$tmp/roots/content" sim "$tmp/roots/elsewhere/top.tfxs" --seconds 1 2>&1) || fail "--content before sim: $out"
echo "$out" | grep -q '^t=1.00 particles 0 with children 3 ' || fail "the child did not run with --content before sim: $out"
out=$("$zol" sim "$tmp/roots/elsewhere/top.tfxs" --seconds 1 --content "$tmp/roots/content" 2>&1) || fail "--content after sim: $out"
echo "$out" | grep -q '^t=1.00 particles 0 with children 3 ' || fail "the child did not run with --content after sim: $out"

# A variable shared by a parent and its child: the child's glow takes the parent's
# default size (24), and its own (8) when it plays alone.
out=$("$zol" sim "$src/content/content/particles/samples/beacon.tfxs" --seconds 2 2>&1) || fail "beacon refused: $out"
echo "$out" | grep -qE '^t=2.00 .*bounds \([^ ]+ [^ ]+ -24\)-\([^ ]+ [^ ]+ 24\)' || fail "the glow did not take the beacon's GlowSize 24: $out"
out=$("$zol" sim "$src/content/content/particles/samples/beacon_glow.tfxs" --seconds 2 2>&1) || fail "beacon glow refused: $out"
echo "$out" | grep -q '^t=2.00 .*bounds (-8 -8 -8)-(8 8 8)' || fail "the glow alone did not keep its own GlowSize 8: $out"

# Configurations: the brazier stands on the crate's lid (32 up) in one, on the ground in
# the other; points given on the command line still win.
brazier="$src/content/content/particles/samples/brazier.tfxs"
lowest() { echo "$1" | sed -n 's/^t=1.00 .*bounds ([^ ]* [^ ]* \([-0-9.]*\))-.*/\1/p'; }
out=$("$zol" sim "$brazier" --seconds 1 --config "on crate" 2>&1) || fail "--config on crate refused: $out"
awk -v z="$(lowest "$out")" 'BEGIN { exit !(z > 20 && z < 32) }' || fail "on crate the flame does not start on the lid: $out"
out=$("$zol" sim "$brazier" --seconds 1 --config GROUND 2>&1) || fail "--config GROUND refused: $out"
awk -v z="$(lowest "$out")" 'BEGIN { exit !(z < 0) }' || fail "on the ground the flame does not start at the origin: $out"
out=$("$zol" sim "$brazier" --seconds 1 --config "on crate" --cp 0=0,0,500 2>&1) || fail "--config with --cp refused: $out"
awk -v z="$(lowest "$out")" 'BEGIN { exit !(z > 450) }' || fail "--cp did not win over the configuration: $out"
out=$("$zol" sim "$brazier" --config "upside down" 2>&1)
[ $? -eq 1 ] || fail "an unknown configuration did not exit 1: $out"
echo "$out" | grep -q "brazier.tfxs: no configuration 'upside down' (there are: ground, on crate)" || fail "the configurations are not named: $out"
"$zol" sim "$brazier" --config >/dev/null 2>&1
[ $? -eq 2 ] || fail "--config without a name was not refused"

[ $failures -eq 0 ] && echo "all sim cli checks passed"
exit $((failures > 0))
