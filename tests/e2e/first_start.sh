#!/usr/bin/env bash
# A new user's first start, in the real program under a real X server with a
# window manager: the first-time options come up (a second copy started now
# hands over and ends), saving them with their defaults keeps alarm sounds
# on, and the editor refuses a new event with no weekday ticked. Screenshots
# of each step are kept. Exit 77 (skipped) only when no X server can start.
set -uo pipefail
tarvo="$1"
artifacts="${TARVO_E2E_ARTIFACTS:-$PWD/e2e-artifacts}"
mkdir -p "$artifacts"

if ! xvfb-run -a true 2>/dev/null; then
  echo "SKIPPED: Xvfb cannot start on this machine"
  exit 77
fi
for tool in openbox xdotool import; do
  command -v "$tool" >/dev/null || { echo "missing $tool (scripts/install-deps.sh installs it)"; exit 1; }
done

home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
# "Start at login" writes into the desktop's autostart folder: keep it here.
export XDG_CONFIG_HOME="$home/config"
export home tarvo artifacts

xvfb-run -a -s "-screen 0 1280x800x24" bash -c '
  set -uo pipefail
  log="$home/log.txt"
  fail() { echo "FAIL: $1"; kill "$pid" 2>/dev/null; exit 1; }
  waitfor() { for _ in $(seq 1 100); do grep -q "$1" "$log" 2>/dev/null && return 0; sleep 0.1; done; return 1; }
  window() { for _ in $(seq 1 50); do xdotool search --name "$1" >/dev/null 2>&1 && return 0; sleep 0.1; done; return 1; }
  openbox >/dev/null 2>&1 &
  sleep 1
  TARVO_HOME="$home" TARVO_NOW="2030-06-03 09:00" "$tarvo" > "$home/first.out" 2>&1 &
  pid=$!
  waitfor "First time setup" || fail "no first-time setup"
  sleep 1
  import -window root "$artifacts/first-start.png"
  xdotool key Return                                  # the first-time message
  window "Reminder Options" || fail "no options window"
  sleep 0.5
  import -window root "$artifacts/first-start-options.png"

  # A second copy while the first still sits in its first-time options.
  TARVO_HOME="$home" "$tarvo" > "$home/second.out" 2>&1 &
  second=$!
  for _ in $(seq 1 80); do kill -0 $second 2>/dev/null || break; sleep 0.1; done
  kill -0 $second 2>/dev/null && { kill $second; fail "the second copy did not hand over and end"; }
  wait $second || fail "the second copy failed"

  xdotool search --name "Reminder Options" windowactivate --sync key alt+s
  waitfor "Filling events" || fail "no main window after saving the options"
  waitfor "Command passed in: SHOW" || fail "the second copy'"'"'s command was lost"
  sleep 1
  import -window root "$artifacts/first-start-main.png"

  xdotool search --name "Tarvo 2" windowactivate --sync key ctrl+n
  window "Add/Edit event" || fail "no editor"
  sleep 0.3
  xdotool type --delay 80 "Bins out"
  xdotool key Tab
  xdotool search --name "Add/Edit event" windowactivate --sync key alt+s
  sleep 1
  import -window root "$artifacts/editor-refuses-empty-weekdays.png"
  xdotool key Return                                  # OK on the refusal
  sleep 0.3
  xdotool search --name "Add/Edit event" windowactivate --sync key alt+a

  kill -TERM $pid
  wait $pid
  echo $? > "$home/first.code"
'
status=$?
fail() { echo "FAIL: $1"; echo "--- log:"; cat "$home/log.txt"; echo "--- first copy:"; cat "$home/first.out"; exit 1; }
[ $status -eq 0 ] || fail "see above"
[ "$(cat "$home/first.code")" = 0 ] || fail "the program did not quit cleanly"
[ -s "$home/alarm.wav" ] || fail "no default alarm.wav"
grep -qi '^NOSOUNDS,-1' "$home/Tvo.ini" && fail "the first-time options switched sounds off"
grep -q 'Bins out' "$home/Events.xml" 2>/dev/null && fail "an event with no weekday was stored"

# Cancel in the first-time options ends the program and leaves the disk as it
# was: no log, no alarm sound, not even the home folder it made.
fresh="$home/fresh-home"
export fresh
xvfb-run -a -s "-screen 0 1280x800x24" bash -c '
  openbox >/dev/null 2>&1 &
  sleep 1
  TARVO_HOME="$fresh" "$tarvo" > "$home/cancel.out" 2>&1 &
  pid=$!
  for _ in $(seq 1 100); do grep -q "First time setup" "$fresh/log.txt" 2>/dev/null && break; sleep 0.1; done
  sleep 1
  xdotool key Return                                  # the first-time message
  for _ in $(seq 1 50); do xdotool search --name "Reminder Options" >/dev/null 2>&1 && break; sleep 0.1; done
  sleep 0.5
  xdotool search --name "Reminder Options" windowactivate --sync key alt+c
  for _ in $(seq 1 100); do kill -0 $pid 2>/dev/null || break; sleep 0.1; done
  kill -0 $pid 2>/dev/null && { kill $pid; echo "still running after Cancel" > "$home/cancel.code"; exit 0; }
  wait $pid
  echo $? > "$home/cancel.code"
'
[ "$(cat "$home/cancel.code")" = 0 ] || { cat "$home/cancel.out"; fail "Cancel: $(cat "$home/cancel.code")"; }
[ -e "$fresh" ] && fail "a cancelled first start left files: $(ls -A "$fresh" | tr '\n' ' ')"
echo "first start e2e ok; screenshots in $artifacts"
