#!/usr/bin/env bash
# The real program from a fresh profile on an X server with a window manager: without a notification
# area its stand-in window serves; when one appears the icon docks, and it moves back and forth as the
# area goes and comes; a right click on either shows the menu, whose "Micropause Now!" shows the break
# screen; a second start pops the menu up, and "tarvo shutdown" ends both processes and leaves "tray"
# at "0".
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

# Right click on the icon: the menu comes up; its access key "m" starts a micropause.
right_click_shows_the_menu $((X + WIDTH / 2)) $((Y + HEIGHT / 2)) "the icon"
echo "ok - a right click on the icon shows the menu"
xdotool key m
wait_for 100 visible_window '^Tarvo Micropause$' || fail "\"Micropause Now!\" showed no break screen"
breakwin=$(xdotool search --onlyvisible --name '^Tarvo Micropause$' | head -n 1)
eval "$(xdotool getwindowgeometry --shell "$breakwin")"
[ "$WIDTH" = 1024 ] && [ "$HEIGHT" = 768 ] || fail "the break screen is ${WIDTH}x${HEIGHT}, not the whole screen"
xdotool key Escape
wait_for 50 sh -c "! xdotool search --onlyvisible --name '^Tarvo Micropause\$'" || fail "Esc did not end the break"
echo "ok - \"Micropause Now!\" shows the break screen and Esc ends it"

# A second start pops the menu up in the running instance. Its signal is synchronous: it ends once
# the running instance has handled it, that is when the menu has been closed.
before=$(shown)
"$bin/tarvo" &
second=$!
pids+=("$second")
wait_for 50 more_shown_than "$before" ||
    fail "a second start did not pop up the running instance's menu"
kill -0 "$second" 2>/dev/null || fail "the second start ended before its menu was handled"
xdotool key Escape
wait_for 50 sh -c "! kill -0 $second 2>/dev/null" || fail "the second start did not end once the menu closed"
wait "$second" || fail "the second start ended with status $?"
echo "ok - a second start pops up the running instance's menu and then ends"

# "SHUTDOWN" in any case ends the running instance and itself.
timeout 20 "$bin/tarvo" SHUTDOWN || fail "tarvo SHUTDOWN did not end"
wait_for 50 sh -c "! kill -0 $tarvo 2>/dev/null" || fail "the running instance did not end"
grep -q '"tray"="0"' "$store" || fail "shut-down did not set \"tray\" to 0"
echo "ok - tarvo SHUTDOWN ends both processes and sets \"tray\" to 0"
echo "5 passed, 0 failed"
