#!/usr/bin/env bash
# The real program's exercise break on a real X server with a window manager, two monitors and a
# notification area: "&Exercise Now!" from the menu shows the player with the video inside it, and a
# double click on the video ends the break; the schedule runs again (the prompt comes a minute later,
# leaving the keyboard where the user types); a blanked player, started from the icon on the other
# monitor than the one the window manager puts it on, is seen playing there with the other monitor
# covered, and Esc asks over it whether to quit. Leaves screenshots of the player, blanked and not, in
# the given folder.
#   test_exercise_break.sh <program folder> <screenshot folder>
set -euo pipefail
bin=$1
shots=$2
. "$(dirname "$0")/lib.sh"
needs Xvfb openbox trayer xdotool xprop xwininfo xrandr xmessage wmctrl gst-launch-1.0
mkdir -p "$shots"

shoot() { # <file> [ximagesrc properties]: the screen as it is seen, or a part of it (startx=...)
    gst-launch-1.0 -q ximagesrc show-pointer=false "${@:2}" num-buffers=1 ! videoconvert ! pngenc ! filesink location="$1"
}

two_monitors_with_busy_work
"$bin/regedit" /s "$bin/tarvo32.reg"
options() { # <BlankX>
    start_tarvo "[Options]" '"Initialised"="1"' "[Exercise]" '"EveryM"="1"' '"AudibleX"="0"' "\"BlankX\"=\"$1\""
}

# --- not blanked: the video plays in the player, and a double click on it ends the break -----------
options 0
xdotool mousemove 600 400
menu_key e
wait_for 100 visible_window '^Gently now\.\.\. \(' || fail "\"Exercise Now!\" showed no player"
wait_for 100 video_window || fail "no video appeared in the player"
sleep 1
shoot "$shots/player.png"
eval "$(xdotool getwindowgeometry --shell "$(video_window)")"
xdotool mousemove $((X + 20)) $((Y + 20)) click --repeat 2 --delay 80 1
wait_for 50 no_player || fail "a double click on the video did not end the break"
echo "ok - \"Exercise Now!\" shows the player with its video, and a double click on the video ends the break"

# --- the schedule runs again: a minute later the prompt comes, and the keyboard stays ---------------
xdotool windowactivate --sync "$busy"
wait_for 800 visible_window '^Exercise\.\.\.$' || fail "the exercise prompt did not come a minute after the break"
[ "$(xdotool getwindowfocus getwindowname)" = "Busy work" ] || fail "the prompt took the keyboard"
echo "ok - the prompt comes a minute after the break, without taking the keyboard"
"$bin/tarvo" shutdown

# --- blanked, on two monitors, from the icon at the far right while the window manager puts new ----
# --- windows on the left: the video is seen, the other monitor is covered, Esc asks over the player --
start_x 2560x800 notray
xrandr --setmonitor A 1280/500x800/280+0+0 screen >/dev/null
xrandr --setmonitor B 1280/500x800/280+1280+0 none >/dev/null
start_trayer --monitor 1
options 1
wait_for 150 docked_icon || fail "the icon did not dock"
eval "$(xdotool getwindowgeometry --shell "$(docked_icon)")"
before=$(shown)
xdotool mousemove $((X + WIDTH / 2)) $((Y + HEIGHT / 2)) click 3
wait_for 50 more_shown_than "$before" || fail "a right click on the icon showed no menu"
xdotool key e
wait_for 100 visible_window '\([0-9]+\)$' || fail "\"Exercise Now!\" from the icon showed no player"
wait_for 100 video_window || fail "no video appeared in the blanked player"
sleep 2
eval "$(xdotool getwindowgeometry --shell "$(video_window)")"
own=$((X / 1280 * 1280))
area=(startx=$X starty=$Y endx=$((X + WIDTH - 1)) endy=$((Y + HEIGHT - 1)))
shoot "$work/r1.png" "${area[@]}"
sleep 1
shoot "$work/r2.png" "${area[@]}"
cmp -s "$work/r1.png" "$work/r2.png" && fail "the screen does not show the video where it plays"
cover="xwininfo -root -tree | grep -q '1280x800+$((1280 - own))+0'"
wait_for 30 sh -c "$cover" || fail "the other monitor is not covered"
shoot "$shots/player-blanked.png"
xdotool key Escape
wait_for 50 visible_window '^Tarvo Exercise Break$' || fail "Esc did not ask whether to quit"
eval "$(xdotool getwindowgeometry --shell "$(xdotool search --onlyvisible --name '^Tarvo Exercise Break$' | head -n 1)")"
((X >= own && X + WIDTH <= own + 1280)) || fail "the quit question is on the covered monitor"
xdotool key Return
wait_for 50 no_player || fail "Yes did not end the break"
sh -c "$cover" && fail "the cover of the other monitor stayed"
echo "ok - a blanked player is seen on its monitor with the other one covered, Esc asks over it, and Yes ends the break"
"$bin/tarvo" shutdown
echo "3 passed, 0 failed"
