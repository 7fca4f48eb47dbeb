#!/usr/bin/env bash
# velor-display-restore-users over a fake /run/user and a systemctl that notes its arguments:
# one start per user with a running user manager, none for other folders, and a failing
# systemctl logged, not fatal.
set -euo pipefail
script=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

mkdir -p "$work/run/0/systemd" "$work/run/4242/systemd" "$work/run/lost+found" "$work/run/1/systemd"
# A user manager listens on systemd/private; uid 1 (daemon) has the folder but no manager.
python3 -c 'import socket, sys; s = socket.socket(socket.AF_UNIX); s.bind(sys.argv[1])' "$work/run/0/systemd/private"
python3 -c 'import socket, sys; s = socket.socket(socket.AF_UNIX); s.bind(sys.argv[1])' "$work/run/4242/systemd/private"
cat > "$work/systemctl" <<'FAKE'
#!/bin/sh
echo "$*" >> "$(dirname "$0")/calls"
FAKE
chmod +x "$work/systemctl"

VLR_RUN_USER="$work/run" VLR_SYSTEMCTL="$work/systemctl" sh "$script"
expected="--user --machine=root@ --no-block start velor-display-restore.service"
actual=$(cat "$work/calls")
# uid 4242 has no account here: skipped.
if [ "$actual" != "$expected" ]; then
    echo "expected: $expected"
    echo "actual:   $actual"
    exit 1
fi

# A systemctl that fails: the script still succeeds (udev must not see an error).
printf '#!/bin/sh\nexit 1\n' > "$work/systemctl"
VLR_RUN_USER="$work/run" VLR_SYSTEMCTL="$work/systemctl" sh "$script"
echo "ok"
