# Shared by the end-to-end scripts (sourced): a scratch folder $work, the processes in $pids that end
# with the script, and a private X server with a window manager.

# Ends the test as skipped when one of the tools is missing.
needs() {
    for tool; do
        command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }
    done
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

# Waits up to $1 tenths of a second for a command to succeed.
wait_for() {
    local tries=$1; shift
    for ((i = 0; i < tries; i++)); do "$@" >/dev/null 2>&1 && return 0; sleep 0.1; done
    return 1
}

# (Re)starts Xvfb with one screen of the given size, and openbox on it; ends what ran before.
start_x() { # <width>x<height>
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
}
