#!/usr/bin/env bash
# Every command on misuse and on hostile files: a refusal with status 2 (misuse) or 1 (a
# file refused), a message that names the file and the reason, never a crash or a hang.
# usage: hostile_cli_test.sh ZOL SOURCE_DIR
# No pipefail: `echo "$out" | grep -q` would fail whenever grep stops reading early.
set -u
zol=$1
src=$2
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
header='--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---'
sample="$src/content/content/particles/samples/fire.tfxs"
def() { printf '%s\n{ _class = "CParticleSystemDefinition" %s }\n' "$header" "$2" > "$1"; }

# expect STATUS PATTERN COMMAND...: the command exits STATUS within 60 s and prints PATTERN.
expect() {
  local want=$1 pattern=$2
  shift 2
  local out status
  out=$(timeout 60 "$@" 2>&1 </dev/null)
  status=$?
  [ $status -eq "$want" ] || fail "$* exited $status, not $want: $out"
  echo "$out" | grep -qE -- "$pattern" || fail "$* did not print /$pattern/: $out"
}

# Misuse: status 2 and what was wrong.
expect 2 'fps takes a whole number.*60abc' "$zol" sim "$sample" --fps 60abc
expect 2 'fps takes a whole number.*1e9' "$zol" sim "$sample" --fps 1e9
expect 2 'seed takes a whole number.*abc' "$zol" sim "$sample" --seed abc
expect 2 'seed takes a whole number' "$zol" sim "$sample" --seed -1
expect 2 'cp takes N=x,y,z.*4294967296' "$zol" sim "$sample" --cp 4294967296=1,2,3
expect 2 'cp takes N=x,y,z.*nan' "$zol" sim "$sample" --cp 0=nan,nan,nan
expect 2 'cp takes N=x,y,z' "$zol" sim "$sample" --cp 0=1,2
expect 2 'seconds takes a number' "$zol" sim "$sample" --seconds inf
expect 2 'camera takes x,y,z' "$zol" sim "$sample" --camera 1,2,3,4
expect 2 'every takes a whole number' "$zol" sim "$sample" --every 0
expect 2 'fps needs a value' "$zol" sim "$sample" --fps
expect 2 'unknown option --bogus' "$zol" sim "$sample" --bogus
expect 2 'an empty file name' "$zol" sim ''
expect 2 'an empty file name' "$zol" fgd check ''
expect 2 'an empty file name' "$zol" kv3 check ''
expect 2 'an empty file name' "$zol" tfxs check ''
expect 2 '--game /no/such/dir: no such directory' "$zol" catalogue --game /no/such/dir
expect 2 '--content /no/such/dir: no such directory' "$zol" --content /no/such/dir tfxs check "$sample"
expect 2 '--game needs a directory' "$zol" tfxs check "$sample" --game
expect 2 'unexpected argument' "$zol" catalogue extra

# The editor without a display says so and lists what works without one.
expect 2 'the editor needs a display' env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$zol" "$sample"
out=$(env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$zol" "$sample" 2>&1)
echo "$out" | grep -q 'xvfb-run zol' || fail "the display message does not offer xvfb-run: $out"
echo "$out" | grep -q 'zol sim FILE' || fail "the display message lists no commands: $out"

# Devices and pipes named as files are refused by name, never read.
mkfifo "$work/pipe.tfxs"
expect 1 '^/dev/zero: not a regular file' "$zol" kv3 check /dev/zero
expect 1 "pipe.tfxs: not a regular file" "$zol" kv3 check "$work/pipe.tfxs"
expect 1 '/dev/zero: not a regular file' "$zol" sim "$sample" --cp-model 1=/dev/zero
expect 1 '/dev/zero: not a regular file' "$zol" fgd check /dev/zero
expect 1 '/dev/zero: Failed to read file: not a regular file' "$zol" tfxs check /dev/zero
expect 1 '/dev/zero: not a regular file' "$zol" sim /dev/zero
expect 1 'missing.tfxs: Failed to read file: No such file or directory' "$zol" tfxs check "$work/missing.tfxs"

# Child references: inside the roots only, by a name, with a clear reason.
mkdir -p "$work/content/particles" "$work/other"
def "$work/content/particles/zero.tfxs" 'm_Children = [ { m_ChildRef = resource:"/dev/zero" } ]'
def "$work/content/particles/escape.tfxs" 'm_Children = [ { m_ChildRef = "../../etc/passwd" } ]'
def "$work/content/particles/number.tfxs" 'm_Children = [ { m_ChildRef = 42 } ]'
for f in zero escape; do
  expect 1 "$f.tfxs: Child .*outside the content and game roots" "$zol" sim "$work/content/particles/$f.tfxs"
  expect 1 "Child .*outside the content and game roots" "$zol" tfxs check "$work/content/particles/$f.tfxs"
done
expect 1 "number.tfxs: m_Children\[0\]: m_ChildRef is a 'int', not the name of a system file" "$zol" sim "$work/content/particles/number.tfxs"

# Two files differing only in case: both named, never one given for the other.
def "$work/content/particles/Fire.tfxs" 'm_Children = [ { m_ChildRef = "particles/fire.tfxs" } ]'
def "$work/content/particles/fire.tfxs" 'm_nMaxParticles = 3'
def "$work/content/particles/parent.tfxs" 'm_Children = [ { m_ChildRef = "particles/FIRE.tfxs" } ]'
for f in Fire parent; do
  expect 1 "particles/Fire.tfxs' and '.*particles/fire.tfxs' differ only in letter case" "$zol" sim "$work/content/particles/$f.tfxs"
done

# A deep chain of children is refused at a fixed depth, not by a crash.
for i in $(seq 0 200); do def "$work/content/particles/d$i.tfxs" "m_Children = [ { m_ChildRef = \"particles/d$((i + 1)).tfxs\" } ]"; done
expect 1 'children nest deeper than 32 levels' "$zol" sim "$work/content/particles/d0.tfxs"

# A wide tree beyond the budget: refused with its size, quickly.
def "$work/content/particles/t4.tfxs" ''
for l in 3 2 1 0; do
  refs=$(for i in $(seq 10); do printf '{ m_ChildRef = "particles/t%d.tfxs" },' $((l + 1)); done)
  def "$work/content/particles/t$l.tfxs" "m_Children = [ $refs ]"
done
expect 1 'at most 1024 systems and 4194304 particles' "$zol" sim "$work/content/particles/t0.tfxs"
expect 1 'at most 1024 systems' "$zol" tfxs check "$work/content/particles/t0.tfxs"

# Pre-simulation of a billion seconds is cut to its bound, with a warning.
def "$work/content/particles/presim.tfxs" 'm_flPreSimulationTime = 1e9 m_Emitters = [ { _class = "C_OP_ContinuousEmitter" } ]'
expect 0 'm_flPreSimulationTime 1e\+09 is beyond the 60 seconds' "$zol" sim "$work/content/particles/presim.tfxs" --seconds 1

# Counts beyond an int fill the places there are.
for e in '{ _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 3e9 }' \
         '{ _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 2e9 }, { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 2e9 }' \
         '{ _class = "C_OP_ContinuousEmitter" m_flEmitRate = 1e30 }'; do
  def "$work/counts.tfxs" "m_nMaxParticles = 100 m_Emitters = [ $e ]"
  expect 0 '^t=1.00 particles 100 ' "$zol" sim "$work/counts.tfxs" --seconds 1
done

# Values beyond a float: bounds are never inverted; what they can't hold is counted.
def "$work/inf.tfxs" 'm_flConstantRadius = -1e308 m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 5 } ]'
expect 0 '^t=1.00 particles 5 with children 5 bounds none non-finite 5$' "$zol" sim "$work/inf.tfxs" --seconds 1
def "$work/nan.tfxs" 'm_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 5 } ]
  m_Initializers = [ { _class = "C_INIT_InitialVelocityNoise" m_vecOutputMin = [ 1e308, 0, 0 ] m_vecOutputMax = [ -1e308, 0, 0 ] } ]
  m_Operators = [ { _class = "C_OP_BasicMovement" } ]'
expect 0 'bounds none non-finite 5' "$zol" sim "$work/nan.tfxs" --seconds 1

# An FGD file that includes the next one twice, 25 deep, reads each once.
for i in $(seq 0 24); do printf '@include "f%d.fgd"\n@include "f%d.fgd"\n@BaseClass = C%d []\n' $((i + 1)) $((i + 1)) $i > "$work/f$i.fgd"; done
printf '@BaseClass = Last []\n' > "$work/f25.fgd"
out=$(timeout 20 "$zol" fgd dump "$work/f0.fgd" 2>/dev/null)
[ $? -eq 0 ] || fail "the include chain did not load within 20 s"
[ "$(echo "$out" | grep -c '^@BaseClass')" -eq 26 ] || fail "the include chain did not give 26 classes: $out"

[ $failures -eq 0 ] && echo "all hostile cli checks passed"
exit $((failures > 0))
