# shellcheck shell=bash
# End-to-end helpers: the real `tarvo` binary on a real X server, driven like
# a user would, its files inspected afterwards. Source this file from a test
# script (tests/e2e/*.sh, run by CTest with the binary as $1):
#
#   . "$(dirname "$0")/lib/tarvo.sh"
#   e2e_init "$1"                 # work folder $E2E_DIR (removed at exit),
#                                 # artifacts in $E2E_ARTIFACTS
#   e2e_display 1280x800x24       # own Xvfb + openbox; exit 77 if no X here
#   e2e_home ann OWNER,Ann NOAUTOBACKUPS,-1   # $ann: a home with a Tvo.ini
#   e2e_events_file "$ann/Events.xml" "$(e2e_event 100001 Dentist 2030-06-03 Layer=0)"
#   e2e_start "$ann" "2030-06-01 08:30"   # TARVO_HOME/TARVO_NOW; several
#                                         # homes may run at once
#   e2e_wait_ready "$ann"                  # main window loaded, SIGTERM safe
#   e2e_wait_log "$ann" "Filling events"   # any log line
#   win=$(e2e_window "^Tarvo 2") || e2e_fail "no main window"  # id by title
#   e2e_keys "$win" ctrl+n; e2e_type "$win" "Picnic"
#   e2e_screenshot step-1                  # PNG into $E2E_ARTIFACTS
#   e2e_stop "$ann"                        # SIGTERM, waits for a clean end
#   e2e_ini "$ann" LAYER19                 # a value of Tvo.ini ("" if absent)
#   e2e_field "$ann/Events.xml" 100001 Layer   # a field of one event
#   e2e_id_of "$ann/Events.xml" Picnic         # an event's ID code
#   e2e_has_event "$ann/Events.xml" Picnic     # whether such an event is there
#   e2e_fail "what went wrong"             # prints every home's log, exit 1
#
# Files are written as the program writes them (Windows-1252, CR LF); event
# descriptions are given percent-encoded as in the file ("Pay%20rent").
# Every wait has a timeout and fails the test with the logs when it runs out.

set -uo pipefail

E2E_HOMES=()
E2E_PIDS=()

e2e_init() {
  E2E_TARVO="$1"
  E2E_DIR=$(mktemp -d)
  # "Start at login" writes into the desktop's autostart folder: keep it here.
  export XDG_CONFIG_HOME="$E2E_DIR/config"
  E2E_ARTIFACTS="${TARVO_E2E_ARTIFACTS:-$PWD/e2e-artifacts}"
  mkdir -p "$E2E_ARTIFACTS"
  trap e2e_cleanup EXIT
}

e2e_cleanup() {
  local pid
  for pid in "${E2E_PIDS[@]}"; do kill -KILL "$pid" 2>/dev/null; done
  [ -n "${E2E_WM_PID:-}" ] && kill "$E2E_WM_PID" 2>/dev/null
  [ -n "${E2E_X_PID:-}" ] && kill "$E2E_X_PID" 2>/dev/null
  rm -rf "$E2E_DIR"
}

e2e_fail() {
  exec 1>&2
  echo "FAIL: $*"
  local home
  for home in "${E2E_HOMES[@]}"; do
    echo "--- $home/log.txt"
    tr -d "\r" < "$home/log.txt" 2>/dev/null | grep -v "^1 [0-9:]*, Type mismatch" | tail -n 60
    [ -s "$home/out.txt" ] && { echo "--- $home/out.txt"; tail -n 20 "$home/out.txt"; }
  done
  e2e_screenshot failure
  exit 1
}

# Starts Xvfb on a free display with the openbox window manager, so windows
# get frames, focus and activation as on a desktop. Exit 77 without X.
e2e_display() {
  local screen="${1:-1280x800x24}" fd_file="$E2E_DIR/display"
  command -v Xvfb >/dev/null || { echo "SKIPPED: Xvfb is not installed"; exit 77; }
  Xvfb -displayfd 1 -screen 0 "$screen" -nolisten tcp > "$fd_file" 2>"$E2E_DIR/xvfb.err" &
  E2E_X_PID=$!
  local _
  for _ in $(seq 1 100); do [ -s "$fd_file" ] && break; sleep 0.05; done
  [ -s "$fd_file" ] || { echo "SKIPPED: Xvfb cannot start here"; cat "$E2E_DIR/xvfb.err"; exit 77; }
  export DISPLAY=":$(head -n 1 "$fd_file")"
  if command -v openbox >/dev/null; then
    openbox > "$E2E_DIR/openbox.log" 2>&1 &
    E2E_WM_PID=$!
    for _ in $(seq 1 100); do xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q window && break; sleep 0.05; done
    # openbox announces itself before it manages windows: a window mapped in
    # that moment stays unframed and out of reach, so give it time to settle.
    sleep 1
  fi
}

# e2e_home NAME [KEY,VALUE ...]: a new home folder $E2E_DIR/NAME with a
# Tvo.ini of these lines; the variable NAME is set to its path.
e2e_home() {
  local name="$1" home="$E2E_DIR/$1"; shift
  mkdir -p "$home"
  local line
  : > "$home/Tvo.ini"
  for line in "$@"; do printf '%s\r\n' "$line" >> "$home/Tvo.ini"; done
  E2E_HOMES+=("$home")
  printf -v "$name" '%s' "$home"
}

# e2e_event ID DESC DUE [Tag=value ...]: one event block (a one-off event
# owned by the OWNER of nobody in particular unless Owner= is given).
e2e_event() {
  local id="$1" desc="$2" due="$3"; shift 3
  printf '\t<EVENT>\r\n\t\t<IDCode>%s</IDCode>\r\n\t\t<Desc>%s</Desc>\r\n\t\t<DueDate>%s</DueDate>\r\n' "$id" "$desc" "$due"
  local pair
  for pair in "$@"; do printf '\t\t<%s>%s</%s>\r\n' "${pair%%=*}" "${pair#*=}" "${pair%%=*}"; done
  printf '\t</EVENT>\r\n'
}

# e2e_events_file FILE BLOCK...: an event file with these blocks.
e2e_events_file() {
  local file="$1"; shift
  {
    printf '<?xml version="1.0" encoding="iso-8859-1"?>\r\n'
    local block
    for block in "$@"; do printf '<TVO2>\r\n%s</TVO2>\r\n' "$block"; done
  } > "$file"
}

# e2e_start HOME [NOW]: starts the program for HOME (output in HOME/out.txt).
e2e_start() {
  local home="$1" now="${2:-}"
  rm -f "$home/log.txt"
  if [ -n "$now" ]; then
    TARVO_HOME="$home" TARVO_NOW="$now" "$E2E_TARVO" > "$home/out.txt" 2>&1 &
  else
    TARVO_HOME="$home" "$E2E_TARVO" > "$home/out.txt" 2>&1 &
  fi
  echo $! > "$home/.pid"
  E2E_PIDS+=("$!")
}

# e2e_wait_log HOME TEXT [SECONDS]: waits for a log line containing TEXT.
e2e_wait_log() {
  local home="$1" text="$2" limit="${3:-40}" _
  for _ in $(seq 1 $((limit * 10))); do
    grep -qF -- "$text" "$home/log.txt" 2>/dev/null && return 0
    sleep 0.1
  done
  e2e_fail "no log line \"$text\" within ${limit}s in $home"
}

# e2e_wait_ready HOME: the main window has loaded and the program quits
# cleanly on SIGTERM (its handler is set up just after the last loading line).
e2e_wait_ready() {
  e2e_wait_log "$1" "Displaying system tray icon" "${2:-40}"
  sleep 0.5
}

# e2e_window TITLE [SECONDS]: prints the id of a visible window whose title
# matches TITLE (a regular expression), the newest when there are several;
# returns 1 when none shows within the time (use: id=$(...) || e2e_fail ...).
e2e_window() {
  local title="$1" limit="${2:-30}" id _
  for _ in $(seq 1 $((limit * 10))); do
    id=$(xdotool search --onlyvisible --name "$title" 2>/dev/null | tail -n 1)
    [ -n "$id" ] && { echo "$id"; return 0; }
    sleep 0.1
  done
  return 1
}

# e2e_gone WINDOW_ID [SECONDS]: waits until the window is closed.
e2e_gone() {
  local id="$1" limit="${2:-10}" _
  for _ in $(seq 1 $((limit * 10))); do
    xdotool getwindowname "$id" >/dev/null 2>&1 || return 0
    xwininfo -id "$id" 2>/dev/null | grep -q "IsViewable" || return 0
    sleep 0.1
  done
  e2e_fail "window $id is still open after ${limit}s"
}

# e2e_keys WINDOW_ID KEY...: activates the window and presses the keys
# (xdotool names: ctrl+n, alt+s, Tab, Home, Return).
e2e_keys() {
  local id="$1"; shift
  xdotool windowactivate --sync "$id" 2>/dev/null || xdotool windowfocus --sync "$id"
  local key
  for key in "$@"; do xdotool key --clearmodifiers "$key"; sleep 0.15; done
}

# e2e_type WINDOW_ID TEXT: types TEXT into the focused control of the window.
e2e_type() {
  xdotool windowactivate --sync "$1" 2>/dev/null || xdotool windowfocus --sync "$1"
  xdotool type --delay 20 "$2"
}

e2e_screenshot() {
  import -window root "$E2E_ARTIFACTS/$1.png" 2>/dev/null || true
}

# e2e_stop HOME: SIGTERM (the program saves and ends), then waits; fails when
# the program does not end cleanly within ten seconds.
e2e_stop() {
  local home="$1" pid _
  pid=$(cat "$home/.pid")
  kill -TERM "$pid" 2>/dev/null
  for _ in $(seq 1 100); do kill -0 "$pid" 2>/dev/null || break; sleep 0.1; done
  kill -0 "$pid" 2>/dev/null && e2e_fail "the program in $home did not end on SIGTERM"
  wait "$pid" 2>/dev/null
  local code=$?
  [ "$code" -eq 0 ] || e2e_fail "the program in $home ended with exit code $code"
}

# e2e_ini HOME KEY: the value stored for KEY in HOME/Tvo.ini (keys are upper
# case in the file), blanks around it removed; "" when absent.
e2e_ini() {
  tr -d '\r' < "$1/Tvo.ini" | awk -F, -v k="$(echo "$2" | tr '[:lower:]' '[:upper:]')" \
    '$1 == k { sub(/^[^,]*,/, ""); gsub(/^ +| +$/, ""); print; exit }'
}

# e2e_field FILE ID TAG: the value of TAG in the event with that ID code; ""
# when the event or the tag is missing.
e2e_field() {
  tr -d '\r' < "$1" 2>/dev/null | awk -v id="$2" -v tag="$3" '
    /<EVENT>/ { inside = 1; found = 0; value = "" }
    inside && index($0, "<IDCode>" id "</IDCode>") { found = 1 }
    inside && index($0, "<" tag ">") { v = $0; sub(".*<" tag ">", "", v); sub("</" tag ">.*", "", v); value = v }
    /<\/EVENT>/ { if (found) { print value; exit } inside = 0 }'
}

# e2e_id_of FILE DESC: the ID code of the first event with this
# (percent-encoded) description; "" when there is none.
e2e_id_of() {
  tr -d '\r' < "$1" 2>/dev/null | awk -v desc="$2" '
    /<EVENT>/ { id = ""; found = 0 }
    /<IDCode>/ { v = $0; sub(".*<IDCode>", "", v); sub("</IDCode>.*", "", v); id = v }
    index($0, "<Desc>" desc "</Desc>") { found = 1 }
    /<\/EVENT>/ { if (found) { print id; exit } }'
}

# e2e_has_event FILE DESC: whether the file holds an event with this
# (percent-encoded) description.
e2e_has_event() {
  grep -qF "<Desc>$2</Desc>" "$1" 2>/dev/null
}
