#!/usr/bin/env bash
# Times `tarvo --agenda 7` over a home folder of 10,000 events against the
# remind program printing today's reminders from 10,000 reminders: whole
# processes, several runs each, medians and their ratio.
#   bash bench/agenda_vs_remind.sh [path/to/tarvo] [runs]
set -euo pipefail
tarvo="${1:-build/tarvo}"
runs="${2:-31}"
count=10000

if ! command -v remind >/dev/null; then
  bash "$(dirname "$0")/../scripts/install-deps.sh"
fi
[ -x "$tarvo" ] || { echo "no tarvo at $tarvo (build it first)"; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
today=$(date +%F)

# Tarvo's home: settings and an events file with every rule, most repeating,
# due dates spread over the coming year (as a running Tarvo keeps them).
printf 'OWNER,Ann\r\nNOAUTOBACKUPS,-1\r\nDATESTYLE,1\r\nLAYER3,Work\r\n' > "$work/Tvo.ini"
awk -v n="$count" -v today="$today" 'BEGIN {
  srand(1121);
  split(today, t, "-");
  base = mktime(t[1] " " t[2] " " t[3] " 12 00 00");
  printf "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>\r\n";
  for (i = 0; i < n; i++) {
    type = i % 6;
    due = strftime("%Y-%m-%d", base + int(rand() * 365) * 86400);
    recurring = (i % 5 == 0) ? "0" : "-1";
    timed = (i % 3 == 0) ? "-1" : "0";
    printf "<TVO2>\r\n\t<EVENT>\r\n";
    printf "\t\t<IDCode>%06d</IDCode>\r\n\t\t<AlarmSet>%s</AlarmSet>\r\n", i, timed;
    printf "\t\t<AlarmTime>1899-12-30 %02d:%02d</AlarmTime>\r\n", 8 + i % 10, 0;
    printf "\t\t<DayNumber>%d</DayNumber>\r\n\t\t<DayOfMonth>%d</DayOfMonth>\r\n", 1 + i % 5, 1 + int(rand() * 31);
    printf "\t\t<DayOfWeek>%d</DayOfWeek>\r\n\t\t<DaysLeft>0</DaysLeft>\r\n", 1 + i % 7;
    printf "\t\t<DaysWarning>%d</DaysWarning>\r\n\t\t<Deleted>0</Deleted>\r\n\t\t<MailSent>0</MailSent>\r\n", i % 4;
    printf "\t\t<Desc>Reminder%%20number%%20%d%%20with%%20a%%20description%%20of%%20usual%%20length</Desc>\r\n", i;
    printf "\t\t<DueDate>%s</DueDate>\r\n\t\t<DueTime>1899-12-30 %02d:30</DueTime>\r\n", due, 8 + i % 10;
    printf "\t\t<Layer>%d</Layer>\r\n\t\t<SharedLayerName></SharedLayerName>\r\n\t\t<Email></Email>\r\n", i % 4;
    printf "\t\t<MinutesWarning>30</MinutesWarning>\r\n\t\t<MonthNumber>%d</MonthNumber>\r\n", (type == 4) ? 0 : 13;
    printf "\t\t<Owner>Ann</Owner>\r\n\t\t<Period>%d</Period>\r\n", 1 + i % 4;
    printf "\t\t<RecurrenceType>%d</RecurrenceType>\r\n\t\t<Recurring>%s</Recurring>\r\n", type, recurring;
    printf "\t\t<StartDate>%s</StartDate>\r\n\t\t<WeekDays>%d</WeekDays>\r\n", due, 2 * (1 + int(rand() * 127));
    printf "\t\t<SharedEvent>0</SharedEvent>\r\n\t\t<ExecFile>0</ExecFile>\r\n\t\t<Filename></Filename>\r\n";
    printf "\t\t<WavFile></WavFile>\r\n\t\t<PlayWav>0</PlayWav>\r\n\t\t<ShareWithSpecific>0</ShareWithSpecific>\r\n";
    printf "\t\t<ShareNames></ShareNames>\r\n\t</EVENT>\r\n</TVO2>\r\n";
  }
}' > "$work/Events.xml"

# The same number of reminders for remind, with a similar mix of rules.
awk -v n="$count" 'BEGIN {
  srand(1121);
  split("Mon Tue Wed Thu Fri Sat Sun", day, " ");
  split("Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec", mon, " ");
  for (i = 0; i < n; i++) {
    k = i % 6; msg = "Reminder number " i " with a description of usual length";
    at = (i % 3 == 0) ? sprintf(" AT %02d:30", 8 + i % 10) : "";
    if (k == 0) printf "REM %s %s +%d%s MSG %s\n", day[1 + i % 7], day[1 + (i + 3) % 7], i % 4, at, msg;
    else if (k == 1) printf "REM %d +%d%s MSG %s\n", 1 + int(rand() * 28), i % 4, at, msg;
    else if (k == 2) printf "REM %d %s 2026 *%d +%d%s MSG %s\n", 1 + int(rand() * 28), mon[1 + i % 12], 30 * (1 + i % 4), i % 4, at, msg;
    else if (k == 3) printf "REM %s %d %s 2026 *%d +%d%s MSG %s\n", day[1 + i % 7], 1 + int(rand() * 28), mon[1 + i % 12], 7 * (1 + i % 4), i % 4, at, msg;
    else if (k == 4) printf "REM %s %d -7 +%d%s MSG %s\n", day[1 + i % 7], 1 + 7 * (i % 4), i % 4, at, msg;
    else printf "REM %d %s 2026 *%d +%d%s MSG %s\n", 1 + int(rand() * 28), mon[1 + i % 12], 1 + i % 4, i % 4, at, msg;
  }
}' > "$work/reminders.rem"

# Median wall time of a command in milliseconds over $runs runs (one warm-up).
median_ms() {
  "$@" > /dev/null 2>&1 || { echo "failed: $*" >&2; exit 1; }
  local times=()
  for _ in $(seq 1 "$runs"); do
    local start end
    start=$(date +%s%N)
    "$@" > /dev/null 2>&1
    end=$(date +%s%N)
    times+=($(( (end - start) / 1000 )))
  done
  printf '%s\n' "${times[@]}" | sort -n | awk '{ a[NR] = $1 } END { printf "%.2f", a[int((NR + 1) / 2)] / 1000 }'
}

lines_tarvo=$(TARVO_HOME="$work" "$tarvo" --agenda 7 | wc -l)
lines_remind=$(remind -q "$work/reminders.rem" | grep -c . || true)
tarvo_ms=$(TARVO_HOME="$work" median_ms "$tarvo" --agenda 7)
remind_ms=$(median_ms remind -q "$work/reminders.rem")
ratio=$(awk -v a="$tarvo_ms" -v b="$remind_ms" 'BEGIN { printf "%.2f", a / b }')
echo "tarvo --agenda 7 over $count events ($lines_tarvo lines): median $tarvo_ms ms of $runs runs"
echo "remind -q over $count reminders ($lines_remind lines): median $remind_ms ms of $runs runs"
echo "ratio tarvo/remind: $ratio"
