#!/usr/bin/env bash
# The options dialog of the real program: a double click on the tray icon opens it; typing into its
# fields (past a spinner's bound) and Apply write the store, read here from outside; the next exercise
# break moves to the new interval and comes. Leaves screenshots of each tab.
#   test_options_dialog.sh <program folder> <screenshot folder>
set -euo pipefail
bin=$1
shots=$2
. "$(dirname "$0")/lib.sh"
needs Xvfb openbox trayer xdotool xprop xwininfo gst-launch-1.0
mkdir -p "$shots"
dialog_shown() { visible_window '^Tarvo Options$'; }
screenshot() { # <file>
    local w
    w=$(xdotool search --onlyvisible --name '^Tarvo Options$' | head -n 1)
    gst-launch-1.0 -q ximagesrc show-pointer=false xid="$w" num-buffers=1 ! videoconvert ! pngenc ! filesink location="$1" ||
        fail "no screenshot $1"
}

start_x 1280x1024
start_tarvo
wait_for 150 docked_icon || fail "the icon did not dock"
eval "$(xdotool getwindowgeometry --shell "$(docked_icon)")"
xdotool mousemove $((X + WIDTH / 2)) $((Y + HEIGHT / 2)) click --repeat 2 --delay 80 1
wait_for 100 dialog_shown || fail "a double click on the icon did not open the options dialog"
echo "ok - a double click on the icon opens \"Tarvo Options\""

# The three tabs, stepped through with Ctrl+Tab (from the third back to the first).
for tab in 1 2 3; do
    sleep 0.3
    screenshot "$shots/options-tab$tab.png"
    xdotool key ctrl+Tab
done
echo "ok - screenshots of each tab in $shots"

# The labels' access keys reach the fields; a field selects its text as it gets the focus, so typing
# replaces it.
xdotool key alt+i Tab
xdotool type 999
xdotool key ctrl+Tab
xdotool key alt+t
xdotool type 1
xdotool key alt+a
wait_for 50 grep -q '"InterruptEvery"="999"' "$store" || fail "Apply did not store the typed \"InterruptEvery\" 999"
grep -q '"EveryM"="1"' "$store" || fail "Apply did not store the typed \"EveryM\" 1"
echo "ok - typed values, past the spinner's bound, are applied and stored"
menu_key Escape
echo "ok - a second start while the dialog is open pops up the menu"
# Due one minute after Apply; the rest is room for a loaded machine (the first-run interval is far longer).
wait_for 1200 visible_window '^Exercise\.\.\.$' || fail "the exercise break did not move to the new interval"
echo "ok - the next exercise break comes at the new interval"
echo PASS
