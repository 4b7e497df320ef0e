#!/usr/bin/env bash
# The real program under a real X server: it starts with its own home folder,
# writes its log, shows the main window with the day's reminder and alarm
# windows (a screenshot is kept), wakes up when a second copy is started
# (which ends by itself), and quits cleanly on SIGTERM. Exit 77 (skipped)
# only when no X server can be started here.
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
printf 'OWNER,Ann\r\nNOAUTOBACKUPS,-1 \r\n' > "$home/Tvo.ini"
event() { # id, description, due date, days warning, recurrence type, recurring
  printf '<TVO2>\r\n\t<EVENT>\r\n\t\t<IDCode>%s</IDCode>\r\n\t\t<Desc>%s</Desc>\r\n\t\t<DueDate>%s</DueDate>\r\n\t\t<DaysWarning>%s</DaysWarning>\r\n\t\t<RecurrenceType>%s</RecurrenceType>\r\n\t\t<Recurring>%s</Recurring>\r\n\t\t<WeekDays>254</WeekDays>\r\n\t\t<Owner>Ann</Owner>\r\n\t</EVENT>\r\n</TVO2>\r\n' "$@"
}
{
  printf '<?xml version="1.0" encoding="iso-8859-1"?>\r\n'
  event 100001 'Dentist%2C%20room%204' 2030-06-03 7 1 0
  event 100002 'Pay%20the%20rent' 2030-06-05 3 1 0
  event 100003 'Birthday%20party' 2030-06-20 14 1 0
  event 100004 'Water%20the%20plants' 2030-06-01 0 0 -1
  printf '<TVO2>\r\n\t<EVENT>\r\n\t\t<IDCode>100005</IDCode>\r\n\t\t<Desc>Call%%20the%%20bank</Desc>\r\n\t\t<DueDate>2030-06-01</DueDate>\r\n\t\t<AlarmSet>-1</AlarmSet>\r\n\t\t<AlarmTime>1899-12-30 08:30</AlarmTime>\r\n\t\t<RecurrenceType>5</RecurrenceType>\r\n\t\t<Period>7</Period>\r\n\t\t<Owner>Ann</Owner>\r\n\t</EVENT>\r\n</TVO2>\r\n'
} > "$home/Events.xml"

export home tarvo
xvfb-run -a -s "-screen 0 1280x800x24" bash -c '
  set -uo pipefail
  log="$home/log.txt"
  command -v openbox >/dev/null && { openbox >/dev/null 2>&1 & sleep 1; }
  TARVO_HOME="$home" TARVO_NOW="2030-06-01 08:30" "$tarvo" > "$home/first.out" 2>&1 &
  pid=$!
  for _ in $(seq 1 200); do grep -q "Filling events" "$log" 2>/dev/null && break; sleep 0.1; done
  sleep 5 # the reminders come up after 2 s, the first alarm check after 1.5 + 2 s
  import -window root "$home/main-window.png" 2>/dev/null || true
  for title in "TODAY! - 01/06/2030" "COMING UP - 01/06/2030" "ALARM! - 01/06/2030 08:30"; do
    xdotool search --name "^$title\$" >/dev/null || { echo "no window titled $title"; kill $pid; exit 1; }
  done
  TARVO_HOME="$home" "$tarvo" > "$home/second.out" 2>&1 &
  second=$!
  for _ in $(seq 1 100); do kill -0 $second 2>/dev/null || break; sleep 0.1; done
  if kill -0 $second 2>/dev/null; then echo "the second copy did not end"; kill $second; kill $pid; exit 1; fi
  wait $second || { echo "the second copy failed"; cat "$home/second.out"; kill $pid; exit 1; }
  for _ in $(seq 1 50); do grep -q "Command passed in: SHOW" "$log" && break; sleep 0.1; done
  kill -TERM $pid
  wait $pid
  echo "first copy exit code $?" > "$home/first.code"
'
status=$?
[ -f "$home/main-window.png" ] && cp "$home/main-window.png" "$artifacts/main-window.png"
[ $status -eq 0 ] || { cat "$log"; exit 1; }

fail() { echo "FAIL: $1"; echo "--- log:"; cat "$log"; echo "--- first copy:"; cat "$home/first.out"; exit 1; }
head -n 1 "$log" | grep -q $'Log file created \r$' || fail "the log does not start fresh"
sed -n 7p "$log" | grep -q $', TVO Startup\r$' || fail "TVO Startup is not the first line after the header"
grep -q $', Command passed in: SHOW\r$' "$log" || fail "the running copy was not woken"
grep -q 'Main window' "$log" || fail "Runner_ShowWindow did not run"
grep -q "first copy exit code 0" "$home/first.code" || fail "the first copy did not quit cleanly"
grep -q $', TVO ending\r$' "$log" || fail "no clean ending in the log"
[ -s "$artifacts/main-window.png" ] || fail "no screenshot"
echo "main window e2e ok; screenshot in $artifacts/main-window.png"
