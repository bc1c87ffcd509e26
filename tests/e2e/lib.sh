# Shared by the end-to-end scripts and the start-up benchmark (sourced): a scratch folder $work, the
# processes in $pids that end with the script, a private X server with a window manager and a tray
# host, and the real program on a fresh profile.

# Ends the test as skipped when one of the tools is missing.
needs() {
    for tool; do command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }; done
}

# The programs must run on the X server whatever the caller's environment says.
export QT_QPA_PLATFORM=xcb
work=$(mktemp -d)
pids=()
cleanup() {
    for p in "${pids[@]}"; do kill -9 "$p" 2>/dev/null || true; done
    wait 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT
# A command that fails outside a check ends the script under errexit; say which, rather than nothing.
trap 'echo "FAIL: stopped at line $LINENO by: $BASH_COMMAND"' ERR
fail() { echo "FAIL: $*"; [ -s "$work/tarvo.err" ] && sed 's/^/  tarvo: /' "$work/tarvo.err"; exit 1; }

# A fresh profile: its settings file is $store. Every base folder is set, not only HOME: the caller's
# own (say XDG_DATA_HOME, where the history is kept) would be shared between tests, and would not be
# writable by the ordinary user the Wayland sessions run as.
export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_RUNTIME_DIR=$work/runtime
export XDG_DATA_HOME=$work/data XDG_CACHE_HOME=$work/cache XDG_STATE_HOME=$work/state
mkdir -p "$HOME" "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"
store=$XDG_CONFIG_HOME/tarvo/registry.reg

# Waits up to $1 tenths of a second for a command to succeed.
wait_for() {
    local tries=$1; shift
    for ((i = 0; i < tries; i++)); do "$@" >/dev/null 2>&1 && return 0; sleep 0.1; done
    return 1
}

# (Re)starts Xvfb with one screen of the given size, openbox and (unless told "notray") a tray host
# on it; ends what ran before.
start_x() { # <width>x<height> [notray]
    kill "${pids[@]}" 2>/dev/null || true
    wait 2>/dev/null || true
    pids=()
    : >"$work/display"
    Xvfb -displayfd 3 -screen 0 "$1x24" -nolisten tcp -noreset 3>"$work/display" 2>/dev/null &
    pids+=($!)
    wait_for 100 test -s "$work/display" || fail "Xvfb did not start"
    export DISPLAY=":$(cat "$work/display")"
    openbox >/dev/null 2>&1 &
    pids+=($!)
    wait_for 100 sh -c "xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'" || fail "openbox did not start"
    [ "${2:-}" = notray ] || start_trayer
}

start_trayer() { # [more trayer options]
    trayer --edge top --align right --widthtype request --height 24 --SetDockType true "$@" >/dev/null 2>&1 &
    trayer=$!
    pids+=("$trayer")
}

visible_window() { xdotool search --onlyvisible --name "$1" >/dev/null 2>&1; }
# How many of the program's windows are seen; none is a count too (xdotool's "not found" status must
# not end a script that runs with errexit and pipefail).
shown() { { xdotool search --onlyvisible --pid "$tarvo" 2>/dev/null || :; } | wc -l; }
more_shown_than() { [ "$(shown)" -gt "$1" ]; }
# The exercise player's video: the window of the helper that the program started; and no player (its
# title counts the seconds down) on screen.
video_window() { xdotool search --onlyvisible --pid "$(pgrep -n -P "$tarvo" tarvovideo)" 2>/dev/null | head -n 1; }
no_player() { ! xdotool search --onlyvisible --name '\([0-9]+\)$'; }

# The icon docks: one of the program's windows ends up inside trayer's panel. Prints that window.
docked_icon() {
    local panel tree w
    for panel in $(xdotool search --class '^trayer$' 2>/dev/null); do
        tree=$(xwininfo -tree -id "$panel" 2>/dev/null)
        for w in $(xdotool search --pid "$tarvo" 2>/dev/null); do
            grep -q "^ *$(printf '0x%x' "$w") " <<<"$tree" && { echo "$w"; return 0; }
        done
    done
    return 1
}

# Starts the program in the folder $bin as the running instance ($tarvo), after importing settings
# given as lines of a registry file below the program's root key (none: a first start).
start_tarvo() { # [<.reg lines>...]
    if (($#)); then
        { echo REGEDIT4; printf '%s\n' "$@"; } | sed 's|\[|[HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\Tarvo Micropause\\|' >"$work/given.reg"
        "$bin/regedit" /s "$work/given.reg" || fail "regedit could not import the settings"
    fi
    "$bin/tarvo" >"$work/tarvo.out" 2>"$work/tarvo.err" &
    tarvo=$!
    pids+=("$tarvo")
    wait_for 100 grep -q "\"tray\"=\"$tarvo\"" "$store" || fail "start-up did not write its handle to \"tray\""
}

# A second start pops the running instance's menu up; then the given key (an item's access key).
menu_key() { # <key>
    local before=$(shown)
    "$bin/tarvo" &
    pids+=($!)
    wait_for 50 more_shown_than "$before" || fail "a second start did not pop up the menu"
    xdotool key "$1"
}

# The access key "m" starts a micropause.
micropause_now() {
    menu_key m
    wait_for 100 visible_window '^Tarvo Micropause$' || fail "\"Micropause Now!\" showed no break screen"
}

# Two monitors side by side on one 2048x768 screen, and a window of the user's work ($busy).
two_monitors_with_busy_work() {
    start_x 2048x768
    xrandr --setmonitor left 1024/270x768/203+0+0 screen >/dev/null
    xrandr --setmonitor right 1024/270x768/203+1024+0 none >/dev/null
    start_work_window "Busy work" -geometry 400x200+100+100
    busy=$work_window
}

# Starts an xmessage titled $1 (further arguments for xmessage) as a window of the user's work and
# waits until the window manager has taken it on; its id in $work_window. Now and then openbox leaves
# the first window of a session unmanaged (never mapped, no WM_STATE) when it comes early: such a
# window is mapped again, so that a fault of the fixture does not fail the program's test.
managed_window() { wmctrl -l | grep -q " $1\$" && visible_window "^$1\$"; }
start_work_window() {
    local title=$1 attempt w
    shift
    xmessage -title "$title" "$@" "$title" 2>/dev/null &
    pids+=($!)
    for attempt in 1 2 3; do
        wait_for 50 managed_window "$title" && break
        echo "the window \"$title\" was not taken on by the window manager (attempt $attempt);" \
            "mapped again" >&2
        for w in $(xdotool search --name "^$title\$"); do xdotool windowunmap "$w" windowmap "$w" || true; done
    done
    managed_window "$title" || fail "the window \"$title\" of the user's work did not appear"
    work_window=$(xdotool search --name "^$title\$" | head -n 1)
}
