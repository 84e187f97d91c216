#!/usr/bin/env bash
# zol tfxs diff and zol tfxs merge on edited copies of the shipped samples, and both as
# git's text conversion and merge driver in a scratch repository.
# usage: tfxs_merge_cli_test.sh ZOL SOURCE_DIR
set -uo pipefail
zol=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
src=$(cd "$2" && pwd)
samples=$src/content/content/particles/samples
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
header='--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---'

# edit FILE FROM TO: replaces the one line part FROM with TO, which must be there.
edit() {
  grep -qF -- "$2" "$1" || { fail "edit: '$2' not in $1"; return; }
  local text
  text=$(<"$1")
  printf '%s\n' "${text/"$2"/"$3"}" > "$1"
}

cp "$samples/fire.tfxs" "$work/base.tfxs"
cp "$work/base.tfxs" "$work/ours.tfxs"
cp "$work/base.tfxs" "$work/theirs.tfxs"
edit "$work/ours.tfxs" 'm_flLiteralValue = 40.0' 'm_flLiteralValue = 45.0'
edit "$work/ours.tfxs" 'm_flFadeOutTime = 0.5' 'm_flFadeOutTime = 0.4'
edit "$work/theirs.tfxs" 'm_nMaxParticles = 200' 'm_nMaxParticles = 150'
edit "$work/theirs.tfxs" '{ _class = "C_OP_Decay" }' '{ _class = "C_OP_Decay" m_bDisableOperator = true }'

# diff: 0 when equal, 1 with one line per change, 2 when a file doesn't load.
out=$("$zol" tfxs diff "$work/base.tfxs" "$samples/fire.tfxs" 2>&1)
[ $? -eq 0 ] && [ -z "$out" ] || fail "a file against its copy is not equal: $out"
out=$("$zol" tfxs diff "$work/base.tfxs" "$work/ours.tfxs" 2>&1)
[ $? -eq 1 ] || fail "diff of different files did not exit 1"
expected='Emitters #1 Continuous Emitter: Rate: 40 -> 45
Operators #4 Alpha Fade Out Simple: Proportional Fade Out Time: 0.5 -> 0.4'
[ "$out" = "$expected" ] || fail "diff printed: $out"
out=$("$zol" tfxs diff "$work/base.tfxs" "$work/theirs.tfxs" 2>&1)
echo "$out" | grep -qx 'Operators #2 Lifespan Decay: disabled' || fail "no disabled line: $out"

json=$("$zol" tfxs diff --json "$work/base.tfxs" "$work/ours.tfxs")
[ $? -eq 1 ] || fail "diff --json of different files did not exit 1"
echo "$json" | grep -q '"equal": false' || fail "json lacks equal: $json"
echo "$json" | grep -q '"kind": "changed", "section": "Emitters", "list": "m_Emitters", "element": "Continuous Emitter", "class": "C_OP_ContinuousEmitter", "oldPosition": 1, "newPosition": 1, "field": "m_flEmitRate", "label": "Rate", "old": "40", "new": "45"' ||
  fail "json lacks the emit rate change: $json"
echo "$json" | grep -q '"oldValue": {"m_nType": "PF_TYPE_LITERAL", "m_flLiteralValue": 40}' || fail "json lacks the stored old value: $json"
if command -v python3 > /dev/null; then
  echo "$json" | python3 -m json.tool > /dev/null || fail "diff --json is not JSON: $json"
fi
json=$("$zol" tfxs diff "$work/base.tfxs" "$samples/fire.tfxs" --json)
[ "$json" = "{\"old\": \"$work/base.tfxs\", \"new\": \"$samples/fire.tfxs\", \"equal\": true, \"changes\": []}" ] || fail "json of equal files: $json"

printf '%s\n{ _class = \n' "$header" > "$work/broken.tfxs"
printf '%s\n{ _class = "CSomethingElse" }\n' "$header" > "$work/other.tfxs"
out=$("$zol" tfxs diff "$work/base.tfxs" "$work/broken.tfxs" 2>&1)
[ $? -eq 2 ] || fail "diff with a broken file did not exit 2"
echo "$out" | grep -qE "^$work/broken.tfxs: .+" || fail "no FILE: message for a broken file: $out"
out=$("$zol" tfxs diff "$work/missing.tfxs" "$work/base.tfxs" 2>&1)
[ $? -eq 2 ] && [ "$out" = "$work/missing.tfxs: Failed to read file: No such file or directory" ] || fail "wrong report of a missing file: $out"
out=$("$zol" tfxs diff "$work/base.tfxs" "$work/other.tfxs" 2>&1)
[ $? -eq 2 ] || fail "diff of two root classes did not exit 2"
[ "$out" = "$work/base.tfxs and $work/other.tfxs have different root classes ('CParticleSystemDefinition' and 'CSomethingElse'); only particle system definitions compare" ] ||
  fail "wrong message for two root classes: $out"

# One file: listed in the same terms.
out=$("$zol" tfxs diff "$work/ours.tfxs") || fail "listing failed"
echo "$out" | grep -qx '    Rate: 45' || fail "listing lacks the rate: $out"
"$zol" tfxs diff "$work/broken.tfxs" > /dev/null 2>&1
[ $? -eq 2 ] || fail "listing a broken file did not exit 2"
out=$("$zol" tfxs diff --textconv "$work/broken.tfxs" 2> /dev/null)
[ $? -eq 0 ] && [ "$out" = "$(cat "$work/broken.tfxs")" ] || fail "--textconv of a broken file is not its text: $out"

# merge: changes of both sides, saved as the editor saves.
"$zol" tfxs merge "$work/base.tfxs" "$work/ours.tfxs" "$work/theirs.tfxs" -o "$work/merged.tfxs" 2> "$work/err"
[ $? -eq 0 ] || fail "clean merge did not exit 0: $(cat "$work/err")"
[ -s "$work/err" ] && fail "clean merge printed: $(cat "$work/err")"
out=$("$zol" tfxs diff "$work/base.tfxs" "$work/merged.tfxs")
expected='Base Properties: Max Particles: 200 -> 150
Emitters #1 Continuous Emitter: Rate: 40 -> 45
Operators #2 Lifespan Decay: disabled
Operators #4 Alpha Fade Out Simple: Proportional Fade Out Time: 0.5 -> 0.4'
[ "$out" = "$expected" ] || fail "merged result differs from the base by: $out"
"$zol" tfxs fmt "$work/merged.tfxs" | cmp -s - "$work/merged.tfxs" || fail "the merged file is not in the editor's form"
"$zol" tfxs merge "$work/base.tfxs" "$work/ours.tfxs" "$work/theirs.tfxs" | cmp -s - "$work/merged.tfxs" || fail "merge to stdout differs from -o"

# A true conflict keeps ours, names both values, exits 1.
cp "$work/base.tfxs" "$work/theirs2.tfxs"
edit "$work/theirs2.tfxs" 'm_flFadeOutTime = 0.5' 'm_flFadeOutTime = 0.7'
"$zol" tfxs merge "$work/base.tfxs" "$work/ours.tfxs" "$work/theirs2.tfxs" -o "$work/conflict.tfxs" 2> "$work/err"
[ $? -eq 1 ] || fail "a conflicting merge did not exit 1"
grep -qx 'conflict: Operators #4 Alpha Fade Out Simple: Proportional Fade Out Time: ours 0.4, theirs 0.7 (was 0.5); kept ours' "$work/err" ||
  fail "conflict not reported with both values: $(cat "$work/err")"
grep -q 'm_flFadeOutTime = 0.4' "$work/conflict.tfxs" || fail "the conflicting merge did not keep ours"

# Bad input: the message, exit 2, nothing written.
echo "keep me" > "$work/untouched.tfxs"
out=$("$zol" tfxs merge "$work/base.tfxs" "$work/broken.tfxs" "$work/theirs.tfxs" -o "$work/untouched.tfxs" 2>&1)
[ $? -eq 2 ] || fail "merge with a broken file did not exit 2"
echo "$out" | grep -qE "^$work/broken.tfxs: .+" || fail "no FILE: message from merge: $out"
[ "$(cat "$work/untouched.tfxs")" = "keep me" ] || fail "a refused merge wrote its output"
"$zol" tfxs merge "$work/base.tfxs" "$work/other.tfxs" "$work/theirs.tfxs" -o "$work/new.tfxs" > /dev/null 2>&1
[ $? -eq 2 ] || fail "merge of two root classes did not exit 2"
[ -e "$work/new.tfxs" ] && fail "a refused merge made its output file"
"$zol" tfxs merge "$work/base.tfxs" "$work/ours.tfxs" > /dev/null 2>&1
[ $? -eq 2 ] || fail "merge with two files did not exit 2"

# git: the three lines of configuration, two branches that edited the same sample.
repo=$work/repo
mkdir "$repo" && cd "$repo" || exit 1
export HOME=$work GIT_CONFIG_NOSYSTEM=1 GIT_AUTHOR_NAME=artist GIT_AUTHOR_EMAIL=artist@example.com GIT_COMMITTER_NAME=artist GIT_COMMITTER_EMAIL=artist@example.com
git init -q -b main . || fail "git init failed"
cp "$samples/fire.tfxs" fire.tfxs
echo '*.tfxs diff=tfxs merge=tfxs' > .gitattributes
git add fire.tfxs .gitattributes && git commit -qm "fire"
git checkout -qb flames
edit fire.tfxs '{ _class = "C_OP_SpinUpdate" },' '{ _class = "C_OP_SpinUpdate" },
		{ _class = "C_OP_FadeAndKill" m_flStartFadeOutTime = 0.6 },'
edit fire.tfxs 'm_Gravity = [ 0.0, 0.0, 30.0 ] m_fDrag = 0.9539' 'm_Gravity = [ 0.0, 0.0, 45.0 ] m_fDrag = 0.9539'
git commit -qam "flames fade and rise faster"
git checkout -q main && git checkout -qb smoke
edit fire.tfxs '{ _class = "C_OP_SpinUpdate" },' '{ _class = "C_OP_SpinUpdate" },
		{ _class = "C_OP_LerpScalar" },'
edit fire.tfxs 'm_Gravity = [ 0.0, 0.0, 30.0 ] m_fDrag = 0.9539' 'm_Gravity = [ 0.0, 0.0, 30.0 ] m_fDrag = 0.98'
git commit -qam "more drag, lerp"

# Until the driver is configured git's line merge of these branches conflicts.
git checkout -q flames
git merge -q --no-edit smoke > /dev/null 2>&1 && fail "a line merge of the two branches did not conflict: the test proves nothing"
git merge --abort

git config diff.tfxs.textconv "'$zol' tfxs diff --textconv"
git config merge.tfxs.driver "'$zol' tfxs merge %O %A %B -o %A"

git merge -q --no-edit smoke > "$work/err" 2>&1 || fail "git merge with the driver failed: $(cat "$work/err")"
out=$("$zol" tfxs diff <(git show main:fire.tfxs) fire.tfxs)
expected='Operators #1 Movement Basic: Gravity: [0, 0, 30] -> [0, 0, 45]
Operators #1 Movement Basic: Drag: 0.9539 -> 0.98
Operators #8 Alpha Fade and Decay: added
Operators #9 Lerp Initial Scalar: added'
[ "$out" = "$expected" ] || fail "the merged sample differs from main by: $out"
"$zol" tfxs check fire.tfxs > /dev/null || fail "the merged sample does not load"

# The text conversion: git diff speaks the artist's terms.
out=$(git diff main HEAD -- fire.tfxs)
echo "$out" | grep -qx '+    Drag: 0.98' || fail "git diff lacks the drag line: $out"
echo "$out" | grep -qx '+  Lerp Initial Scalar' || fail "git diff lacks the added function: $out"

# A true conflict under git: the merge stops, the file keeps ours and stays loadable.
git checkout -qb gentle main
edit fire.tfxs 'm_flFadeOutTime = 0.5' 'm_flFadeOutTime = 0.4'
git commit -qam "gentle"
git checkout -qb harsh main
edit fire.tfxs 'm_flFadeOutTime = 0.5' 'm_flFadeOutTime = 0.7'
git commit -qam "harsh"
git merge -q --no-edit gentle > "$work/err" 2>&1 && fail "git merge of a true conflict succeeded"
grep -q 'Proportional Fade Out Time: ours 0.7, theirs 0.4 (was 0.5); kept ours' "$work/err" || fail "git did not show the conflict: $(cat "$work/err")"
"$zol" tfxs check fire.tfxs > /dev/null || fail "the conflicted sample does not load"
grep -q 'm_flFadeOutTime = 0.7' fire.tfxs || fail "the conflicted sample did not keep ours"
git merge --abort

[ $failures -eq 0 ] && echo "all tfxs diff and merge cli checks passed"
exit $((failures > 0))
