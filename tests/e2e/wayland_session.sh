# Shared by the Wayland end-to-end scripts (sourced after lib.sh): the compositor runs as an ordinary
# user, the user's work is a native Wayland window, and the program is left to choose its own platform.

# Run as root, the script runs itself again as an unprivileged user (compositors such as sway refuse
# root), on a session bus of that user's own, and brings its screenshots back to the given folder.
as_ordinary_user() { # <script> <program folder> <screenshot folder> <test folder>
    [ "$(id -u)" = 0 ] || return 0
    local user=tarvo-e2e out rc=0
    id "$user" >/dev/null 2>&1 || useradd --system --no-create-home --shell /usr/sbin/nologin "$user" ||
        { echo "FAIL: could not create the user $user"; exit 1; }
    out=$(mktemp -d)
    chown "$user" "$out"
    setpriv --reuid="$user" --regid="$user" --init-groups env -u DBUS_SESSION_BUS_ADDRESS -u XDG_RUNTIME_DIR \
        dbus-run-session -- "$1" "$2" "$out" "$4" || rc=$?
    mkdir -p "$3"
    cp "$out"/*.png "$3"/ 2>/dev/null || true
    rm -rf "$out"
    exit "$rc"
}

# The program chooses: a Wayland session that offers X11.
unset QT_QPA_PLATFORM

# The user's work: a native Wayland window ($busy_out gets what is typed into it).
start_work_window() { # <test folder>
    busy_out=$work/busy.out
    env -u DISPLAY "$1/work_window" -platform wayland >"$busy_out" 2>"$work/busy.err" &
    pids+=($!)
    wait_for 100 grep -q '^shown$' "$busy_out" || fail "the native window of the user's work did not show"
}

# Types into whatever has the compositor's keyboard focus; the first key of a fresh virtual keyboard
# can be lost while its keymap travels, so a Shift goes first.
type_keys() { wtype -k Shift_L -- "$@"; }
press_key() { wtype -k Shift_L -k "$1"; }
# The user's window has the keyboard: what is typed now arrives there.
busy_has_keyboard() { type_keys "$1" && wait_for 10 grep -q "$1\$" "$busy_out"; } # <word>

# A failure leaves what the screen showed then, where the session can show it.
shoot_screen() { return 1; } # <file>
fail() {
    echo "FAIL: $*"
    shoot_screen "$shots/$(basename "$0" .sh)-failure.png" 2>/dev/null || true
    [ -s "$work/tarvo.err" ] && sed 's/^/  tarvo: /' "$work/tarvo.err"
    exit 1
}
trap 'fail "$BASH_COMMAND failed (line $LINENO)"' ERR # a failure is never silent
restart() { "$bin/tarvo" shutdown && wait "$tarvo" || true; start_tarvo "$@"; } # [<.reg lines>...]
# The same with the built-in exercise schemes imported while no instance runs.
restart_with_schemes() {
    "$bin/tarvo" shutdown && wait "$tarvo" || true
    "$bin/regedit" /s "$bin/tarvo32.reg" || fail "regedit could not import the schemes"
    start_tarvo "$@"
}
# Esc asks whether to quit the exercise break, and Return says yes (keys sent with the given command).
quit_player() { # <command that sends one key>
    "$1" Escape
    wait_for 50 visible_window '^Tarvo Exercise Break$' || fail "Esc did not ask whether to quit"
    "$1" Return
    wait_for 50 sh -c "! xdotool search --onlyvisible --name '\([0-9]+\)\$'" || fail "Yes did not end the exercise break"
}
