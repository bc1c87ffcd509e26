#!/usr/bin/env bash
# The real program keeps its break history as it runs: a micropause to its end and one ended by Esc
# show up in "tarvo history --csv" while it runs (no display needed for that), the start and the
# shut-down too. The status window shows the history; screenshots of it at 100% and 200% are left in
# the given folder.
#   test_history.sh <program folder> <screenshot folder>
set -euo pipefail
bin=$1
shots=$2
. "$(dirname "$0")/lib.sh"
needs Xvfb openbox trayer xdotool xprop gst-launch-1.0
mkdir -p "$shots"
break_over() { ! visible_window '^Tarvo Micropause$'; }
csv() { env -u DISPLAY "$bin/tarvo" history --csv "$@"; }

start_x 1024x768
start_tarvo "[Options]" '"Initialised"="1"' "[Micropause]" '"InterruptFor"="3"' '"Blank"="1"'
micropause_now
wait_for 100 break_over || fail "the micropause did not end by itself"
micropause_now
sleep 1
xdotool key Escape
wait_for 30 break_over || fail "Esc did not end the micropause"
csv >"$work/history.csv" || fail "the export failed while the program runs: $(cat "$work/history.csv")"
head -n 1 "$work/history.csv" | grep -qx 'time,kind,outcome,seconds,details' || fail "no header row"
grep -Eq '^[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9:]{8}[+-][0-9]{2}:[0-9]{2},start,,0,$' "$work/history.csv" ||
    fail "no start in ISO 8601 local time with its offset: $(cat "$work/history.csv")"
grep -Eq ',micropause,completed,[23],menu$' "$work/history.csv" || fail "no micropause to its end: $(cat "$work/history.csv")"
grep -Eq ',micropause,ended early,[0-2],menu$' "$work/history.csv" || fail "no micropause ended by Esc: $(cat "$work/history.csv")"
echo "ok - a micropause and one ended by Esc are in the export while the program runs"
sql_mapped() { grep -qE 'history-store|libQt6Sql|libqsqlite|libsqlite3' "/proc/$tarvo/maps"; }
wait_for 100 eval '! sql_mapped' || fail "SQLite is not let go between events: $(grep -iE 'history|sql' "/proc/$tarvo/maps")"
echo "ok - the history's module, Qt SQL and SQLite are let go once the events are written"

shoot_status() { # <file>
    menu_key s
    wait_for 50 visible_window '^Tarvo Micropause$' || fail "\"Status...\" showed no window"
    sleep 0.5
    gst-launch-1.0 -q ximagesrc show-pointer=false num-buffers=1 ! videoconvert ! pngenc ! filesink location="$1" ||
        fail "no screenshot"
}
shoot_status "$shots/status-history.png"
"$bin/tarvo" shutdown || fail "shut-down failed"
wait "$tarvo" 2>/dev/null || true
csv "$work/after.csv" || fail "the export to a file failed"
tail -n 1 "$work/after.csv" | grep -q ',shut down,,0,$' || fail "no shut-down at the end: $(cat "$work/after.csv")"
echo "ok - the shut-down is recorded and the export writes a file"

QT_SCALE_FACTOR=2 start_tarvo
shoot_status "$shots/status-history-200.png"
echo "4 passed, 0 failed"
