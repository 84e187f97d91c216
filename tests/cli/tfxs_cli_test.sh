#!/usr/bin/env bash
# zol tfxs and zol catalogue on the shipped definitions and on broken ones.
# usage: tfxs_cli_test.sh ZOL SOURCE_DIR
# No pipefail: `echo "$out" | grep -q` would fail whenever grep stops reading early.
set -u
zol=$1
src=$2
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

mapfile -t samples < <(find "$src/content/content" -name '*.tfxs' | sort)
[ ${#samples[@]} -gt 0 ] || fail "no definition files under content/content"
for f in "${samples[@]}"; do
  out=$("$zol" tfxs check "$f" 2>&1) || fail "check refused $f: $out"
  [ -z "$out" ] || fail "check printed something for a shipped file $f: $out"

  # What fmt prints loads again and formats to the same text.
  "$zol" tfxs fmt "$f" > "$work/once.tfxs" || fail "fmt failed on $f"
  "$zol" tfxs fmt "$work/once.tfxs" > "$work/twice.tfxs" || fail "fmt of fmt output failed for $f"
  cmp -s "$work/once.tfxs" "$work/twice.tfxs" || fail "fmt is not stable for $f: $(diff "$work/once.tfxs" "$work/twice.tfxs" | head -5)"
  grep -q '_class = "CParticleSystemDefinition"' "$work/once.tfxs" || fail "fmt output of $f lacks the root class"
done

# Refused files: status 1 and FILE: message.
printf -- '--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n{ _class = "CSomethingElse" }\n' > "$work/other.tfxs"
out=$("$zol" tfxs check "$work/other.tfxs" 2>&1)
[ $? -eq 1 ] || fail "check did not exit 1 on a file of another class: $out"
[ "$out" = "$work/other.tfxs: File does not contain a root object of type 'CParticleSystemDefinition'" ] || fail "wrong message for another class: $out"

printf -- '--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n{ _class = \n' > "$work/broken.tfxs"
out=$("$zol" tfxs check "$work/broken.tfxs" 2>&1)
[ $? -eq 1 ] || fail "check did not exit 1 on broken text: $out"
echo "$out" | grep -qE "^$work/broken.tfxs: .+" || fail "no FILE: message for broken text: $out"

out=$("$zol" tfxs check "$work/missing.tfxs" 2>&1)
[ $? -eq 1 ] || fail "check did not exit 1 on a missing file"
[ "$out" = "$work/missing.tfxs: Failed to read file: No such file or directory" ] || fail "wrong message for a missing file: $out"

# One bad file among good ones: every file is reported, the status is 1.
out=$("$zol" tfxs check "${samples[0]}" "$work/other.tfxs" 2>&1)
[ $? -eq 1 ] || fail "a bad file among good ones did not give status 1"

# check refuses what zol sim refuses: a function's fields and the whole tree of children.
header='--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---'
mkdir -p "$work/content/particles"
printf '%s\n{ _class = "CParticleSystemDefinition" m_Operators = [ { _class = "C_OP_FadeInSimple" m_nFieldOutput = 99 } ] }\n' "$header" > "$work/content/particles/field.tfxs"
printf '%s\n{ _class = "CParticleSystemDefinition" m_Children = [ { m_ChildRef = "particles/field.tfxs" } ] }\n' "$header" > "$work/content/particles/parent.tfxs"
printf '%s\n{ _class = "CParticleSystemDefinition" m_Children = [ { m_ChildRef = "particles/gone.tfxs" } ] }\n' "$header" > "$work/content/particles/orphan.tfxs"
for f in field parent orphan; do
  out=$("$zol" tfxs check "$work/content/particles/$f.tfxs" 2>&1)
  [ $? -eq 1 ] || fail "check accepted $f.tfxs, which sim refuses: $out"
  sim=$("$zol" sim "$work/content/particles/$f.tfxs" 2>&1)
  [ "$out" = "$sim" ] || fail "check and sim give different reasons for $f.tfxs: $out / $sim"
done
echo "$out" | grep -q "orphan.tfxs: Child 'particles/gone.tfxs': no such file in $work/content" || fail "the missing child is not named with where it was looked for: $out"
out=$("$zol" tfxs check "$work/content/particles/field.tfxs" 2>&1)
echo "$out" | grep -q 'm_Operators\[0\] (C_OP_FadeInSimple): m_nFieldOutput 99 is not a particle attribute' || fail "the bad field is not named: $out"

# A function of a class this build doesn't know: a warning, since a save drops it.
printf '%s\n{ _class = "CParticleSystemDefinition" m_Operators = [ { _class = "C_OP_Decay" }, { _class = "C_OP_NoSuchThing" } ] }\n' "$header" > "$work/unknown.tfxs"
out=$("$zol" tfxs fmt "$work/unknown.tfxs" 2>&1 >/dev/null)
echo "$out" | grep -q "unknown.tfxs: m_Operators\[1\]: unknown function class 'C_OP_NoSuchThing'; it is left out, and a save drops it" || fail "fmt drops an unknown function without a word: $out"

# --content before or after the command word; a file below it resolves its children there.
mkdir -p "$work/elsewhere"
printf '%s\n{ _class = "CParticleSystemDefinition" m_Children = [ { m_ChildRef = "particles/parent.tfxs" } ] }\n' "$header" > "$work/elsewhere/top.tfxs"
for args in "--content $work/content tfxs check" "tfxs check --content $work/content" "tfxs --content $work/content check"; do
  out=$("$zol" $args "$work/elsewhere/top.tfxs" 2>&1)
  echo "$out" | grep -q "Child 'particles/parent.tfxs': Child 'particles/field.tfxs'" || fail "zol $args did not resolve children through the content root: $out"
done

# The catalogue lists each function list with its classes.
out=$(cd "$src" && "$zol" catalogue) || fail "catalogue failed"
for key in m_PreEmissionOperators m_Emitters m_Initializers m_Operators m_ForceGenerators m_Constraints m_Renderers; do
  echo "$out" | grep -q "^$key\$" || fail "catalogue lacks the list $key"
done
echo "$out" | grep -q 'C_INIT_InitFloat' || fail "catalogue lacks C_INIT_InitFloat: $out"
echo "$out" | grep -q 'preset C_INIT_InitFloat' || fail "catalogue lacks the presets"

[ $failures -eq 0 ] && echo "all tfxs cli checks passed"
exit $((failures > 0))
