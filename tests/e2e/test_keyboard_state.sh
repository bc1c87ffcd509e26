#!/usr/bin/env bash
# Keys reach the program as the keyboard says even when its layout or Caps Lock changed while another
# window had the focus: a tray menu's access key and letters typed into the options dialog's message
# field (letters whose keys differ between the layouts: "a" on AZERTY is where "q" is on QWERTY). Those
# changes, and Shift pressed and released ten times meanwhile, cost the program a few wakeups at most:
# it does not follow the keyboard while it has no focus.
#   test_keyboard_state.sh <program folder>
set -euo pipefail
bin=$1
. "$(dirname "$0")/lib.sh"
needs Xvfb openbox trayer xdotool xprop xwininfo xmessage wmctrl setxkbmap
start_x 1280x1024
start_tarvo
wait_for 150 docked_icon || fail "the icon did not dock"
start_work_window "Other work" -geometry 300x100+50+500
other=$work_window
wakeups() { cat /proc/"$tarvo"/task/*/status | awk '/^voluntary_ctxt_switches/{n += $2} END{print n}'; }
elsewhere() { # [<layout>]: the layout changes, if given, and Caps Lock toggles
    xdotool windowactivate --sync "$other"
    sleep 0.5 # the program takes in that it has lost the focus
    local before
    before=$(wakeups)
    [ -z "${1:-}" ] || setxkbmap "$1"
    xdotool key shift shift shift shift shift shift shift shift shift shift Caps_Lock
    sleep 0.5
    (($(wakeups) - before < 25)) || fail "the keyboard's changes elsewhere woke the program $(($(wakeups) - before)) times"
}
options_dialog() { # from the menu, and waits until it has the focus
    menu_key o
    wait_for 100 sh -c '[ "$(xdotool getactivewindow getwindowname)" = "Tarvo Options" ]' ||
        fail "the menu's \"&Options...\" did not open the dialog"
}

elsewhere fr
menu_key a
wait_for 50 visible_window '^About Tarvo Micropause$' || fail "the access key \"a\" of \"&About...\" was not read as \"a\""
echo "ok - a menu's access key is read on the layout chosen while the program had no focus"
options_dialog
# The message field is the tenth stop after the field of the label "ever&y"; Tab selects its text.
xdotool key alt+y Tab Tab Tab Tab Tab Tab Tab Tab Tab Tab a z q w Return
wait_for 50 grep -q '"Warning"="AZQW"' "$store" || fail "typed on AZERTY with Caps Lock: $(grep Warning "$store")"
elsewhere
options_dialog
# The field has the focus again, its text selected; no modifier comes before the letters.
xdotool key a z q w Return
wait_for 50 grep -q '"Warning"="azqw"' "$store" || fail "typed without Caps Lock: $(grep Warning "$store")"
echo "ok - letters typed into the message field come out as the layout and Caps Lock say"
echo "ok - the keyboard's changes elsewhere cost the program a few wakeups at most"
echo PASS
