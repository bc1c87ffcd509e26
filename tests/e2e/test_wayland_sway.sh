#!/usr/bin/env bash
# The real program in a sway session (wlroots; headless, two outputs of 1280x800, XWayland), beside a
# native Wayland window the user types in (see wayland_session.sh for the breaks brought). What the
# user sees is taken from sway's own screenshots (grim) and window tree (swaymsg), and the keys are
# typed through the compositor (wtype).
#   test_wayland_sway.sh <program folder> <screenshot folder> <test folder>
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
. "$here/lib.sh"
. "$here/wayland_session.sh"
needs sway swaymsg grim wtype jq Xwayland xdotool xdpyinfo setpriv
as_ordinary_user "$here/$(basename "$0")" "$@"

start_sway

# The first key of a fresh virtual keyboard can be lost while its keymap travels: a Shift goes first.
key() { wtype -k Shift_L -k "$1"; }
focus() { swaymsg "[id=$1] focus" >/dev/null; }
to_work() { swaymsg '[title="^Busy work$"] focus' >/dev/null; }
# The colours of a part of the screen as sway composes it, as raw bytes of a PPM (after its header).
pixels() { grim -g "$1" -t ppm "$work/part.ppm" && tail -n +4 "$work/part.ppm"; }
picture() {
    eval "$(xdotool getwindowgeometry --shell "$1")"
    pixels "$X,$Y ${WIDTH}x$HEIGHT" | md5sum
}
# An output's corner, away from a break's panel, is black.
covered() {
    pixels "$(($1 * 1280)),0 300x200" >"$work/part.raw" && [ -s "$work/part.raw" ] &&
        [ "$(tr -d '\0' <"$work/part.raw" | wc -c)" -eq 0 ]
}
# Sway stacks floating windows above the tiled ones (the user's work), the last one on top.
on_top() { swaymsg -t get_tree | jq -e "any(.. | (.floating_nodes? // []) | last | .window?; . == $1)"; }
has_keyboard() { swaymsg -t get_tree | jq -e "any(..; .focused? == true and .window? == $1)"; }
keeps_keyboard() { wtype -k Shift_L -- typed && wait_for 10 grep -q 'typed$' "$work/busy.out"; }
screenshot() { grim "$shots/sway-$1.png"; }

# Sway offers ext-idle-notify-v1 from 1.8 on.
case "$(sway --version)" in *" 1.7"* | *" 1.6"*) idle=none ;; *) idle=ext-idle-notify-v1 ;; esac
run_breaks "$idle"

# Where the session has a StatusNotifierItem tray, the icon is there, as a tray shows it, and no
# stand-in window comes.
/usr/bin/python3 "$here/tray_host.py" >"$work/tray.out" 2>&1 &
pids+=($!)
wait_for 50 grep -q '^watching$' "$work/tray.out" || fail "the tray host did not start ($(cat "$work/tray.out"))"
restart
wait_for 100 grep -qE '^item \S+ title=Tarvo Micropause status=Active icon=\S' "$work/tray.out" ||
    fail "the tray host shows no icon of the program ($(cat "$work/tray.out"))"
! wait_for 20 more_shown_than 0 || fail "a stand-in window showed in a session with a tray"
echo "ok - the icon is in the StatusNotifierItem tray, and no stand-in window shows"
echo "6 passed, 0 failed"
