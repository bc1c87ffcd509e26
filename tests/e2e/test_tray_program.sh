#!/usr/bin/env bash
# The real program from a fresh profile on an X server with a window manager and a notification area:
# its icon docks, a right click shows the menu, "Micropause Now!" shows the break screen, a second
# start pops the menu up, and "tarvo shutdown" ends both processes and leaves "tray" at "0".
#   test_tray_program.sh <program folder>
set -euo pipefail
bin=$1
. "$(dirname "$0")/lib.sh"
needs Xvfb openbox trayer xdotool xprop xwininfo
fail() { echo "FAIL: $*"; [ -f "$work/tarvo.err" ] && sed 's/^/  tarvo: /' "$work/tarvo.err"; exit 1; }
visible_window() { xdotool search --onlyvisible --name "$1" >/dev/null 2>&1; }
shown() { xdotool search --onlyvisible --pid "$tarvo" 2>/dev/null | wc -l; }
more_shown_than() { [ "$(shown)" -gt "$1" ]; }

# A fresh profile.
export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_RUNTIME_DIR=$work/runtime
mkdir -p "$HOME" "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"
store=$XDG_CONFIG_HOME/tarvo/registry.reg

start_x 1024x768
trayer --edge top --align right --widthtype request --height 24 --SetDockType true >/dev/null 2>&1 &
pids+=($!)

"$bin/tarvo" >"$work/tarvo.out" 2>"$work/tarvo.err" &
tarvo=$!
pids+=("$tarvo")

# The icon docks: one of the program's windows ends up inside trayer's panel.
docked_icon() {
    local w p
    for w in $(xdotool search --pid "$tarvo" 2>/dev/null); do
        p=$w
        for _ in 1 2 3 4 5 6; do
            p=$(xwininfo -children -id "$p" 2>/dev/null | awk '/Parent window id/{print $4}')
            # Stop at the root: xwininfo would wait for a click when asked about window 0.
            [ -n "$p" ] && [ "$((p))" != 0 ] || break
            if xprop -id "$p" WM_CLASS 2>/dev/null | grep -q '"trayer"'; then
                echo "$w"
                return 0
            fi
        done
    done
    return 1
}
wait_for 150 docked_icon || fail "the icon did not dock into the notification area"
icon=$(docked_icon)
wait_for 50 sh -c "grep -q '\"tray\"=\"$tarvo\"' '$store'" || fail "start-up did not write its handle to \"tray\""
grep -q '"Initialised"="1"' "$store" || fail "the first run did not finish"
grep -q '"InterruptEvery"="4"' "$store" || fail "the first run did not import the shipped defaults"
grep -q -F '[HKEY_CURRENT_USER\Software\VB and VBA Program Settings\Tarvo Micropause\Scheme*Medium Break]' "$store" ||
    fail "the first run did not import the built-in schemes"
eval "$(xdotool getwindowgeometry --shell "$icon")"
echo "ok - fresh profile initialised, icon docked at ${X},${Y}"

# Right click on the icon: the menu comes up; its access key "m" starts a micropause.
before=$(shown)
xdotool mousemove $((X + WIDTH / 2)) $((Y + HEIGHT / 2)) click 3
wait_for 50 more_shown_than "$before" ||
    fail "a right click on the icon showed no menu"
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
echo "4 passed, 0 failed"
