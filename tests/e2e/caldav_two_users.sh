#!/usr/bin/env bash
# Two people sharing through a real calendar server (Radicale on loopback),
# each with a home of their own, all on the command line: Ann adds a shared
# event and syncs; Bob syncs and finds it in his agenda under her name, while
# an event Ann shares with Carl only stays out of it. A wrong password and a
# stopped server exit 2 with one line; the last sync's cache still serves
# Bob's agenda, and Ann's --add keeps her event for the next sync.
# Exit 77 (skipped) only when the server cannot start.
. "$(dirname "$0")/lib/tarvo.sh"
. "$(dirname "$0")/lib/radicale.sh"
e2e_init "$1"
radicale_start "$E2E_DIR/server" Ann:ann-secret Bob:bob-secret
export TARVO_NOW="2030-06-01 08:30"

for who in Ann Bob; do
  e2e_home "${who,,}" "OWNER,$who" NOAUTOBACKUPS,-1 DATESTYLE,1 NETWORKED,-1 \
    NETWORKMODE,caldav "CALDAVURL,$RADICALE_URL" "CALDAVUSER,$who" CALDAVUSERS,Ann,Bob
done
e2e_events_file "$ann/Events.xml" \
  "$(e2e_event 100001 'Only%20for%20Carl' 2030-06-04 Layer=0 Owner=Ann SharedEvent=-1 \
       ShareWithSpecific=-1 ShareNames=Carl%0D%0A)"

# as HOME PASSWORD EXPECTED-CODE ARGS...: runs tarvo; output in $out, errors in $err.
as() {
  local home="$1" password="$2" want="$3"; shift 3
  out=$(TARVO_HOME="$home" TARVO_CALDAV_PASSWORD="$password" "$E2E_TARVO" "$@" 2>"$E2E_DIR/err")
  local code=$?
  err=$(cat "$E2E_DIR/err")
  [ "$code" -eq "$want" ] ||
    e2e_fail "tarvo $* in $home gave exit code $code, not $want (stdout: $out; stderr: $err)"
}
summary='^Published [0-9]+, removed [0-9]+; read [0-9]+ users?, [0-9]+ events?$'
one_line_error() {
  [ -n "$err" ] && [ "$(printf '%s\n' "$err" | wc -l)" -eq 1 ] || e2e_fail "not one line on stderr: $err"
}

as "$ann" ann-secret 0 --add "Picnic" --date 2030-06-03 --category Shared
[[ "$out" == 'Added "Picnic" on 03/06/2030.'$'\n'* ]] || e2e_fail "--add said: $out"
[[ "$(tail -n 1 <<< "$out")" =~ $summary ]] || e2e_fail "no sync summary after --add: $out"
as "$ann" ann-secret 0 --sync
[[ "$out" =~ $summary ]] || e2e_fail "--sync said: $out"
[ -f "$ann/CalDAVState.json" ] || e2e_fail "Ann's sync left no state file"
# On the server: each shared event of Ann's as <IDCode>.ics, with Tarvo's fields.
picnic="$E2E_DIR/server/collections/collection-root/Ann/tarvo/$(e2e_id_of "$ann/Events.xml" Picnic).ics"
grep -q '^X-TARVO-' "$picnic" || e2e_fail "no $picnic with X-TARVO- fields on the server"

as "$bob" bob-secret 0 --sync
[[ "$out" =~ $summary ]] || e2e_fail "Bob's --sync said: $out"
as "$bob" bob-secret 0 --agenda 30
[ "$out" = "Mon 03/06/2030        Picnic  [Shared]  from Ann" ] || e2e_fail "Bob's agenda: $out"

as "$bob" wrong 2 --sync
one_line_error
[[ "$err" == *401* ]] || e2e_fail "a wrong password without the server's answer: $err"

radicale_stop
as "$bob" bob-secret 2 --sync
one_line_error
as "$bob" bob-secret 0 --agenda 30
[ "$out" = "Mon 03/06/2030        Picnic  [Shared]  from Ann" ] || e2e_fail "agenda from the cache: $out"
as "$ann" ann-secret 0 --add "Walk" --date 2030-06-05 --category Shared
[[ "$out" == *"published at the next sync"* ]] || e2e_fail "--add without the server said: $out"
e2e_has_event "$ann/Events.xml" Walk || e2e_fail "the event added offline is not saved"
echo "two users through a calendar server ok"
