#!/usr/bin/env bash
# The real program in a GNOME session's compositor (mutter, headless, two virtual monitors of
# 1280x800, XWayland), beside a native Wayland window: the program chooses XWayland and GNOME's idle
# monitor; a blanked micropause covers both monitors on top of mutter's stack with the keyboard, and
# Esc ends it; the player shows its video; the exercise prompt comes without taking the keyboard.
# Mutter shows its composed screen only through a screen cast (PipeWire), so what the user sees is
# taken from mutter's side of XWayland (its stacking, focus and window places) and the windows' own
# pictures.
#   test_wayland_mutter.sh <program folder> <screenshot folder> <test folder>
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
. "$here/lib.sh"
. "$here/wayland_session.sh"
needs mutter Xwayland xdotool xprop xwininfo xdpyinfo gdbus gst-launch-1.0 setpriv
as_ordinary_user "$here/$(basename "$0")" "$@"
bin=$1
shots=$2
tests=$3

# --- the session -----------------------------------------------------------------------------------
unset WAYLAND_DISPLAY DISPLAY
mutter --headless --wayland --wayland-display=tarvo-wayland --virtual-monitor 1280x800 \
    --virtual-monitor 1280x800 >"$work/mutter.log" 2>&1 &
mutter=$!
pids+=("$mutter")
# XWayland's display and authority, from its command line.
xwayland_up() {
    local a
    test -S "$XDG_RUNTIME_DIR/tarvo-wayland" || return 1
    read -ra xwayland < <(tr '\0' ' ' <"/proc/$(pgrep -n -P "$mutter" Xwayland)/cmdline") || true # no newline at its end
    [ "${xwayland[1]:-}" ] || return 1
    export WAYLAND_DISPLAY=tarvo-wayland DISPLAY=${xwayland[1]}
    for ((a = 0; a < ${#xwayland[@]}; a++)); do [ "${xwayland[a]}" = -auth ] && export XAUTHORITY=${xwayland[a + 1]}; done
    xdpyinfo
}
wait_for 200 xwayland_up || fail "mutter did not start with XWayland ($(tail -n 3 "$work/mutter.log"))"

top_window_name() {
    local ids
    ids=$(xprop -root _NET_CLIENT_LIST_STACKING | sed 's/.*# //; s/,//g')
    xdotool getwindowname "${ids##* }"
}
top_window_width() {
    local ids
    ids=$(xprop -root _NET_CLIENT_LIST_STACKING | sed 's/.*# //; s/,//g')
    xdotool getwindowgeometry --shell "${ids##* }" | sed -n 's/^WIDTH=//p'
}
# The break, not the stand-in window of the same name, is the top of mutter's stack.
break_on_top() { [ "$(top_window_name)" = "Tarvo Micropause" ] && [ "$(top_window_width)" = 1280 ]; }
break_over() { ! xwininfo -root -tree | grep -q '"Tarvo Micropause".*1280x800+'; }
# A window's picture, as XWayland holds it.
shoot() { gst-launch-1.0 -q ximagesrc xid="$1" show-pointer=false num-buffers=1 ! videoconvert ! pngenc ! filesink location="$2"; }
picture() { shoot "$1" "$work/picture.png" && md5sum <"$work/picture.png"; }

start_work_window "$tests"
start_tarvo "[Options]" '"Initialised"="1"' "[Micropause]" '"InterruptFor"="6"' '"Blank"="1"'
wait_for 50 sh -c "xdotool search --onlyvisible --pid $tarvo | grep -q ." ||
    fail "the program did not choose XWayland in a session that offers it"
grep -q "cannot be detected" "$work/tarvo.err" && fail "natural pauses are not seen under mutter"
gdbus call --session --dest org.gnome.Mutter.IdleMonitor --object-path /org/gnome/Mutter/IdleMonitor/Core \
    --method org.gnome.Mutter.IdleMonitor.GetIdletime >/dev/null || fail "mutter offers no idle monitor"
echo "ok - the program chose XWayland, and natural pauses come from GNOME's idle monitor"

# The stand-in window (GNOME has no tray of its own) is activated, and a second start pops its menu.
# The menu takes the keyboard once mutter has given it to XWayland; a key sent before that is lost,
# and is sent again while the menu is still up.
ids() { xdotool search --onlyvisible --pid "$tarvo" 2>/dev/null | sort; }
menu_gone() { ! ids | grep -qx "$menu"; }
stand_in_menu() { # <key>
    local before try
    ids | head -n 1 | xargs xdotool windowactivate --sync
    before=$(ids)
    "$bin/tarvo" &
    pids+=($!)
    wait_for 50 sh -c "[ \"\$(xdotool search --onlyvisible --pid $tarvo | sort)\" != '$before' ]" ||
        fail "a second start showed no menu"
    menu=$(comm -13 <(echo "$before") <(ids) | head -n 1)
    for try in 1 2 3 4 5; do
        xdotool key "$1"
        wait_for 10 menu_gone && return 0
    done
    fail "the menu did not take the key $1"
}

# --- a blanked micropause: both monitors, on top, with the keyboard; Esc ends it --------------------
stand_in_menu m
wait_for 50 break_on_top || fail "the break screen is not on top of mutter's stack ($(top_window_name))"
wait_for 30 sh -c "xwininfo -root -tree | grep -q '\"Tarvo Micropause\".*1280x800+0+0'" || fail "the first monitor is not covered"
wait_for 30 sh -c "xwininfo -root -tree | grep -q '\"Tarvo Micropause\".*1280x800+1280+0'" || fail "the second monitor is not covered"
[ "$(xdotool getwindowfocus getwindowname)" = "Tarvo Micropause" ] || fail "the break screen does not have the keyboard"
shoot "$(xdotool getwindowfocus)" "$shots/mutter-break.png" || fail "no screenshot of the break"
xdotool key Escape
wait_for 30 break_over || fail "Esc did not end the break"
echo "ok - a blanked micropause covers both monitors on top of mutter's stack, has the keyboard, and Esc ends it"

# --- the player shows its video; the prompt comes without taking the keyboard -----------------------
restart_with_schemes "[Exercise]" '"EveryM"="1"' '"AudibleX"="0"' '"BlankX"="0"'
video_window() { xdotool search --onlyvisible --pid "$(pgrep -n -u "$(id -u)" tarvovideo)" 2>/dev/null | head -n 1; }
video_plays() { local first; first=$(picture "$(video_window)") && sleep 1 && [ "$(picture "$(video_window)")" != "$first" ]; }
stand_in_menu e
wait_for 100 video_window || fail "no video appeared in the player"
wait_for 50 video_plays || fail "the video does not play in the player"
echo "ok - the player shows its video"
xkey() { xdotool key "$1"; }
quit_player xkey
# An X11 window has the keyboard (the stand-in window serves), where a prompt that took it would show.
xdotool windowactivate "$(xdotool search --onlyvisible --pid "$tarvo" | head -n 1)" 2>/dev/null || true
wait_for 900 visible_window '^Exercise\.\.\.$' || fail "the exercise prompt did not come a minute after the break"
[ "$(xdotool getwindowfocus getwindowname 2>/dev/null)" != "Exercise..." ] || fail "the prompt took the keyboard"
[ "$(top_window_name)" = "Exercise..." ] || fail "the prompt is not on top of mutter's stack ($(top_window_name))"
echo "ok - the prompt comes on top without taking the keyboard"
"$bin/tarvo" shutdown
wait "$tarvo" || true
echo "4 passed, 0 failed"
