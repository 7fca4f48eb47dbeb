#!/usr/bin/env bash
# The Windows tool with a profile path outside any ANSI code page (German and Japanese in one
# name): its manifest makes UTF-8 the process's code page, so the path reaches the file system
# whole. Without it the name turns into "?" and the profile "cannot be written".
#   unicode-paths.sh WINE64 TOOL
set -uo pipefail
wine=$1
tool=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
profile="$folder/Größe-プロファイル.json"
windows=$("$wine" winepath -w "$profile" 2>/dev/null | tr -d '\r')
"$wine" "$tool" --demo profile save 0 "$windows" || { echo "profile save failed"; exit 1; }
[ -s "$profile" ] || { echo "no file $profile"; ls "$folder"; exit 1; }
"$wine" "$tool" --demo profile apply 0 "$windows" >/dev/null || { echo "profile apply failed"; exit 1; }
echo "ok: $profile written and read back"
