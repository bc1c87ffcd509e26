#!/usr/bin/env bash
# The real program's micropause on a real X server with a window manager: it covers every monitor,
# stays above the window the user works in, ends by itself and with Esc, and gives the keyboard back
# to that window. Also leaves screenshots of the break screen at two screen sizes in the given folder.
#   test_micropause_screen.sh <program folder> <screenshot folder>
set -euo pipefail
bin=$1
shots=$2
. "$(dirname "$0")/lib.sh"
needs Xvfb openbox trayer xdotool xprop xwininfo xrandr xmessage gst-launch-1.0
mkdir -p "$shots"

top_window_name() {
    local ids
    ids=$(xprop -root _NET_CLIENT_LIST_STACKING | sed 's/.*# //; s/,//g')
    xdotool getwindowname "${ids##* }"
}
break_on_top() { [ "$(top_window_name)" = "Tarvo Micropause" ]; } # a command, so wait_for asks anew
break_over() { ! visible_window '^Tarvo Micropause$'; }
restart_tarvo() { # <.reg lines>...
    [ -n "${tarvo:-}" ] && { "$bin/tarvo" shutdown; wait_for 50 sh -c "! kill -0 $tarvo 2>/dev/null"; }
    start_tarvo "[Options]" '"Initialised"="1"' "[Micropause]" "$@"
}

# --- two monitors side by side, the break blanks both ------------------------------------------------
two_monitors_with_busy_work
restart_tarvo '"InterruptFor"="30"' '"Blank"="1"'
xdotool windowactivate --sync "$busy" mousemove 200 200
micropause_now
wait_for 50 break_on_top || fail "the break screen is not above the other windows ($(top_window_name))"
breakwin=$(xdotool search --onlyvisible --name '^Tarvo Micropause$' | head -n 1)
geometry=$(xwininfo -id "$breakwin" | awk '/Absolute upper-left X/{x=$NF} /Absolute upper-left Y/{y=$NF} /Width/{w=$NF} /Height/{h=$NF} END{print w"x"h"+"x"+"y}')
[ "$geometry" = "1024x768+0+0" ] || fail "the break screen does not cover the monitor with the mouse: $geometry"
wait_for 30 sh -c "xwininfo -root -tree | grep -q '1024x768+1024+0'" || fail "the second monitor is not covered"
[ "$(xdotool getwindowfocus getwindowname)" = "Tarvo Micropause" ] || fail "the break screen does not have the keyboard"
xdotool key Escape
wait_for 20 break_over || fail "Esc did not end the break"
wait_for 20 sh -c '[ "$(xdotool getwindowfocus getwindowname)" = "Busy work" ]' ||
    fail "the keyboard did not go back to the window the user was working in"
echo "ok - a blanked break covers both monitors, stays on top, ends with Esc and gives the keyboard back"

# --- not blanked: the panel alone, on top, ending by itself -----------------------------------------
restart_tarvo '"InterruptFor"="2"' '"Blank"="0"'
micropause_now
started=$(date +%s%N)
wait_for 30 break_on_top || fail "the plain break screen is not on top"
wait_for 50 break_over || fail "the plain break did not end by itself"
elapsed=$((($(date +%s%N) - started) / 1000000))
((elapsed >= 1500)) || fail "the 2-second break ended after only $elapsed ms"
echo "ok - a plain break stays on top and ends by itself after ${elapsed} ms"

# --- screenshots ----------------------------------------------------------------------------------
for size in 1024x768 1920x1080; do
    start_x "$size"
    tarvo=
    restart_tarvo '"InterruptFor"="4"' '"Blank"="1"'
    micropause_now
    sleep 1.5
    gst-launch-1.0 -q ximagesrc show-pointer=false num-buffers=1 ! videoconvert ! pngenc ! filesink location="$shots/break-$size.png" ||
        fail "no screenshot at $size"
    wait_for 50 break_over || fail "the break for the $size screenshot did not end"
    [ -s "$shots/break-$size.png" ] || fail "no screenshot at $size"
    echo "ok - screenshot $shots/break-$size.png"
done
echo "3 passed, 0 failed"
