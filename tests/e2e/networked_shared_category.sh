#!/usr/bin/env bash
# Networked mode, the "Shared" category (layer 0) through the real program:
# Ann starts with an event in "Shared", saves the settings, restarts and adds
# another one in the editor; both stay in layer 0, stay in her published file,
# and reach Bob, whose program files them under "Shared" too (no new category
# named "Shared"). Her event shared with Carl only stays in her files. Exit 77
# only when no X server can start.
. "$(dirname "$0")/lib/tarvo.sh"
e2e_init "$1"
e2e_display 1280x800x24

shared="$E2E_DIR/shared"
mkdir -p "$shared"
printf 'Ann\r\nBob\r\n' > "$shared/TVOShared.ini"
net=(NETWORKED,-1 "SHAREDDATAPATH,$shared/" NOAUTOBACKUPS,-1 NOSOUNDS,-1 DATESTYLE,1)
e2e_home ann OWNER,Ann "${net[@]}"
e2e_home bob OWNER,Bob "${net[@]}"
e2e_events_file "$ann/Events.xml" \
  "$(e2e_event 100001 'Family%20dinner' 2030-06-20 Layer=0 Owner=Ann RecurrenceType=0)" \
  "$(e2e_event 100002 'For%20Carl' 2030-06-21 Layer=3 Owner=Ann SharedEvent=-1 \
      ShareWithSpecific=-1 ShareNames=Carl%0D%0A)"
now="2030-06-01 08:30"
published="$shared/Shared_Ann.xml"

in_layer_0() { # FILE ID: the event is there, in layer 0
  [ "$(e2e_field "$1" "$2" Layer)" = "0" ] || e2e_fail "$2 is not in layer 0 in $1 (layer '$(e2e_field "$1" "$2" Layer)')"
}
no_new_category() { # HOME: no category 1 to 19 was created for the name "Shared"
  local found
  found=$(tr -d '\r' < "$1/Tvo.ini" | grep -iE '^LAYER(1[0-9]|[1-9]),Shared$')
  [ -z "$found" ] || e2e_fail "a category \"Shared\" was created in $1: $found"
}

# 1. Networked start, then Settings -> Save.
e2e_start "$ann" "$now"
e2e_wait_ready "$ann"
main=$(e2e_window "^Tarvo 2") || e2e_fail "no main window"
in_layer_0 "$published" 100001
e2e_keys "$main" alt+t Down Return
options=$(e2e_window "^Reminder Options$") || e2e_fail "Settings did not open"
e2e_keys "$options" alt+s
e2e_gone "$options"
e2e_screenshot ann-after-settings
e2e_stop "$ann"
in_layer_0 "$ann/Events.xml" 100001
in_layer_0 "$published" 100001
no_new_category "$ann"

# 2. A restart, and another event added in "Shared" through the editor.
e2e_start "$ann" "$now"
e2e_wait_ready "$ann"
main=$(e2e_window "^Tarvo 2") || e2e_fail "no main window after the restart"
e2e_keys "$main" ctrl+n
editor=$(e2e_window "Add/Edit event") || e2e_fail "the editor did not open"
e2e_type "$editor" "Picnic"
e2e_keys "$editor" Tab Home Tab Tab Tab Tab Tab space # "Shared", then Monday
e2e_screenshot ann-editor
e2e_keys "$editor" alt+s
e2e_gone "$editor"
e2e_screenshot ann-list
e2e_stop "$ann"
picnic=$(e2e_id_of "$ann/Events.xml" Picnic)
[ -n "$picnic" ] || e2e_fail "the new event is not in Events.xml"
for id in 100001 "$picnic"; do
  in_layer_0 "$ann/Events.xml" "$id"
  in_layer_0 "$published" "$id"
done
no_new_category "$ann"
# An own event shared with someone else only stays hers, and published.
for file in "$ann/Events.xml" "$published"; do
  [ "$(e2e_field "$file" 100002 Layer)" = "3" ] || e2e_fail "the event for Carl left $file or its layer"
done

# 3. Bob's program finds both among Ann's shared events, in his "Shared".
e2e_start "$bob" "$now"
e2e_wait_ready "$bob"
e2e_wait_log "$bob" "Loading from $published"
e2e_screenshot bob-list
e2e_stop "$bob"
no_new_category "$bob"
echo "networked Shared category e2e ok; screenshots in $E2E_ARTIFACTS"
