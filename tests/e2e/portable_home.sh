#!/usr/bin/env bash
# A copied home folder (a portable install carried to another place) uses its
# own data files: the copy's settings point at its own Events.xml, even when
# the settings were written with an absolute path into the original home.
. "$(dirname "$0")/lib/tarvo.sh"
e2e_init "$1"
e2e_display 1024x768x24

e2e_home Tarvo OWNER,Ann NOAUTOBACKUPS,-1 NOSOUNDS,-1
sed -i "1i DATAPATH,$Tarvo/data\r" "$Tarvo/Tvo.ini" # as older settings files hold it
mkdir -p "$Tarvo/data"
e2e_events_file "$Tarvo/data/Events.xml" "$(e2e_event 100001 'Original' 2030-06-20)"

mkdir -p "$E2E_DIR/stick"
cp -r "$Tarvo" "$E2E_DIR/stick/"
copy="$E2E_DIR/stick/Tarvo"
E2E_HOMES+=("$copy")
e2e_events_file "$copy/data/Events.xml" "$(e2e_event 100002 'On%20the%20stick' 2030-06-21)"

e2e_start "$copy" "2030-06-01 08:30"
e2e_wait_ready "$copy"
e2e_stop "$copy"
grep -qF "DB file: $copy/data/Events.xml" "$copy/log.txt" || e2e_fail "the copy did not use its own data folder"
[ "$(e2e_ini "$copy" DATAPATH)" = "data" ] || e2e_fail "DATAPATH is '$(e2e_ini "$copy" DATAPATH)', not relative"
e2e_has_event "$Tarvo/data/Events.xml" Original || e2e_fail "the original's events changed"
e2e_has_event "$Tarvo/data/Events.xml" 'On%20the%20stick' && e2e_fail "the copy wrote into the original"
e2e_has_event "$copy/data/Events.xml" 'On%20the%20stick' || e2e_fail "the copy lost its events"
echo "portable home e2e ok"
