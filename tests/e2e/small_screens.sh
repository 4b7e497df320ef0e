#!/usr/bin/env bash
# Small screens, through the real program under a window manager: on a
# 1024x600 and a 1366x768 screen every top-level window (main window, reminder
# and alarm windows, month view, editor, settings, categories, task list,
# help) opens with its whole frame, title bar included, on the screen, and
# the button in its bottom right corner (Continue, Exit, Cancel, Close)
# answers a mouse click by closing the window. A main window size saved on a
# larger monitor is brought inside the screen. Exit 77 only when no X server
# can start.
. "$(dirname "$0")/lib/tarvo.sh"
e2e_init "$1"

# frame_inside ID WHAT: the window's frame (client area plus the window
# manager's borders and title bar) lies inside the screen.
frame_inside() {
  local id="$1" what="$2" info x y w h l r t b
  info=$(xwininfo -id "$id")
  x=$(awk '/Absolute upper-left X/ { print $NF }' <<< "$info")
  y=$(awk '/Absolute upper-left Y/ { print $NF }' <<< "$info")
  w=$(awk '/^ *Width:/ { print $NF }' <<< "$info")
  h=$(awk '/^ *Height:/ { print $NF }' <<< "$info")
  read -r l r t b < <(xprop -id "$id" _NET_FRAME_EXTENTS | sed 's/.*= //; s/,//g')
  [ -n "$b" ] || { l=0; r=0; t=0; b=0; }
  echo "$what: ${w}x${h}+${x}+${y}, frame $l $r $t $b on ${SCREEN_W}x${SCREEN_H}"
  if [ $((x - l)) -lt 0 ] || [ $((y - t)) -lt 0 ] ||
     [ $((x + w + r)) -gt "$SCREEN_W" ] || [ $((y + h + b)) -gt "$SCREEN_H" ]; then
    e2e_fail "$what does not fit a ${SCREEN_W}x${SCREEN_H} screen: ${w}x${h}+${x}+${y}, frame $l $r $t $b"
  fi
  CLIENT_RIGHT=$((x + w)); CLIENT_BOTTOM=$((y + h))
}

# check_and_close TITLE WHAT [KEYS...]: opens the window with KEYS pressed
# in the main window (none: it is up already), checks its frame, and clicks
# the button in its bottom right corner, which must close it.
check_and_close() {
  local title="$1" what="$2" id; shift 2
  [ $# -gt 0 ] && e2e_keys "$main" "$@"
  id=$(e2e_window "$title") || e2e_fail "$what did not open"
  sleep 0.5
  frame_inside "$id" "$what"
  e2e_screenshot "$size-$what"
  xdotool windowactivate --sync "$id" 2>/dev/null || xdotool windowraise "$id"
  sleep 0.3
  xdotool mousemove "$((CLIENT_RIGHT - 30))" "$((CLIENT_BOTTOM - 20))" click 1
  e2e_gone "$id"
}

for size in 1024x600 1366x768; do
  SCREEN_W=${size%x*}; SCREEN_H=${size#*x}
  e2e_display "${size}x24"
  # Saved on a wider monitor: wider than this screen, yet not "nearly the
  # whole screen" both ways, so it opens as a normal window.
  e2e_home "home$SCREEN_W" OWNER,Ann NOAUTOBACKUPS,-1 NOSOUNDS,-1 DATESTYLE,1 \
    "MAINWINDOWWIDTH,1900" "MAINWINDOWHEIGHT,$((SCREEN_H / 2))"
  home="$E2E_DIR/home$SCREEN_W"
  e2e_events_file "$home/Events.xml" \
    "$(e2e_event 100001 'Dentist' 2030-06-01 Owner=Ann RecurrenceType=1)" \
    "$(e2e_event 100002 'Pay%20the%20rent' 2030-06-04 DaysWarning=7 Owner=Ann RecurrenceType=1)" \
    "$(e2e_event 100003 'Call%20the%20bank' 2030-06-01 AlarmSet=-1 'AlarmTime=1899-12-30 08:30' Owner=Ann RecurrenceType=1)"
  e2e_start "$home" "2030-06-01 08:30"
  e2e_wait_ready "$home"
  main=$(e2e_window "^Tarvo 2") || e2e_fail "no main window"
  sleep 4 # the reminder windows come up after 2 s, the first alarm after 3.5 s
  frame_inside "$main" "main window"
  # Newest on top: the alarm, then today's reminders, then the coming ones.
  check_and_close "^ALARM! - " "alarm"
  check_and_close "^TODAY! - " "today"
  check_and_close "^COMING UP - " "coming-up"
  check_and_close "^TVO Monthly View" "month-view" ctrl+m
  check_and_close "^TVO - Add/Edit event$" "editor" ctrl+n
  check_and_close "^Reminder Options$" "settings" alt+t Down Return
  check_and_close "^Category Names$" "categories" alt+t Return
  check_and_close "^Task List$" "task-list" ctrl+t
  check_and_close "^Tarvo help$" "help" F1
  e2e_stop "$home"
  kill "$E2E_WM_PID" "$E2E_X_PID" 2>/dev/null
  wait "$E2E_WM_PID" "$E2E_X_PID" 2>/dev/null
  E2E_WM_PID=""; E2E_X_PID=""; rm -f "$E2E_DIR/display"
done
echo "every window fits 1024x600 and 1366x768"
