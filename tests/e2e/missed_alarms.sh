#!/usr/bin/env bash
# Alarms missed while the program was not running: Tarvo last ran at 07:00
# (the LastRun setting) and starts at 09:00. The alarm of 08:00 and the
# run-a-file event of 08:30 come up in one "MISSED" window (a screenshot is
# kept) and in the log; the file is not run late; alarms before the last run
# or after now are not listed. On a session bus without a notification
# service the log says once that notifications are unavailable. Exit 77
# (skipped) only when no X server or no session bus can be started.
set -uo pipefail
tarvo="$1"
artifacts="${TARVO_E2E_ARTIFACTS:-$PWD/e2e-artifacts}"
mkdir -p "$artifacts"

if ! xvfb-run -a true 2>/dev/null; then
  echo "SKIPPED: Xvfb cannot start on this machine"
  exit 77
fi

home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
log="$home/log.txt"
printf 'OWNER,Ann\r\nNOAUTOBACKUPS,-1 \r\nDATESTYLE,1\r\nLASTRUN,2030-06-01 07:00\r\n' > "$home/Tvo.ini"
printf '#!/bin/sh\ntouch "%s/ran"\n' "$home" > "$home/backup.sh"
chmod +x "$home/backup.sh"
alarm() { # id, description, alarm time, run-a-file
  printf '\t<EVENT>\r\n\t\t<IDCode>%s</IDCode>\r\n\t\t<Desc>%s</Desc>\r\n\t\t<DueDate>2030-06-01</DueDate>\r\n\t\t<AlarmSet>-1</AlarmSet>\r\n\t\t<AlarmTime>1899-12-30 %s</AlarmTime>\r\n\t\t<ExecFile>%s</ExecFile>\r\n\t\t<Filename>%s</Filename>\r\n\t\t<Owner>Ann</Owner>\r\n\t</EVENT>\r\n' \
    "$1" "$2" "$3" "$4" "$home/backup.sh"
}
{
  printf '<?xml version="1.0" encoding="iso-8859-1"?>\r\n<TVO2>\r\n'
  alarm 100001 'Early%20call' 06:30 0
  alarm 100002 'Dentist%2C%20room%204' 08:00 0
  alarm 100003 'Nightly%20backup' 08:30 -1
  alarm 100004 'Lunch' 12:00 0
  printf '</TVO2>\r\n'
} > "$home/Events.xml"

# A session bus of its own, with no notification service (and no service
# files that could start one).
printf '<busconfig><type>session</type><listen>unix:dir=%s</listen><policy context="default"><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/></policy></busconfig>\n' \
  "$home" > "$home/bus.conf"
if ! dbus-run-session --config-file="$home/bus.conf" -- true 2>/dev/null; then
  echo "SKIPPED: a D-Bus session bus cannot start on this machine"
  exit 77
fi
export home tarvo
dbus-run-session --config-file="$home/bus.conf" -- xvfb-run -a -s "-screen 0 1280x800x24" bash -c '
  set -uo pipefail
  log="$home/log.txt"
  openbox > /dev/null 2>&1 &
  XDG_CONFIG_HOME="$home/config" TARVO_HOME="$home" TARVO_NOW="2030-06-01 09:00" \
    "$tarvo" > "$home/tarvo.out" 2>&1 &
  pid=$!
  for _ in $(seq 1 200); do grep -q "Filling events" "$log" 2>/dev/null && break; sleep 0.1; done
  for _ in $(seq 1 100); do xdotool search --name "^MISSED\$" > /dev/null 2>&1 && break; sleep 0.1; done
  sleep 1.5
  xdotool search --name "^MISSED\$" > "$home/missed.windows" 2>/dev/null
  import -window root "$home/missed-alarms.png" 2>/dev/null || true
  sleep 1 # the first refresh tick stores the last-run minute
  kill -TERM $pid
  wait $pid
  echo "exit code $?" > "$home/tarvo.code"
'
status=$?
[ -f "$home/missed-alarms.png" ] && cp "$home/missed-alarms.png" "$artifacts/missed-alarms.png"

fail() { echo "FAIL: $1"; echo "--- log:"; cat "$log"; echo "--- program:"; cat "$home/tarvo.out"; exit 1; }
[ $status -eq 0 ] || fail "the X session failed"
[ -s "$home/missed.windows" ] || fail "no MISSED window came up"
grep -q $', Missed alarm: 2030-06-01 08:00 Dentist, room 4\r$' "$log" || fail "the 08:00 alarm is not logged"
grep -q $', Missed alarm: 2030-06-01 08:30 Nightly backup - its file is not run late\r$' "$log" ||
  fail "the run-a-file event is not logged"
grep -q 'Missed alarm: .*\(Early call\|Lunch\)' "$log" && fail "an alarm outside the gap is listed"
[ -e "$home/ran" ] && fail "a missed file was run late"
[ "$(grep -c 'Desktop notifications are unavailable' "$log")" = 1 ] ||
  fail "no notification service: the log should say so exactly once"
grep -q $'^LASTRUN,2030-06-01 09:0[0-9]\r$' "$home/Tvo.ini" || fail "the last-run minute was not stored"
grep -q "exit code 0" "$home/tarvo.code" || fail "the program did not quit cleanly"
[ -s "$artifacts/missed-alarms.png" ] || fail "no screenshot"
echo "missed alarms e2e ok; screenshot in $artifacts/missed-alarms.png"
