# shellcheck shell=bash
# A family on one shared folder: three homes (Ann, Bob, Carl) in networked
# mode on $shared, for the multi-user end-to-end scripts. Builds on tarvo.sh:
#
#   . "$(dirname "$0")/lib/family.sh"
#   family_init "$1"               # X server, $shared, homes $ann $bob $carl
#   family_list                    # TVOShared.ini as "Ann,Bob" (one line)
#   family_write_list Ann Bob      # writes TVOShared.ini as the program does
#   win=$(family_options "$ann") || exit 1  # opens Settings in the running
#                                  # program (a failure was reported already)
#   family_set_id "$win" Anna      # types an ID into the options' ID box
#   family_answer "$ann" alt+y     # answers the program's message box
#   family_header_only FILE        # the file is an event file with no event
#
# Each program refreshes every TARVO_REFRESH_MS (short here), so one copy sees
# another's change within a second or two.
. "$(dirname "${BASH_SOURCE[0]}")/tarvo.sh"

export TARVO_REFRESH_MS=700
family_now="2030-06-01 08:30"

family_init() {
  e2e_init "$1"
  e2e_display 1280x800x24
  shared="$E2E_DIR/shared"
  mkdir -p "$shared"
  local net=(NETWORKED,-1 "SHAREDDATAPATH,$shared/" NOAUTOBACKUPS,-1 NOSOUNDS,-1 DATESTYLE,1)
  e2e_home ann OWNER,Ann "${net[@]}"
  e2e_home bob OWNER,Bob "${net[@]}"
  e2e_home carl OWNER,Carl "${net[@]}"
}

family_list() {
  tr -d '\r' < "$shared/TVOShared.ini" 2>/dev/null | paste -sd, -
}

family_write_list() {
  : > "$shared/TVOShared.ini"
  local name
  for name in "$@"; do printf '%s\r\n' "$name" >> "$shared/TVOShared.ini"; done
}

# family_expect_list "Ann,Bob" WHY: fails unless TVOShared.ini lists exactly these.
family_expect_list() {
  [ "$(family_list)" = "$1" ] || e2e_fail "$2: TVOShared.ini lists '$(family_list)', expected '$1'"
}

# family_window HOME TITLE: the id of that program's visible window whose
# title matches TITLE (several programs show windows of the same title).
family_window() {
  local pid id _
  pid=$(cat "$1/.pid")
  for _ in $(seq 1 150); do
    for id in $(xdotool search --onlyvisible --name "$2" 2>/dev/null | tac); do
      [ "$(xdotool getwindowpid "$id" 2>/dev/null)" = "$pid" ] && { echo "$id"; return 0; }
    done
    sleep 0.1
  done
  return 1
}

# family_options HOME: Settings from the running program's main window.
family_options() {
  local main
  main=$(family_window "$1" "^Tarvo 2") || e2e_fail "no main window for $1"
  e2e_keys "$main" alt+t Down Return
  family_window "$1" "^Reminder Options$" || e2e_fail "Settings did not open for $1"
}

# family_set_id WINDOW ID: replaces the text of the ID box.
family_set_id() {
  e2e_keys "$1" alt+i ctrl+a BackSpace
  e2e_type "$1" "$2"
}

# family_answer HOME "KEYS" [...]: answers that program's boxes in turn, one
# argument each: waits for the box (title "Tarvo", or TITLE= before the keys:
# "TITLE=Search Tab Return"), presses its keys and waits until it closes.
family_answer() {
  local home="$1" box title id key; shift
  for box in "$@"; do
    title="Tarvo"
    case "$box" in TITLE=*) title="${box%% *}"; title="${title#TITLE=}"; box="${box#* }" ;; esac
    id=$(family_window "$home" "^$title\$") || e2e_fail "no \"$title\" box in $home for: $box"
    xdotool windowactivate --sync "$id" 2>/dev/null || xdotool windowfocus --sync "$id"
    sleep 0.2
    for key in $box; do xdotool key --clearmodifiers "$key"; sleep 0.15; done
    e2e_gone "$id" 5
  done
}

# family_header_only FILE: exists and holds the header line only.
family_header_only() {
  [ -f "$1" ] || e2e_fail "$1 is missing"
  [ "$(tr -d '\r' < "$1")" = '<?xml version="1.0" encoding="iso-8859-1"?>' ] ||
    e2e_fail "$1 still holds events: $(tr -d '\r' < "$1" | grep -c '<EVENT>') of them"
}

# family_refused HOME TEXT: the program logged a refusal containing TEXT.
family_refused() {
  e2e_wait_log "$1" "$2" 5
}
