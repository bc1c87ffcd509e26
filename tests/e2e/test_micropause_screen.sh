#!/usr/bin/env bash
# The real program's micropause on a real X server with a window manager, two monitors and a window the
# user works in: the blanked break covers both monitors, stays above that window and has the keyboard;
# it ends by itself, on real timers, and gives the keyboard back. Leaves a screenshot of it in the given
# folder.
#   test_micropause_screen.sh <program folder> <screenshot folder>
set -euo pipefail
bin=$1
shots=$2
. "$(dirname "$0")/lib.sh"
needs Xvfb openbox trayer xdotool xprop xwininfo xrandr xmessage wmctrl gst-launch-1.0
mkdir -p "$shots"

top_window_name() {
    local ids
    ids=$(xprop -root _NET_CLIENT_LIST_STACKING | sed 's/.*# //; s/,//g')
    xdotool getwindowname "${ids##* }"
}
break_on_top() { [ "$(top_window_name)" = "Tarvo Micropause" ]; } # a command, so wait_for asks anew
break_over() { ! visible_window '^Tarvo Micropause$'; }

# --- two monitors and the user's work: the break covers both, on top, with the keyboard ------------
two_monitors_with_busy_work
start_tarvo "[Options]" '"Initialised"="1"' "[Micropause]" '"InterruptFor"="8"' '"Blank"="1"'
xdotool windowactivate --sync "$busy" mousemove 200 200
micropause_now
started=$(date +%s%N)
wait_for 50 break_on_top || fail "the break screen is not above the other windows ($(top_window_name))"
breakwin=$(xdotool search --onlyvisible --name '^Tarvo Micropause$' | head -n 1)
geometry=$(xwininfo -id "$breakwin" | awk '/Absolute upper-left X/{x=$NF} /Absolute upper-left Y/{y=$NF} /Width/{w=$NF} /Height/{h=$NF} END{print w"x"h"+"x"+"y}')
[ "$geometry" = "1024x768+0+0" ] || fail "the break screen does not cover the monitor with the mouse: $geometry"
wait_for 30 sh -c "xwininfo -root -tree | grep -q '1024x768+1024+0'" || fail "the second monitor is not covered"
[ "$(xdotool getwindowfocus getwindowname)" = "Tarvo Micropause" ] || fail "the break screen does not have the keyboard"
gst-launch-1.0 -q ximagesrc show-pointer=false num-buffers=1 ! videoconvert ! pngenc ! filesink location="$shots/break.png" ||
    fail "no screenshot"
echo "ok - the break covers both monitors, stays on top and has the keyboard"

# --- it ends by itself, and the keyboard goes back to the user's window -----------------------------
wait_for 120 break_over || fail "the break did not end by itself"
elapsed=$((($(date +%s%N) - started) / 1000000))
((elapsed >= 7000)) || fail "the 8-second break ended after only $elapsed ms"
wait_for 20 sh -c '[ "$(xdotool getwindowfocus getwindowname)" = "Busy work" ]' ||
    fail "the keyboard did not go back to the window the user was working in"
echo "ok - the break ends by itself after ${elapsed} ms and gives the keyboard back"
echo "2 passed, 0 failed"
