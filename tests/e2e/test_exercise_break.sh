#!/usr/bin/env bash
# The real program's exercise break on a real X server with a window manager, two monitors and a
# notification area: "&Exercise Now!" from the menu shows the player with the video playing inside it,
# Esc and the quit question end the break, the schedule runs again (the prompt comes a minute later,
# leaving the keyboard where the user types, and starts the next break), and a blanked player covers
# both monitors. Leaves screenshots of the player, blanked and not, in the given folder.
#   test_exercise_break.sh <program folder> <screenshot folder>
set -euo pipefail
bin=$1
shots=$2
. "$(dirname "$0")/lib.sh"
needs Xvfb openbox trayer xdotool xprop xwininfo xrandr xmessage gst-launch-1.0
mkdir -p "$shots"

player_shown() { xdotool search --onlyvisible --name "$1" >/dev/null 2>&1; }
shoot() { # <file> [window]: the screen, or one window
    gst-launch-1.0 -q ximagesrc show-pointer=false ${2:+xid=$2} num-buffers=1 ! videoconvert ! pngenc ! filesink location="$1"
}
video_window() { xdotool search --onlyvisible --pid "$(pgrep -n tarvovideo)" 2>/dev/null | head -n 1; }
exercise_now() {
    menu_key e
    wait_for 100 player_shown '^Gently now\.\.\. \(' || wait_for 100 player_shown '\([0-9]+\)$' || fail "\"Exercise Now!\" showed no player"
}

two_monitors_with_busy_work
"$bin/regedit" /s "$bin/tarvo32.reg"
options() { # <BlankX>
    start_tarvo "[Options]" '"Initialised"="1"' "[Exercise]" '"EveryM"="1"' '"AudibleX"="0"' "\"BlankX\"=\"$1\""
}

# --- not blanked: the video plays, Esc and the question end the break ------------------------------
options 0
xdotool mousemove 600 400
exercise_now
wait_for 100 sh -c '[ -n "$(xdotool search --onlyvisible --pid "$(pgrep -n tarvovideo)" 2>/dev/null)" ]' ||
    fail "no video appeared in the player"
video=$(video_window)
shoot "$work/v1.png" "$video"
sleep 1
shoot "$work/v2.png" "$video"
cmp -s "$work/v1.png" "$work/v2.png" && fail "the video does not play: two pictures a second apart are the same"
shoot "$shots/player.png"
echo "ok - \"Exercise Now!\" shows the player, and its video plays"
xdotool key Escape
wait_for 50 visible_window '^Tarvo Exercise Break$' || fail "Esc did not ask whether to quit"
xdotool key Return
wait_for 50 sh -c "! xdotool search --onlyvisible --name '\\([0-9]+\\)\$'" || fail "Yes did not end the break"
echo "ok - Esc asks whether to quit, and Yes ends the break"

# --- the schedule runs again: a minute later the prompt comes, and the keyboard stays ---------------
xdotool windowactivate --sync "$busy"
wait_for 800 visible_window '^Exercise\.\.\.$' || fail "the exercise prompt did not come a minute after the break"
[ "$(xdotool getwindowfocus getwindowname)" = "Busy work" ] || fail "the prompt took the keyboard"
xdotool windowactivate --sync "$(xdotool search --onlyvisible --name '^Exercise\.\.\.$' | head -n 1)" key Return
wait_for 100 player_shown '^Gently now\.\.\. \(|\([0-9]+\)$' || fail "the prompt's Exercise Now showed no player"
echo "ok - the prompt comes a minute after the break without taking the keyboard, and starts the next"
"$bin/tarvo" shutdown
wait_for 50 sh -c "! kill -0 $tarvo 2>/dev/null" || fail "shutdown did not end the program"
tarvo=

# --- blanked: both monitors are covered; a double click on the video ends the break ------------------
options 1
xdotool mousemove 600 400
exercise_now
wait_for 30 sh -c "xwininfo -root -tree | grep -q '1024x768+1024+0'" || fail "the second monitor is not covered"
sleep 2
shoot "$shots/player-blanked.png"
eval "$(xdotool getwindowgeometry --shell "$(video_window)")"
xdotool mousemove $((X + 20)) $((Y + 20)) click --repeat 2 --delay 80 1
wait_for 50 sh -c "! xdotool search --onlyvisible --name '\\([0-9]+\\)\$'" || fail "a double click did not end the break"
sh -c "xwininfo -root -tree | grep -q '1024x768+1024+0'" && fail "the cover of the second monitor stayed"
echo "ok - a blanked player covers both monitors, and a double click on the video ends the break"
"$bin/tarvo" shutdown
echo "4 passed, 0 failed"
