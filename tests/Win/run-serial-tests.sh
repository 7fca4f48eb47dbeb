#!/usr/bin/env bash
# Runs the serial-port tests of the Windows build under Wine against virtual displays served
# on pseudo-terminals: starts one host per role, links a COM port to each terminal in the
# Wine prefix, runs the tests, and stops the hosts.
#
# usage: run-serial-tests.sh HOST_PROGRAM WINE64 TEST_PROGRAM EDID_384
set -u
host=$1 wine=$2 tests=$3 longEdid=$4
: "${WINEPREFIX:?WINEPREFIX must be set}"

if [ ! -x "$host" ]; then
    echo "run-serial-tests: $host is missing: build the native preset first (scripts/test does)"
    exit 1
fi

pids=()
cleanup() { for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null; done; }
trap cleanup EXIT

# start ROLE COMPORT HOST-OPTIONS...: serves a display and exports VLR_COM_<ROLE>=<COMPORT>.
start() {
    local role=$1 port=$2
    shift 2
    local out
    out=$(mktemp)
    "$host" "$@" >"$out" &
    pids+=($!)
    for _ in $(seq 50); do [ -s "$out" ] && break; sleep 0.1; done
    local pts
    pts=$(head -n 1 "$out")
    rm -f "$out"
    if [ -z "$pts" ]; then
        echo "run-serial-tests: the host for $role did not start"
        exit 1
    fi
    mkdir -p "$WINEPREFIX/dosdevices"
    ln -sfn "$pts" "$WINEPREFIX/dosdevices/$(echo "$port" | tr 'A-Z' 'a-z')"
    export "VLR_COM_$role=$port"
}

start DISPLAY COM5 --model studio-24
start SILENT COM6 --model studio-24 --silent
start LONG_EDID COM7 --model studio-24 --edid "$longEdid"

"$wine" "$tests" --gtest_color=no
