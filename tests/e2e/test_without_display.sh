#!/usr/bin/env bash
# The real program where there is no display to show windows on: "tarvo shutdown" still works (and
# writes nothing when none runs), any other start ends with one line and exit status 1, and on Qt's
# offscreen platform the program runs without touching X11 and ends on "tarvo shutdown". A second
# start with the settings of another profile in the same runtime folder cannot reach the instance:
# it says why on standard error and ends at once with status 1, and the instance goes on.
#   test_without_display.sh <program folder>
set -euo pipefail
bin=$1
. "$(dirname "$0")/lib.sh"
unset DISPLAY WAYLAND_DISPLAY

"$bin/tarvo" shutdown || fail "\"tarvo shutdown\" with none running ended with status $?"
[ ! -e "$store" ] || fail "\"tarvo shutdown\" with none running wrote the settings"

status=0
"$bin/tarvo" 2>"$work/nodisplay.err" || status=$?
[ "$status" = 1 ] || fail "a start without a display ended with status $status"
[ "$(wc -l <"$work/nodisplay.err")" = 1 ] && grep -q '^Tarvo Micropause needs a graphical desktop: ' "$work/nodisplay.err" ||
    fail "a start without a display said: $(cat "$work/nodisplay.err")"

QT_QPA_PLATFORM=offscreen start_tarvo
other_start() { # <expected line on standard error> [argument]
    local status=0
    XDG_CONFIG_HOME=$work/other timeout 10 "$bin/tarvo" ${2:+"$2"} 2>"$work/other.err" || status=$?
    [ "$status" = 1 ] && grep -qF "$1" "$work/other.err" ||
        fail "\"tarvo $2\" with other settings ended with status $status, saying: $(cat "$work/other.err")"
}
other_start "cannot shut down the running instance (process $tarvo): the settings name no running instance" shutdown
other_start "Tarvo Micropause is already running in the System Tray"
mkdir -p "$work/other/tarvo"
printf 'REGEDIT4\n\n[%s\\Options]\n"tray"="%s"\n' 'HKEY_CURRENT_USER\Software\VB and VBA Program Settings\Tarvo Micropause' $$ >"$work/other/tarvo/registry.reg"
other_start "cannot shut down the running instance (process $tarvo): the settings name process $$, which is not it" shutdown
other_start "cannot reach the running instance (process $tarvo): the settings name process $$"
kill -0 "$tarvo" || fail "the running instance ended on a start with other settings"

"$bin/tarvo" shutdown || fail "\"tarvo shutdown\" without a display ended with status $?"
wait_for 100 sh -c "! kill -0 $tarvo" || fail "the running instance did not end on \"tarvo shutdown\""
wait "$tarvo" || fail "the offscreen instance ended with status $?"
grep -q '"tray"="0"' "$store" || fail "shut-down left \"tray\" set"
echo PASS
