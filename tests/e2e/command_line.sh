#!/usr/bin/env bash
# The command line of the real binary: first with no copy of Tarvo running
# (it reads and writes the files itself), then with the real program running
# under Xvfb (--add and --import are done by the running copy, whose lists
# and files must stay one: its own save at quit keeps what was added).
# Exit 77 (skipped) only when no X server can be started for the second part.
set -uo pipefail
tarvo="$1"
home=$(mktemp -d)
trap 'chmod -R u+rwx "$home" 2>/dev/null; rm -rf "$home"' EXIT
export TARVO_HOME="$home" TARVO_NOW="2030-06-01 08:30"
printf 'OWNER,Ann\r\nNOAUTOBACKUPS,-1\r\nDATESTYLE,1\r\nLAYER3,Work\r\n' > "$home/Tvo.ini"
printf '1 08:00:00, earlier log line\r\n' > "$home/log.txt"

fail() { echo "FAIL: $1"; [ -f "$home/log.txt" ] && { echo "--- log:"; cat "$home/log.txt"; }; exit 1; }
run() { # expected exit code, then the arguments; output in $out, errors in $err
  local want="$1"; shift
  out=$("$tarvo" "$@" 2>"$home/stderr"); local code=$?
  err=$(cat "$home/stderr")
  [ "$code" -eq "$want" ] || fail "tarvo $* gave exit code $code, not $want (stdout: $out; stderr: $err)"
}
one_line_error() { [ "$(printf '%s\n' "$err" | wc -l)" -eq 1 ] && [ -n "$err" ] || fail "not one line on stderr: $err"; }

cat > "$home/other.ics" <<'EOF'
BEGIN:VCALENDAR
VERSION:2.0
PRODID:-//Another calendar//EN
BEGIN:VEVENT
UID:birthday-1
SUMMARY:Mia's birthday
DTSTART;VALUE=DATE:19900604
RRULE:FREQ=YEARLY
CATEGORIES:Family
END:VEVENT
BEGIN:VEVENT
UID:course-1
SUMMARY:Course
DTSTART:20300520T180000
RRULE:FREQ=WEEKLY;COUNT=4
END:VEVENT
BEGIN:VEVENT
UID:old-1
SUMMARY:Long gone
DTSTART;VALUE=DATE:20200101
END:VEVENT
END:VCALENDAR
EOF

# --- No copy running ---------------------------------------------------------
run 0 --version; [ "$out" = "Tarvo 2.0.0" ] || [[ "$out" == Tarvo* ]] || fail "--version: $out"
run 0 --help; [[ "$out" == *--agenda* && "$out" == *--import* ]] || fail "--help lists no options"
run 0 --add "Dentist, room 4" --date 03/06/2030 --time 09:30 --category work
[[ "$out" == *'Added "Dentist, room 4" on 03/06/2030 09:30.'* ]] || fail "--add said: $out"
grep -q '<Desc>Dentist,%20room%204</Desc>' "$home/Events.xml" || fail "the event is not in Events.xml"
cp "$home/Events.xml" "$home/before.xml"
run 1 --add "Nothing" --date 31/02/2030; one_line_error
run 1 --add "Nothing" --date 2030-06-04 --time 25:00; one_line_error
run 1 --add "Nothing" --date 2030-06-04 --category Nope; one_line_error
run 1 --import "$home/before.xml"; one_line_error
printf 'BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nSUMMARY:cut\r\n' > "$home/cut.ics"
run 1 --import "$home/cut.ics"; one_line_error
run 2 --import "$home/missing.ics"; one_line_error
run 1 --agenda soon; one_line_error
cmp -s "$home/Events.xml" "$home/before.xml" || fail "bad input changed Events.xml"

run 0 --import "$home/other.ics"
[[ "$out" == *"Imported 2 events"* && "$out" == *"COUNT or UNTIL"* && "$out" == *"Skipped 1: 1 in the past"* ]] \
  || fail "import summary: $out"
run 0 --agenda 7
# The course has no category: it goes to the editor's first one.
expected=$'Mon 03/06/2030 09:30  Dentist, room 4  [Work]\nMon 03/06/2030 18:00  Course  [Layer 1]\nTue 04/06/2030        Mia\'s birthday  [Family]'
[ "$out" = "$expected" ] || fail "agenda:
$out
expected:
$expected"
run 0 --agenda 0; [[ "$out" == "Nothing due from 01/06/2030 to 01/06/2030." ]] || fail "empty agenda: $out"
run 0 --export "$home/all.ics"
head -n 1 "$home/all.ics" | grep -q '^BEGIN:VCALENDAR' || fail "the export is no calendar"
[ "$(grep -c '^BEGIN:VEVENT' "$home/all.ics")" -eq 3 ] || fail "the export does not hold 3 events"
grep 'RRULE:FREQ=YEARLY' "$home/all.ics" | grep 'BYMONTH=6' | grep -q 'BYMONTHDAY=4' \
  || fail "the birthday's rule: $(grep RRULE "$home/all.ics")"
head -n 1 "$home/log.txt" | grep -q 'earlier log line' || fail "the command line restarted the log"

mv "$home/Events.xml" "$home/keep.xml"; mkdir "$home/Events.xml"
run 2 --agenda; one_line_error
rmdir "$home/Events.xml"; mv "$home/keep.xml" "$home/Events.xml"
echo "command line without a running copy ok"

# --- With the program running -------------------------------------------------
if ! xvfb-run -a true 2>/dev/null; then
  echo "SKIPPED: Xvfb cannot start on this machine (the part without a running copy passed)"
  exit 77
fi
cat > "$home/more.ics" <<'EOF'
BEGIN:VCALENDAR
VERSION:2.0
PRODID:-//Another calendar//EN
BEGIN:VEVENT
UID:team-1
SUMMARY:Team meeting
DTSTART:20300605T100000
RRULE:FREQ=MONTHLY;BYDAY=1WE
BEGIN:VALARM
ACTION:DISPLAY
TRIGGER:-PT10M
END:VALARM
END:VEVENT
END:VCALENDAR
EOF
export tarvo home
xvfb-run -a -s "-screen 0 1280x800x24" bash -c '
  set -uo pipefail
  log="$home/log.txt"
  rm -f "$log"
  "$tarvo" > "$home/gui.out" 2>&1 &
  pid=$!
  for _ in $(seq 1 200); do grep -q "Filling events" "$log" 2>/dev/null && break; sleep 0.1; done
  grep -q "Filling events" "$log" || { echo "the program did not start"; kill $pid; exit 1; }
  "$tarvo" --add "Call the plumber" --date 2030-06-02 --time 07:45 > "$home/add.out" 2>&1; echo $? > "$home/add.code"
  "$tarvo" --import "$home/more.ics" > "$home/import.out" 2>&1; echo $? > "$home/import.code"
  "$tarvo" --add "Bad" --date yesterday > "$home/bad.out" 2>&1; echo $? > "$home/bad.code"
  "$tarvo" --agenda 5 > "$home/agenda.out" 2>&1
  kill -TERM $pid
  wait $pid
  echo $? > "$home/gui.code"
'
[ "$(cat "$home/add.code")" = 0 ] || fail "--add to the running copy: $(cat "$home/add.out")"
[ "$(cat "$home/import.code")" = 0 ] || fail "--import to the running copy: $(cat "$home/import.out")"
[ "$(cat "$home/bad.code")" = 1 ] || fail "bad --add to the running copy: $(cat "$home/bad.out")"
grep -q 'Imported 1 event' "$home/import.out" || fail "import summary: $(cat "$home/import.out")"
grep -q $', Command passed in: add\r$' "$home/log.txt" || fail "the running copy did not do the --add"
grep -q ', Command passed in: import ' "$home/log.txt" || fail "the running copy did not do the --import"
head -n 1 "$home/log.txt" | grep -q $'Log file created \r$' || fail "the running copy's log was restarted"
[ "$(grep -c 'Log file created' "$home/log.txt")" -eq 1 ] || fail "the log was restarted"
grep -q 'Sun 02/06/2030 07:45  Call the plumber' "$home/agenda.out" || fail "agenda: $(cat "$home/agenda.out")"
grep -q 'Wed 05/06/2030 10:00  Team meeting' "$home/agenda.out" || fail "agenda: $(cat "$home/agenda.out")"
[ "$(cat "$home/gui.code")" = 0 ] || fail "the program did not quit cleanly: $(cat "$home/gui.out")"
# The running copy saved its own lists at quit: what it was handed is in them.
for desc in 'Call%20the%20plumber' 'Team%20meeting' 'Dentist,%20room%204' 'Mia%27s%20birthday'; do
  grep -q "<Desc>$desc</Desc>" "$home/Events.xml" || fail "$desc is missing from Events.xml after the quit"
done
echo "command line e2e ok"
