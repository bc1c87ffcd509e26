#!/usr/bin/env bash
# The real program from a fresh profile on an X server with a window manager: without a notification
# area its stand-in window serves; when one appears the icon docks, and it moves back and forth as the
# area goes and comes; a right click on either shows the menu; a second start pops the menu up without a
# display, one with another profile's settings says in a box that the program is already running, and
# "tarvo shutdown" ends both processes and leaves "tray" at "0".
#   test_tray_program.sh <program folder>
set -euo pipefail
bin=$1
. "$(dirname "$0")/lib.sh"
needs Xvfb openbox trayer xdotool xprop xwininfo

start_x 1024x768 notray
start_tarvo
stand_in_shown() { visible_window '^Tarvo Micropause$'; }
right_click_shows_the_menu() { # <x> <y>
    local before
    before=$(shown)
    xdotool mousemove "$1" "$2" click 3
    wait_for 50 more_shown_than "$before" || fail "a right click on $3 showed no menu"
}

wait_for 100 stand_in_shown || fail "no stand-in window without a notification area"
eval "$(xdotool getwindowgeometry --shell "$(xdotool search --onlyvisible --name '^Tarvo Micropause$' | head -n 1)")"
right_click_shows_the_menu $((X + WIDTH / 2)) $((Y + HEIGHT / 2)) "the stand-in window"
xdotool key Escape
echo "ok - without a notification area the stand-in window serves, with the menu on a right click"

for round in 1 2; do
    start_trayer
    wait_for 150 docked_icon || fail "the icon did not dock into the notification area (round $round)"
    wait_for 50 sh -c "! xdotool search --onlyvisible --name '^Tarvo Micropause\$'" || fail "the stand-in window stayed"
    [ $round = 2 ] && break
    kill "$trayer"
    wait_for 100 stand_in_shown || fail "the stand-in window did not come back when the notification area went"
done
icon=$(docked_icon)
grep -q '"Initialised"="1"' "$store" || fail "the first run did not finish"
grep -q '"InterruptEvery"="4"' "$store" || fail "the first run did not import the shipped defaults"
grep -q -F '[HKEY_CURRENT_USER\Software\VB and VBA Program Settings\Tarvo Micropause\Scheme*Medium Break]' "$store" ||
    fail "the first run did not import the built-in schemes"
eval "$(xdotool getwindowgeometry --shell "$icon")"
echo "ok - fresh profile initialised; the icon docks, and moves to the stand-in and back as trays go and come"

# Right click on the icon: the menu comes up.
right_click_shows_the_menu $((X + WIDTH / 2)) $((Y + HEIGHT / 2)) "the icon"
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
XDG_CONFIG_HOME=$work/other "$bin/tarvo" 2>"$work/other.err" &
other=$!
pids+=("$other")
wait_for 100 visible_window '^Tarvo$' || fail "no \"already running\" box"
xdotool key Return
wait_for 50 sh -c "! kill -0 $other 2>/dev/null" || fail "the \"already running\" box did not end the start"
status=0
wait "$other" || status=$?
[ "$status" = 1 ] && grep -qx 'Tarvo Micropause is already running in the System Tray' "$work/other.err" ||
    fail "the start with other settings ended with status $status, saying: $(cat "$work/other.err")"
echo "ok - a second start with settings that name no instance shows that one is already running"

# "SHUTDOWN" in any case ends the running instance and itself.
timeout 20 "$bin/tarvo" SHUTDOWN || fail "tarvo SHUTDOWN did not end"
wait_for 50 sh -c "! kill -0 $tarvo 2>/dev/null" || fail "the running instance did not end"
grep -q '"tray"="0"' "$store" || fail "shut-down did not set \"tray\" to 0"
echo "ok - tarvo SHUTDOWN ends both processes and sets \"tray\" to 0"
