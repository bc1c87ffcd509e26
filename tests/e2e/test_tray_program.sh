#!/usr/bin/env bash
# The real program on an X server with a window manager: without a notification area its stand-in
# window serves; when one appears the icon docks, and it moves back and forth as the area goes and
# comes; a right click on the icon shows the menu; a second start pops the menu up without a display,
# and one with another profile's settings says in a box that the program is already running. (The
# first run's import and "tarvo shutdown" are e2e_installed_program's and e2e_without_display's.)
#   test_tray_program.sh <program folder>
set -euo pipefail
bin=$1
. "$(dirname "$0")/lib.sh"
needs Xvfb openbox trayer xdotool xprop xwininfo

start_x 1024x768 notray
start_tarvo
stand_in_shown() { visible_window '^Tarvo Micropause$'; }
wait_for 100 stand_in_shown || fail "no stand-in window without a notification area"
for round in 1 2; do
    start_trayer
    wait_for 150 docked_icon || fail "the icon did not dock into the notification area (round $round)"
    wait_for 50 sh -c "! xdotool search --onlyvisible --name '^Tarvo Micropause\$'" || fail "the stand-in window stayed"
    [ $round = 2 ] && break
    kill "$trayer"
    wait_for 100 stand_in_shown || fail "the stand-in window did not come back when the notification area went"
done
echo "ok - without a notification area the stand-in window serves; the icon docks, and moves to it and back as trays go and come"

eval "$(xdotool getwindowgeometry --shell "$(docked_icon)")"
before=$(shown)
xdotool mousemove $((X + WIDTH / 2)) $((Y + HEIGHT / 2)) click 3
wait_for 50 more_shown_than "$before" || fail "a right click on the icon showed no menu"
xdotool key Escape
echo "ok - a right click on the icon shows the menu"

# A second start pops the menu up in the running instance, and needs no display for it. Its signal is
# synchronous: it ends once the running instance has handled it, that is when the menu has been closed.
before=$(shown)
env -u DISPLAY "$bin/tarvo" &
second=$!
pids+=("$second")
wait_for 50 more_shown_than "$before" || fail "a second start did not pop up the running instance's menu"
kill -0 "$second" 2>/dev/null || fail "the second start ended before its menu was handled"
xdotool key Escape
wait_for 50 sh -c "! kill -0 $second 2>/dev/null" || fail "the second start did not end once the menu closed"
wait "$second" || fail "the second start ended with status $?"
echo "ok - a second start without a display pops up the running instance's menu and then ends"

# A second start whose settings name no instance (another profile's) says that one is already running,
# in a box and on standard error.
{ XDG_CONFIG_HOME=$work/other "$bin/tarvo" 2>"$work/other.err" && echo 0 || echo $?; } >"$work/other.status" &
pids+=($!)
wait_for 100 visible_window '^Tarvo$' || fail "no \"already running\" box"
xdotool key Return
wait_for 50 test -s "$work/other.status" || fail "the \"already running\" box did not end the start"
[ "$(cat "$work/other.status")" = 1 ] && grep -qx 'Tarvo Micropause is already running in the System Tray' "$work/other.err" ||
    fail "the start with other settings ended with status $(cat "$work/other.status"), saying: $(cat "$work/other.err")"
echo "ok - a second start with settings that name no instance shows that one is already running"
