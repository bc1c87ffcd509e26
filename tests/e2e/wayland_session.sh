# Shared by the Wayland end-to-end scripts (sourced after lib.sh): the compositor runs as an ordinary
# user, the user's work is a native Wayland window, the program chooses its own platform, and the same
# breaks are brought in every compositor. A script gives what only its compositor can tell:
#   (first)                 the compositor, two outputs of 1280x800 side by side, XWayland; join_session
#   key <keysym>            a key to whatever has the compositor's keyboard focus
#   focus <window>          the keyboard to an X11 window; to_work: to the user's work
#   picture <window>        a fingerprint of what is seen of a window
#   covered <output>        the output (0 or 1) is covered by the program
#   on_top <window>         the window is above the user's work
#   has_keyboard <window>   the compositor gives the window the keyboard
#   keeps_keyboard <window> the window did not take the keyboard from the user's work
#   screenshot <name>       keeps what is seen in $shots

# Run as root, the script runs itself again as an unprivileged user (compositors such as sway refuse
# root), on a session bus of that user's own. The checkout may lie where that user cannot enter (a
# clone in root's home, a private temporary folder): the user runs a copy of the scripts, the program
# folder and the native test window, and the screenshots taken come back when the session ends.
as_ordinary_user() { # <script> <program folder> <screenshot folder> <test folder>
    bin=$2 shots=$3 tests=$4
    [ "$(id -u)" = 0 ] || return 0
    id tarvo-e2e >/dev/null 2>&1 || useradd --system --no-create-home --shell /usr/sbin/nologin tarvo-e2e
    local top copy status=0
    top=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
    copy=$(mktemp -d /tmp/tarvo-e2e.XXXXXX)
    mkdir -p "$copy/tree/tests" "$copy/shots" "$copy/tests"
    cp -r "$top/tests/e2e" "$copy/tree/tests/" && cp -r "$top/bench" "$copy/tree/" && cp -r "$2" "$copy/bin"
    [ ! -e "$4/work_window" ] || cp "$4/work_window" "$copy/tests/"
    chmod 755 "$copy" && chown -R tarvo-e2e "$copy"
    setpriv --reuid=tarvo-e2e --regid=tarvo-e2e --init-groups env -u DBUS_SESSION_BUS_ADDRESS \
        -u XDG_RUNTIME_DIR dbus-run-session -- \
        "$copy/tree/$(realpath --relative-to="$top" "$1")" "$copy/bin" "$copy/shots" "$copy/tests" || status=$?
    ((status == 0 || status == 77)) || echo "FAIL: the session as tarvo-e2e ended with status $status"
    mkdir -p "$3" && cp -r "$copy/shots/." "$3/"
    rm -rf "$copy"
    exit "$status"
}
unset QT_QPA_PLATFORM WAYLAND_DISPLAY DISPLAY SWAYSOCK XAUTHORITY
# The session's displays, from the environment the compositor gave a command it started, which wrote
# it to $work/session.env.
join_session() { # <compositor>
    wait_for 200 grep -q '^DISPLAY=' "$work/session.env" || fail "$1 did not start ($(tail -n 3 "$work/$1.log"))"
    eval "export $(grep -E '^(WAYLAND_DISPLAY|DISPLAY|SWAYSOCK|XAUTHORITY)=' "$work/session.env" | tr '\n' ' ')"
    wait_for 100 xdpyinfo || fail "XWayland did not start"
}

# Sway, headless with two outputs side by side and XWayland.
start_sway() {
    cat >"$work/sway.config" <<CONFIG
xwayland force
output HEADLESS-1 resolution 1280x800 position 0 0
output HEADLESS-2 resolution 1280x800 position 1280 0
exec env >$work/session.env
CONFIG
    WLR_BACKENDS=headless WLR_HEADLESS_OUTPUTS=2 WLR_RENDERER=pixman WLR_LIBINPUT_NO_DEVICES=1 \
        sway -c "$work/sway.config" >"$work/sway.log" 2>&1 &
    pids+=($!)
    join_session sway
}

set -E # a command that stops the script is named, in a function too

windows() { xdotool search --onlyvisible --pid "$tarvo" 2>/dev/null | sort; }
# The break: the program's window that is wider than its menu and its stand-in window.
break_window() {
    local w
    for w in $(windows); do
        eval "$(xdotool getwindowgeometry --shell "$w")"
        ((WIDTH >= 300)) && echo "$w" && return 0
    done
    return 1
}
no_break() { ! break_window; }
# The native window of the user's work says when the compositor stops and starts showing it.
work_is() { [ "$(grep -xE 'shown|covered' "$work/busy.out" | tail -n 1)" = "$1" ]; }
video_plays() { local first; first=$(picture "$(video_window)") && sleep 1 && [ "$(picture "$(video_window)")" != "$first" ]; }

# The user opens the menu of the stand-in window (there is no tray in these sessions) with a second
# start, and picks an item by its access key. The menu takes the keyboard only once the compositor
# has given it to XWayland: a key sent before is lost, and is sent again while the menu is up.
stand_in_menu() { # <key>
    local before try menu
    wait_for 50 more_shown_than 0 || fail "the stand-in window did not show"
    focus "$(windows | head -n 1)"
    before=$(windows)
    "$bin/tarvo" &
    pids+=($!)
    wait_for 50 sh -c "[ \"\$(xdotool search --onlyvisible --pid $tarvo | sort)\" != '$before' ]" ||
        fail "a second start showed no menu"
    menu=$(comm -13 <(echo "$before") <(windows) | head -n 1)
    for try in 1 2 3 4 5; do
        key "$1"
        wait_for 10 sh -c "! xdotool search --onlyvisible --pid $tarvo | grep -qx $menu" && return 0
    done
    fail "the menu did not take the key $1"
}
# The program ended keeps what it said in $work/earlier.err.
restart() { # [<.reg lines>...]
    "$bin/tarvo" shutdown || echo "(shutdown failed)" >>"$work/tarvo.err"
    wait "$tarvo" || echo "(ended with status $?)" >>"$work/tarvo.err"
    cat "$work/tarvo.err" >>"$work/earlier.err"
    start_tarvo "$@"
}
# Esc asks whether to quit the exercise break, and Return says yes.
quit_player() {
    key Escape
    wait_for 50 visible_window '^Tarvo Exercise Break$' || fail "Esc did not ask whether to quit"
    key Return
    wait_for 50 no_player || fail "Yes did not end the exercise break"
}

# The breaks, as the user sees them through the compositor. <idle source>: "none" where the
# compositor offers no idle protocol, and the program must say so by name.
run_breaks() { # <idle source>
    env -u DISPLAY "$tests/work_window" -platform wayland >"$work/busy.out" 2>"$work/busy.err" &
    pids+=($!)
    wait_for 100 grep -q '^shown$' "$work/busy.out" || fail "the native window of the user's work did not show"
    "$bin/regedit" /s "$bin/tarvo32.reg" || fail "regedit could not import the exercise schemes"
    start_tarvo "[Options]" '"Initialised"="1"' "[Micropause]" '"InterruptFor"="6"' '"Blank"="1"'
    wait_for 50 more_shown_than 0 || fail "the program did not choose XWayland in a session that offers it"
    if [ "$1" = none ]; then
        wait_for 30 grep -q "offers neither ext-idle-notify-v1 nor GNOME's idle monitor" "$work/tarvo.err"
    else ! grep -q "cannot be detected" "$work/tarvo.err"; fi || fail "natural pauses do not match the idle source ($1)"
    echo "ok - the program chose XWayland; natural pauses: $1"

    stand_in_menu m
    wait_for 50 covered 0 || fail "the blanked micropause does not cover the first output"
    wait_for 50 covered 1 || fail "the blanked micropause does not cover the second output"
    wait_for 30 eval 'has_keyboard "$(break_window)"' || fail "the break does not have the keyboard"
    wait_for 30 work_is covered || fail "the blanked micropause is not above the user's native window"
    screenshot break
    key Escape
    wait_for 30 no_break || fail "Esc did not end the break"
    wait_for 30 work_is shown || fail "the user's native window is not shown again after the break"
    restart "[Micropause]" '"Blank"="0"' "[Exercise]" '"EveryM"="1"' '"AudibleX"="0"' '"BlankX"="0"'
    stand_in_menu m
    wait_for 50 break_window || fail "\"Micropause Now!\" showed no break at its own size"
    wait_for 30 eval 'on_top "$(break_window)"' || fail "the micropause at its own size is not above the user's work"
    screenshot break-unblanked
    wait_for 100 no_break || fail "the micropause at its own size did not end"
    echo "ok - a micropause covers both outputs and the native window with the keyboard, Esc ends it, and unblanked it is on top"

    stand_in_menu e
    wait_for 100 video_window || fail "no video appeared in the player"
    wait_for 50 video_plays || fail "the video does not play in the player"
    screenshot player
    quit_player
    to_work
    wait_for 900 visible_window '^Exercise\.\.\.$' || fail "the exercise prompt did not come a minute after the break"
    prompt=$(xdotool search --onlyvisible --name '^Exercise\.\.\.$' | head -n 1)
    keeps_keyboard "$prompt" || fail "the prompt took the keyboard"
    wait_for 30 on_top "$prompt" || fail "the prompt is not above the user's work"
    screenshot prompt
    echo "ok - the player shows its video, and the prompt comes on top without taking the keyboard"

    restart "[Exercise]" '"BlankX"="1"'
    stand_in_menu e
    wait_for 100 video_window && wait_for 50 video_plays || fail "the video does not play in the blanked player"
    wait_for 50 covered 0 || fail "the blanked player does not cover the first output"
    wait_for 50 covered 1 || fail "the blanked player does not cover the second output"
    wait_for 30 work_is covered || fail "the blanked player is not above the user's native window"
    screenshot player-blanked
    quit_player
    echo "ok - the blanked player shows its video and covers both outputs and the native window"

    # The minute without input before the prompt was a natural pause where the compositor tells idle
    # time, and none where it does not; the history has each told by the program's end.
    "$bin/tarvo" shutdown && wait "$tarvo" || true
    "$bin/tarvo" history --csv >"$work/history.csv" || fail "the history could not be exported"
    naturals=$(grep -c ',micropause,credited,' "$work/history.csv" || true)
    if [ "$1" = none ]; then [ "$naturals" = 0 ]; else [ "$naturals" -gt 0 ]; fi ||
        fail "natural pauses recorded ($naturals) do not match the idle source ($1); the history:
$(cat "$work/history.csv")
what the program said before its last start:
$(cat "$work/earlier.err")"
    echo "ok - natural pauses recorded: $naturals ($1)"
}
