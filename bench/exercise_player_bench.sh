#!/usr/bin/env bash
# Measures the exercise player of the running program under Xvfb with openbox, on a fresh profile:
# the program's PSS idle before any break, after a micropause and after an exercise break (once the
# video helper has gone); CPU time over 60 s, of the program and its video helper together, while a
# 320 x 240 exercise video loops at its own size ("ViewAm" 1) and at "ViewAm" 4 (959 x 719); and the
# time from a press of "next" to the next exercise on the screen and to its video's first frame.
#   bench/exercise_player_bench.sh [program folder]      (default: build/bin)
set -euo pipefail
bin=$(cd "${1:-$(dirname "$0")/../build/bin}" && pwd)
# The scratch folder $work, the processes in $pids that end with the script, start_x, start_tarvo.
source "$(dirname "$0")/../tests/e2e/lib.sh"
needs Xvfb openbox trayer xdotool xprop

start_x 1280x1024
"$bin/regedit" /s "$bin/tarvo32.reg"
# Two long video exercises, so that one video loops for the whole measurement.
scheme=('[Schemes]' '"Num"="4"' '"4"="Bench"' '[SchemeBench]' '"Num"="2"'
    '"1"="breathe.avi"' '"1d"="Breathe"' '"1y"="1"' '"1s"="600"'
    '"2"="catcow.avi"' '"2d"="Cat and cow"' '"2y"="1"' '"2s"="600"')
options() { # <ViewAm>
    start_tarvo "[Options]" '"Initialised"="1"' "[Micropause]" '"InterruptFor"="3"' '"Audible"="0"' \
        "[Exercise]" '"Scheme"="Bench"' '"NumAtaTime"="40"' '"AudibleX"="0"' '"BlankX"="0"' \
        "\"ViewAm\"=\"$1\"" "${scheme[@]}"
}
pss_kib() { awk '/^Pss:/{print $2}' "/proc/$1/smaps_rollup"; }
mib() { awk "BEGIN{printf \"%.1f\", $1 / 1024}"; }
helper() { pgrep -n -x tarvovideo; }
video_window() { xdotool search --onlyvisible --pid "$(helper)" 2>/dev/null | head -n 1; }
# CPU time in nanoseconds over all threads of the given processes.
cpu_ns() { for p; do cat /proc/"$p"/task/*/schedstat; done | awk '{n += $1} END{printf "%d", n}'; }
now_ms() { date +%s%3N; }

exercise_now() { # from the tray menu, as a user would; waits for the first video's picture
    menu_key e
    wait_for 200 visible_window '^Breathe \(' || fail "no exercise came"
    player=$(xdotool search --onlyvisible --name '^Breathe \(' | head -n 1)
    wait_for 100 sh -c '[ -n "$(xdotool search --onlyvisible --pid "$(pgrep -n -x tarvovideo)" 2>/dev/null)" ]' ||
        fail "no video appeared in the player"
}
loop_cpu() { # CPU ms of the program and the helper over a minute while the video loops
    sleep 3
    local h c0 c1
    h=$(helper)
    c0=$(cpu_ns "$tarvo" "$h")
    sleep 60
    c1=$(cpu_ns "$tarvo" "$h")
    awk "BEGIN{printf \"%.0f\", ($c1 - $c0) / 1e6}"
}
end_break() {
    xdotool key Escape
    wait_for 50 visible_window '^Tarvo Exercise Break$' || fail "Esc did not ask whether to quit"
    xdotool key Return
    wait_for 100 sh -c '! pgrep -x tarvovideo' || fail "the video helper outlived the break"
}
median() { printf '%s\n' "$@" | sort -n | sed -n "$((($# + 1) / 2))p"; }

options 1
sleep 15
idle=$(pss_kib "$tarvo")
micropause_now
wait_for 100 sh -c "! xdotool search --onlyvisible --name '^Tarvo Micropause\$'" || fail "the micropause did not end"
sleep 10
after_micropause=$(pss_kib "$tarvo")
exercise_now
cpu1=$(loop_cpu)

# "next" has the keyboard focus in the player: Space presses it, at no fixed point of the countdown's
# second. The next exercise comes with the countdown's next tick; its video follows.
shown_ms=()
frame_ms=()
for _ in $(seq 9); do
    old=$(video_window)
    title=$(xdotool getwindowname "$player")
    t0=$(now_ms)
    xdotool key space
    until [ "$(xdotool getwindowname "$player")" != "$title" ]; do
        (($(now_ms) - t0 < 5000)) || fail "next showed no other exercise"
    done
    shown_ms+=($(($(now_ms) - t0)))
    until w=$(video_window) && [ -n "$w" ] && [ "$w" != "$old" ]; do
        (($(now_ms) - t0 < 10000)) || fail "the next exercise showed no video"
    done
    frame_ms+=($(($(now_ms) - t0 - ${shown_ms[-1]})))
    sleep "1.$((RANDOM % 1000))"
done

end_break
sleep 10
after=$(pss_kib "$tarvo")
"$bin/tarvo" shutdown
wait_for 50 sh -c "! kill -0 $tarvo 2>/dev/null"

options 4
exercise_now
cpu4=$(loop_cpu)
end_break
"$bin/tarvo" shutdown

echo "PSS: idle before any break $(mib "$idle") MiB; after a micropause $(mib "$after_micropause") MiB;" \
    "after an exercise break, the helper gone, $(mib "$after") MiB"
echo "video looping, CPU per minute of program and helper: at its own size ${cpu1} ms, ViewAm 4 (959 x 719) ${cpu4} ms"
echo "next pressed to the next exercise shown: ${shown_ms[*]} ms, median $(median "${shown_ms[@]}") ms" \
    "(it comes with the countdown's next second)"
echo "next exercise shown to its video's first frame: ${frame_ms[*]} ms, median $(median "${frame_ms[@]}") ms"
