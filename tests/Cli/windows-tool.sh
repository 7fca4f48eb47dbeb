#!/usr/bin/env bash
# The real Windows tool under Wine, as a script on Windows runs it:
# - it lists the demo's displays as the Linux tool does (the same order, the same names);
# - the demo keeps a value set in one run for the next, as a display does;
# - a profile path outside any ANSI code page (German and Japanese in one name) reaches the file
#   system whole: the manifest makes UTF-8 the process's code page (without it the name turns
#   into "?" and the profile "cannot be written").
#   windows-tool.sh WINE64 TOOL
set -uo pipefail
wine=$1
tool=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
failures=0
fail() { echo "FAILED: $*"; failures=$((failures + 1)); }
run() { "$wine" "$tool" --demo "$@" | tr -d '\r'; }

listed=$(run list)
expected="0  Canvas 22 Pro  serial VC1060A40892  via graphics driver  firmware 3.1.2
1  Studio 24  serial VC1070A40934  via HID  firmware 6.0.1
2  Canvas 12  serial VC1040A40772  via serial  firmware 1.0.8
3  Canvas 13 HD  serial VC1043A40811  via FTDI  firmware 2.0.5"
[ "$listed" = "$expected" ] || fail "list says
$listed"

before=$(run get 1 contrast)
run set 1 contrast=33 >/dev/null || fail "set 1 contrast=33"
[ "$(run get 1 contrast)" = "contrast = 33" ] || fail "the next run does not read the contrast set before"
run set 1 "contrast=${before#contrast = }" >/dev/null

profile="$folder/Größe-プロファイル.json"
windows=$("$wine" winepath -w "$profile" 2>/dev/null | tr -d '\r')
run profile save 0 "$windows" || fail "profile save to $windows"
[ -s "$profile" ] || fail "no file $profile ($(ls "$folder"))"
run profile apply 0 "$windows" >/dev/null || fail "profile apply from $windows"

[ $failures -eq 0 ] && echo "ok: the same list as on Linux, values kept between runs, a profile named in German and Japanese"
exit $((failures != 0))
