#!/usr/bin/env bash
# The micropause on a real X server with a window manager: it covers every monitor, stays above the
# window the user works in, ends by itself and with Esc, and gives the keyboard back to that window.
# Also leaves screenshots of the break screen at two screen sizes in the given folder.
#   test_micropause_screen.sh <micropause_harness> <screenshot folder>
set -euo pipefail
harness=$1
shots=$2
. "$(dirname "$0")/lib.sh"
needs Xvfb openbox xdotool xprop xwininfo xrandr
fail() { echo "FAIL: $*"; exit 1; }
mkdir -p "$shots"

start_harness() { # <log> <args...>
    local log=$1; shift
    "$harness" "$@" >"$log" 2>"$log.err" &
    harness_pid=$!
    pids+=("$harness_pid")
}

top_window_name() {
    local ids
    ids=$(xprop -root _NET_CLIENT_LIST_STACKING | sed 's/.*# //; s/,//g')
    xdotool getwindowname "${ids##* }"
}
break_on_top() { [ "$(top_window_name)" = "Tarvo Micropause" ]; } # a command, so wait_for asks anew

# --- two monitors side by side, the break blanks both ------------------------------------------------
start_x 2048x768
xrandr --setmonitor left 1024/270x768/203+0+0 screen >/dev/null
xrandr --setmonitor right 1024/270x768/203+1024+0 none >/dev/null

"$harness" --busy-window >/dev/null 2>&1 &
pids+=($!)
wait_for 100 xdotool search --name '^Busy work$' || fail "the stand-in window did not appear"
busy=$(xdotool search --name '^Busy work$' | head -n 1)
xdotool windowactivate --sync "$busy"
xdotool mousemove 200 200

start_harness "$work/blank.log" --seconds 30 --blank 1
wait_for 100 grep -q started "$work/blank.log" || fail "the break did not start: $(cat "$work/blank.log.err")"
grep -q 'screen .* 1024x768+1024+0' "$work/blank.log" || fail "the program did not see two monitors: $(cat "$work/blank.log")"
wait_for 50 break_on_top || fail "the break screen is not above the other windows ($(top_window_name))"
breakwin=$(xdotool search --name '^Tarvo Micropause$' | head -n 1)
geometry=$(xwininfo -id "$breakwin" | awk '/Absolute upper-left X/{x=$NF} /Absolute upper-left Y/{y=$NF} /Width/{w=$NF} /Height/{h=$NF} END{print w"x"h"+"x"+"y}')
[ "$geometry" = "1024x768+0+0" ] || fail "the break screen does not cover the monitor with the mouse: $geometry"
wait_for 30 sh -c "xwininfo -root -tree | grep -q '1024x768+1024+0'" || fail "the second monitor is not covered"
[ "$(xdotool getwindowfocus getwindowname)" = "Tarvo Micropause" ] || fail "the break screen does not have the keyboard"

xdotool key Escape
wait_for 20 grep -q ended "$work/blank.log" || fail "Esc did not end the break"
wait_for 20 sh -c "! kill -0 $harness_pid 2>/dev/null" || fail "the harness did not finish"
grep -q notification "$work/blank.log" || fail "the break ended without its end notification"
wait_for 20 sh -c '[ "$(xdotool getwindowfocus getwindowname)" = "Busy work" ]' ||
    fail "the keyboard did not go back to the window the user was working in"
echo "ok - a blanked break covers both monitors, stays on top, ends with Esc and gives the keyboard back"

# --- not blanked: the panel alone, on top, ending by itself -----------------------------------------
start_harness "$work/plain.log" --seconds 2 --blank 0
wait_for 100 grep -q started "$work/plain.log" || fail "the plain break did not start"
started=$(date +%s%N)
wait_for 30 break_on_top || fail "the plain break screen is not on top"
wait_for 50 grep -q ended "$work/plain.log" || fail "the plain break did not end by itself"
elapsed=$((($(date +%s%N) - started) / 1000000))
((elapsed >= 1500)) || fail "the 2-second break ended after only $elapsed ms"
echo "ok - a plain break stays on top and ends by itself after ${elapsed} ms"

# --- screenshots ----------------------------------------------------------------------------------
for size in 1024x768 1920x1080; do
    start_x "$size"
    start_harness "$work/shot.log" --seconds 4 --blank 1 --screenshot "$shots/break-$size.png" --at 1500
    wait_for 100 grep -q ended "$work/shot.log" || fail "the break for the $size screenshot did not end"
    [ -s "$shots/break-$size.png" ] || fail "no screenshot at $size"
    echo "ok - screenshot $shots/break-$size.png"
done
echo "3 passed, 0 failed"
