#!/usr/bin/env bash
# The real program in a GNOME session's compositor (mutter, headless, two virtual monitors of
# 1280x800, XWayland), beside a native Wayland window (see wayland_session.sh for the breaks brought).
# Mutter shows its composed screen only through a screen cast (PipeWire), so what the user sees is
# taken from mutter's side of XWayland (its stacking, focus and window places) and the windows' own
# pictures; the keys go to XWayland's focus (XTEST), as mutter offers no virtual keyboard.
#   test_wayland_mutter.sh <program folder> <screenshot folder> <test folder>
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
. "$here/lib.sh"
. "$here/wayland_session.sh"
needs mutter Xwayland xdotool xprop xwininfo xdpyinfo gst-launch-1.0 setpriv
as_ordinary_user "$here/$(basename "$0")" "$@"

# Mutter ends with the command it runs in its session, which lives as long as mutter.
mutter --headless --wayland --virtual-monitor 1280x800 --virtual-monitor 1280x800 \
    -- sh -c "env >$work/session.env; exec tail --pid=\$PPID -f /dev/null" >"$work/mutter.log" 2>&1 &
pids+=($!)
join_session mutter

key() { xdotool key "$1"; }
focus() { xdotool windowactivate --sync "$1"; }
to_work() { focus "$(windows | head -n 1)"; } # an X11 window serves: the stand-in window
shoot() { gst-launch-1.0 -q ximagesrc xid="$1" show-pointer=false num-buffers=1 ! videoconvert ! pngenc ! filesink location="$2"; }
picture() { shoot "$1" "$work/picture.png" && md5sum <"$work/picture.png"; }
# A window of the monitor's whole size at its place (xwininfo's last column: the place on the screen).
covered() { xwininfo -root -tree | grep -qE "1280x800\+[-0-9]+\+[-0-9]+ +\+$(($1 * 1280))\+0\$"; }
top_window() { xprop -root _NET_CLIENT_LIST_STACKING | sed 's/.*[ ,]//'; }
on_top() { [ "$(($(top_window)))" = "$1" ]; }
has_keyboard() { [ "$(xdotool getwindowfocus)" = "$1" ]; }
keeps_keyboard() { ! has_keyboard "$1"; }
screenshot() { shoot "$(top_window)" "$shots/mutter-$1.png"; }

# A break comes full screen on the monitor under XWayland's pointer, put on the first monitor, where
# mutter places the user's work: mutter stops the frames of a window below a full-screen one, but not
# of one below the cover put over a monitor (an override-redirect window), so only the first is shown
# by the native window.
xdotool mousemove 1270 790
run_breaks "GNOME's idle monitor"
echo "note - mutter still asks a native window below the cover put over a monitor for frames: that cover is seen from the X side only"
echo "5 passed, 0 failed"
