#!/usr/bin/env bash
# Networked IDs with several copies running on one shared folder: an ID that
# clashes with a listed one (case only, or one the tail of the other) is
# refused at Add and at Save, a listed ID of the same spelling is taken over
# only when the user says so; a changed ID (also a case-only change) takes the
# old name's place in TVOShared.ini, is published and read by the others, and
# leaves the old file header-only; two Adds while the list is locked both
# land. Exit 77 only when no X server can start.
. "$(dirname "$0")/lib/family.sh"
family_init "$1"
e2e_home dora OWNER,Dora NETWORKED,-1 "SHAREDDATAPATH,$shared/" NOAUTOBACKUPS,-1 NOSOUNDS,-1

family_write_list Ann Bob Fred
e2e_events_file "$ann/Events.xml" \
  "$(e2e_event 100001 'Family%20dinner' 2030-06-20 Layer=0 Owner=Ann)"
for home in "$ann" "$bob" "$carl"; do e2e_start "$home" "$family_now"; done
for home in "$ann" "$bob" "$carl"; do e2e_wait_ready "$home"; done
e2e_wait_log "$bob" "Loading from $shared/Shared_Ann.xml"
[ "$(e2e_field "$shared/Shared_Ann.xml" 100001 Owner)" = "Ann" ] || e2e_fail "Ann's event is not published"

# 1. Carl tries IDs that clash; nothing changes.
options=$(family_options "$carl") || exit 1
family_set_id "$options" ann
e2e_keys "$options" alt+a
family_refused "$carl" 'ID refused: The ID "ann" is already used by another user as "Ann"'
family_answer "$carl" Return
family_set_id "$options" Ed
e2e_keys "$options" alt+a
family_refused "$carl" 'cannot be used beside the listed ID "Fred"'
e2e_screenshot carl-tail-refused
family_answer "$carl" Return
family_set_id "$options" ann
e2e_keys "$options" alt+s
e2e_wait_log "$carl" 'ID refused: The ID "ann"' 5
family_answer "$carl" Return
family_expect_list "Ann,Bob,Fred" "after Carl's refused IDs"
# The same spelling may be Carl's own after a reinstall: asked, and No keeps all.
family_set_id "$options" Ann
e2e_keys "$options" alt+a
e2e_screenshot carl-take-over-question
family_answer "$carl" alt+n
e2e_keys "$options" alt+c
e2e_gone "$options"
family_expect_list "Ann,Bob,Fred" "after Carl declined to take over Ann"
[ "$(e2e_ini "$carl" OWNER)" = "Carl" ] || e2e_fail "Carl's ID changed to $(e2e_ini "$carl" OWNER)"
grep -q "Family%20dinner" "$shared/Shared_Ann.xml" || e2e_fail "Ann's shared file lost her event"

# 2. Ann becomes Anna, then anna; Bob follows each change.
rename_ann() { # NEW OLD
  local win
  win=$(family_options "$ann") || exit 1
  family_set_id "$win" "$1"
  e2e_keys "$win" alt+s
  e2e_gone "$win"
  [ "$(e2e_field "$shared/Shared_$1.xml" 100001 Owner)" = "$1" ] ||
    e2e_fail "the event is not published as $1's"
  family_header_only "$shared/Shared_$2.xml"
  sleep 2 # two of Bob's refreshes
}
rename_ann Anna Ann
family_expect_list "Anna,Bob,Fred" "after Ann became Anna"
rename_ann anna Anna
family_expect_list "anna,Bob,Fred" "after Anna became anna"
e2e_stop "$bob"
# Bob's program, running all along, read each new name's file.
for name in Anna anna; do
  grep -qF "Loading from $shared/Shared_$name.xml" "$bob/log.txt" || e2e_fail "Bob never read Shared_$name.xml"
done
[ "$(e2e_field "$ann/Events.xml" 100001 Owner)" = "anna" ] || e2e_fail "Ann's own event keeps the old owner"

# 3. Two Adds at once while another program holds the list's lock: both wait,
# then each adds to the list as it is then, so neither entry (nor the one the
# lock holder writes) is lost.
e2e_start "$dora" "$family_now"
e2e_wait_ready "$dora"
carl_options=$(family_options "$carl") || exit 1
dora_options=$(family_options "$dora") || exit 1
# A lock younger than five seconds is respected; this one lives about two.
printf '%s\n%s\n%s\n' "$$" bash "$(hostname)" > "$shared/TVOShared.ini.lock"
held=$(family_list)
e2e_keys "$carl_options" alt+a
e2e_keys "$dora_options" alt+a
sleep 1
family_write_list $(echo "$held" | tr , ' ') Eve
rm -f "$shared/TVOShared.ini.lock"
for _ in $(seq 1 50); do
  case "$(family_list)" in *Carl*Dora*|*Dora*Carl*) break ;; esac
  sleep 0.2
done
list=$(family_list)
for name in Eve Carl Dora; do
  echo ",$list," | grep -q ",$name," || e2e_fail "TVOShared.ini lost $name: '$list'"
done
e2e_screenshot two-adds
for home in "$ann" "$carl" "$dora"; do e2e_stop "$home"; done
echo "networked family IDs e2e ok; screenshots in $E2E_ARTIFACTS"
