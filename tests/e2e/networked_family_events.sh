#!/usr/bin/env bash
# Networked events across a family's copies: Ann publishes and stops; Bob,
# whose clock is four days ahead, sees her passed one-off event as hers (Edit,
# Push and Delete refused, nothing of hers lands in his files, his own expired
# event with the same ID code kept); her category "Work" takes a free slot,
# not the default-named one his own events sit in; while the shared folder is
# away his program says so once and reads it again when it is back. Then Carl
# leaves networked mode and stops sharing, while Ann leaves and keeps her
# shared copy. Exit 77 only when no X server can start.
. "$(dirname "$0")/lib/family.sh"
family_init "$1"

family_write_list Ann Bob Carl
printf 'LAYER4,Work\r\n' >> "$ann/Tvo.ini"
e2e_events_file "$ann/Events.xml" \
  "$(e2e_event 100001 'Family%20dinner' 2030-06-20 Layer=0 Owner=Ann)" \
  "$(e2e_event 100002 'Team%20day' 2030-06-25 Layer=4 Owner=Ann SharedEvent=-1)" \
  "$(e2e_event 100003 'Concert' 2030-06-02 Layer=0 Owner=Ann)"
e2e_events_file "$bob/Events.xml" \
  "$(e2e_event 200001 'Bike%20service' 2030-06-28 Layer=19 Owner=Bob)"
e2e_events_file "$bob/Expired.xml" \
  "$(e2e_event 100003 'Old%20receipt' 2030-05-01 Layer=2 Owner=Bob)"
e2e_events_file "$carl/Events.xml" \
  "$(e2e_event 300001 'Carl%20party' 2030-06-14 Layer=0 Owner=Carl)"
ann_file="$shared/Shared_Ann.xml"

e2e_start "$ann" "$family_now"
e2e_wait_ready "$ann"
e2e_stop "$ann"
[ "$(e2e_field "$ann_file" 100002 SharedLayerName)" = "Work" ] || e2e_fail "Ann's Work event is not published"
ann_sum=$(md5sum < "$ann_file")

# 1. Bob, four days later: Ann's Concert has passed, and it stays hers.
e2e_start "$bob" "2030-06-05 08:30"
e2e_wait_ready "$bob"
main=$(family_window "$bob" "^Tarvo 2") || e2e_fail "no main window for Bob"
e2e_keys "$main" ctrl+f
family_answer "$bob" "TITLE=Search C o n c e r t Return"
e2e_screenshot bob-sees-anns-passed-event
e2e_keys "$main" ctrl+e
family_refused "$bob" "Refused: You can't edit a shared item belonging to someone else"
family_answer "$bob" Return
e2e_keys "$main" ctrl+p
family_refused "$bob" "Refused: You can't push a shared item belonging to someone else"
family_answer "$bob" Return
e2e_keys "$main" Delete # refused before any "Are you sure?" question
family_refused "$bob" "Refused: You can't delete events belonging to another user"
family_answer "$bob" Return

# 2. The shared folder goes away for a while and comes back.
mv "$shared" "$shared.away"
e2e_wait_log "$bob" "Shared folder unreachable: $shared" 10
sleep 3 # several refreshes while it is away
e2e_screenshot bob-folder-away
mv "$shared.away" "$shared"
e2e_wait_log "$bob" "Shared folder reachable again" 10
sleep 2
e2e_stop "$bob"
[ "$(grep -c "Shared folder unreachable" "$bob/log.txt")" = 1 ] || e2e_fail "the unreachable folder was reported more than once"
tr -d '\r' < "$bob/log.txt" | sed -n '/Shared folder unreachable/,$p' | grep -qF "Loading from $ann_file" ||
  e2e_fail "Ann's events were not read again when the folder came back"
[ "$(e2e_field "$bob/Expired.xml" 100003 Desc)" = "Old%20receipt" ] || e2e_fail "Bob lost his own expired event 100003"
grep -q "Concert" "$bob/Events.xml" "$bob/Expired.xml" && e2e_fail "Ann's event was stored in Bob's files"
[ "$(md5sum < "$ann_file")" = "$ann_sum" ] || e2e_fail "Bob's program changed Ann's shared file"
[ "$(e2e_ini "$bob" LAYER18)" = "Work" ] || e2e_fail "Ann's Work is in Bob's slot '$(grep -i work "$bob/Tvo.ini")'"
[ "$(e2e_field "$bob/Events.xml" 200001 Layer)" = "19" ] || e2e_fail "Bob's own event left layer 19"
case "$(e2e_ini "$bob" LAYER19)" in ""|"Layer 19") ;; *) e2e_fail "Bob's layer 19 was renamed $(e2e_ini "$bob" LAYER19)" ;; esac

# 3. Carl leaves networked mode and stops sharing; Ann leaves and keeps hers.
leave() { # HOME ANSWER...
  local home="$1" win; shift
  e2e_start "$home" "$family_now"
  e2e_wait_ready "$home"
  win=$(family_options "$home") || exit 1
  e2e_keys "$win" alt+u alt+s
  family_answer "$home" "$@"
  e2e_gone "$win"
  e2e_stop "$home"
  [ "$(e2e_ini "$home" NETWORKED)" = "0" ] || e2e_fail "$home is still networked"
}
leave "$carl" alt+y
family_header_only "$shared/Shared_Carl.xml"
family_expect_list "Ann,Bob" "after Carl stopped sharing"
leave "$ann" alt+n Return
family_expect_list "Ann,Bob" "after Ann kept her shared copy"
grep -q "Family%20dinner" "$ann_file" || e2e_fail "Ann's kept shared copy lost her event"
echo "networked family events e2e ok; screenshots in $E2E_ARTIFACTS"
