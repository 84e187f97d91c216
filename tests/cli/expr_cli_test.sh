#!/usr/bin/env bash
# zol expr on good and broken text, as an artist checking a metadata expression would.
# usage: expr_cli_test.sh ZOL SOURCE_DIR
set -uo pipefail
zol=$1
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

expect_out() { # expected-stdout args...
  local expected=$1; shift
  local out
  out=$("$zol" expr "$@" 2>&1) || fail "zol expr $* exited $?: $out"
  [ "$out" = "$expected" ] || fail "zol expr $*: got '$out', wanted '$expected'"
}

expect_out "int32 7" '1 + 2 * 3'
expect_out "bool true" --var m_nType=3 --var m_bEnabled=true 'm_nType == 3 && m_bEnabled'
expect_out 'string "a1"' '"a" + 1'
expect_out "double 3.5" --var x=7 'x / 2.0'
expect_out 'string "hi there"' --var 'name="there"' '"hi " + name'
expect_out 'string "$v"' --allow-dollar '$v'
expect_out "$(printf 'BinAdd\n  Int( 1 )\n  Var( a )')" --describe '1 + a'

# A syntax error: the parser's report lines, where it is, exit 1, nothing on stdout.
out=$("$zol" expr '(1 + 2' 2>/dev/null); status=$?
[ $status -eq 1 ] || fail "a syntax error exited $status"
[ -z "$out" ] || fail "a syntax error printed on stdout: $out"
err=$("$zol" expr '(1 + 2' 2>&1 >/dev/null)
echo "$err" | grep -qx "Missing token CLOSE_PAREN" || fail "no report line for a missing parenthesis: $err"
echo "$err" | grep -q "at offset 6" || fail "no offset for a missing parenthesis: $err"

"$zol" expr '7 % 0' >/dev/null 2>&1; [ $? -eq 1 ] || fail "modulo by zero did not exit 1"
err=$("$zol" expr '$v' 2>&1)
echo "$err" | grep -qF 'Disallowed variable name: $v' || fail "a dollar name without --allow-dollar was not refused"
"$zol" expr "$(printf '(%.0s' $(seq 1 5000))1" >/dev/null 2>&1; [ $? -eq 1 ] || fail "deep nesting did not exit 1"
"$zol" expr --var 'x=[1' 'x' >/dev/null 2>&1; [ $? -eq 2 ] || fail "a bad --var value did not exit 2"
"$zol" expr >/dev/null 2>&1; [ $? -eq 2 ] || fail "no text did not exit 2"
"$zol" --help | grep -q "expr " || fail "--help does not list expr"

echo "$((failures == 0 ? 1 : 0)) passed, $failures failed"
[ $failures -eq 0 ]
