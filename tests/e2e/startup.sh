#!/usr/bin/env bash
# Starts the real binary under a real X server with its own home folder and
# checks that start-up wrote a fresh log.
set -euo pipefail
tarvo="$1"
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT

printf '1 09:00:00, a line from the last run\r\n' > "$home/log.txt"
TARVO_HOME="$home" TARVO_NOW="2030-06-01 08:30" xvfb-run -a "$tarvo" > "$home/out.txt" 2>&1 || {
  cat "$home/out.txt"; exit 1; }

log="$home/log.txt"
grep -q 'last run' "$log" && { echo "the old log was not replaced"; exit 1; }
head -n 1 "$log" | grep -q $'^1 08:30:[0-9][0-9], Log file created \r$' || {
  echo "unexpected first line:"; head -n 1 "$log"; exit 1; }
grep -q '^1 08:3[0-9]:[0-9][0-9], App path: '"$home"$'\r$' "$log" || { echo "no App path line"; cat "$log"; exit 1; }
grep -q ', TVO Startup'$'\r$' "$log" || { echo "no start-up line"; cat "$log"; exit 1; }
echo "start-up log ok"
