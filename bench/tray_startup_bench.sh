#!/usr/bin/env bash
# Measures the running program under Xvfb with trayer, from a fresh profile: time from exec to the
# tray icon docking (on a warm X server, after one start that takes the first-run import); memory at
# idle after start-up, after a micropause and after an exercise break, beside a bare Qt Widgets
# program with a tray icon (bare_tray) measured the same way in the same run; CPU time and voluntary
# context switches over 60 s with no input, and the same under two input loads of 30 s each, reported
# per minute and second and as the part above idle: a user at the desk (another client's 800x600
# window at 560,240 has the input focus, the pointer moves inside it at 1000 Hz and the letters a to z
# are typed into it, 10 a second), counted from the load's first event; then heavy input to no window
# in particular (1000 mouse motions and 10 keys a second, every other key with Shift), counted after a
# warm-up. All input goes through XTEST; no window manager.
#
# Memory is given as two figures that only what the machine really spends can move: PSS, and private
# dirty memory (Private_Dirty + Swap of /proc/PID/smaps_rollup), each summed over the program and the
# helpers it has running. RUNS starts (5 by default) give each figure; the median is reported.
#   [RUNS=5] bench/tray_startup_bench.sh [program folder]      (default: build/bin)
set -euo pipefail
runs=${RUNS:-5}
bin=$(cd "${1:-$(dirname "$0")/../build/bin}" && pwd)
# The scratch folder $work, the processes in $pids that end with the script, wait_for.
source "$(dirname "$0")/../tests/e2e/lib.sh"
export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_RUNTIME_DIR=$work/runtime
mkdir -p "$HOME" "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"

Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp -noreset 3>"$work/display" 2>/dev/null &
pids+=($!)
wait_for 100 test -s "$work/display"
export DISPLAY=":$(cat "$work/display")"
trayer --edge top --align right --widthtype request --height 24 >/dev/null 2>&1 &
pids+=($!)
wait_for 100 xdotool search --class trayer
# One session bus for every start, as on a desktop (the tray icon looks for a watcher on it first).
eval "$(dbus-daemon --session --fork --print-address=1 --print-pid=1 --nopidfile |
    { read -r a && read -r p && echo "export DBUS_SESSION_BUS_ADDRESS=$a; pids+=($p)"; })"

panel=$(xdotool search --onlyvisible --class trayer | head -n 1)
benches=$(cd "$(dirname "$0")/../build/bench" && pwd)
dock_time=$benches/dock_time
median_of() { printf '%s\n' "$@" | sort -n | sed -n "$((($# + 1) / 2))p"; }

run_until_docked() { # starts tarvo, prints ms from exec until its icon docked; sets tarvo_pid
    local ms
    read -r ms tarvo_pid < <("$dock_time" "$panel" "$bin/tarvo" 2>"$work/tarvo.err")
    echo "$ms"
}

# The first start of a fresh profile imports the defaults (and tries the media program); the figure
# that matters is a normal start on a warm X server.
run_until_docked >"$work/first"
first=$(cat "$work/first")
"$bin/tarvo" shutdown
sleep 1
times=()
for _ in $(seq "$runs"); do
    run_until_docked >"$work/ms"
    times+=("$(cat "$work/ms")")
    "$bin/tarvo" shutdown
    sleep 0.5
done
median=$(median_of "${times[@]}")

# --- memory -------------------------------------------------------------------------------------------
# The PSS and the private dirty memory (Private_Dirty + Swap) of a process and its helpers alive, in
# KiB: sets $pss and $dirty.
measure() { # <pid>
    kill -0 "$1" 2>/dev/null || fail "process $1 ended before its memory was measured"
    read -r pss dirty < <(for p in "$1" $(pgrep -P "$1"); do cat "/proc/$p/smaps_rollup" 2>/dev/null || true; done |
        awk '/^Pss:/{pss += $2} /^(Private_Dirty|Swap):/{dirty += $2} END{print pss + 0, dirty + 0}')
}
# A process that has ended leaves $pids, so that the clean-up at the end cannot hit another one that
# was given its number since.
ended() { # <pid>
    local p kept=()
    wait_for 100 sh -c "! kill -0 $1 2>/dev/null" || fail "process $1 did not end"
    for p in "${pids[@]}"; do [ "$p" = "$1" ] || kept+=("$p"); done
    pids=("${kept[@]}")
}
settle=10 # seconds after each step before its figures are taken
idle_windows() { [ "$(shown)" -le "$idle_shown" ]; }
exercise_break_over() { idle_windows && ! pgrep -P "$tarvo" -x tarvovideo >/dev/null; }
# A fresh profile with the defaults imported and the given settings on top.
fresh_profile() { # <.reg lines>...
    rm -rf "$XDG_CONFIG_HOME"
    "$bin/regedit" /s "$bin/tarvo32.reg"
    { echo REGEDIT4; printf '%s\n' '[Options]' '"Initialised"="1"' "$@"; } |
        sed 's|^\[|[HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\Tarvo Micropause\\|' >"$work/profile.reg"
    "$bin/regedit" /s "$work/profile.reg"
}
# The pages of a program file written a moment ago count as the process's dirty memory until the
# kernel has written them back.
sync
# A micropause of 3 s, and an exercise break of three exercises: the opening title (a video), a picture
# and a video of 2 s each; the break ends by itself, and the video helper with it.
bench_settings=("[Micropause]" '"InterruptFor"="3"' "[Exercise]" '"Scheme"="Bench"' '"NumAtaTime"="3"'
    '[Schemes]' '"Num"="4"' '"4"="Bench"' '[SchemeBench]' '"Num"="2"'
    '"1"="lookfar.bmp"' '"1d"="Look far"' '"1y"="1"' '"1s"="2"' '"2"="breathe.avi"' '"2d"="Breathe"' '"2y"="1"' '"2s"="2"')
bare=() bare_dirty=() bare_menu=() bare_menu_dirty=() idle=() idle_dirty=() micro=() micro_dirty=()
exercise=() exercise_dirty=()
for _ in $(seq "$runs"); do
    read -r _ bare_pid < <("$dock_time" "$panel" "$benches/bare_tray" 2>/dev/null)
    pids+=("$bare_pid")
    sleep "$settle"
    measure "$bare_pid"
    bare+=("$pss") bare_dirty+=("$dirty")
    # Its menu shown once and closed: what any Qt program keeps once it has drawn text (the fonts).
    # The pointer goes back where it was: left on the tray, it would hover over the reminder's icon,
    # which would then see every motion of the input load below.
    eval "$(xdotool getmouselocation --shell)"
    xdotool mousemove --window "$(xdotool search --onlyvisible --pid "$bare_pid" | head -n 1)" 5 5 click 3
    wait_for 30 sh -c "[ \$(xdotool search --onlyvisible --pid $bare_pid | wc -l) -gt 1 ]" ||
        fail "the bare program's menu did not come up"
    xdotool key Escape
    xdotool mousemove "$X" "$Y"
    sleep "$settle"
    measure "$bare_pid"
    bare_menu+=("$pss") bare_menu_dirty+=("$dirty")
    kill "$bare_pid"
    ended "$bare_pid"

    fresh_profile "${bench_settings[@]}"
    run_until_docked >/dev/null
    tarvo=$tarvo_pid
    pids+=("$tarvo")
    idle_shown=$(shown)
    sleep "$settle"
    measure "$tarvo"
    idle+=("$pss") idle_dirty+=("$dirty")

    micropause_now
    ended "${pids[-1]}" # the second start that popped the menu up
    wait_for 200 sh -c "! xdotool search --onlyvisible --name '^Tarvo Micropause\$'" || fail "the micropause did not end"
    sleep "$settle"
    measure "$tarvo"
    micro+=("$pss") micro_dirty+=("$dirty")

    menu_key e
    ended "${pids[-1]}"
    wait_for 300 pgrep -P "$tarvo" -x tarvovideo || fail "\"Exercise Now!\" started no video"
    wait_for 600 exercise_break_over || fail "the exercise break did not end, or its video helper outlived it"
    sleep "$settle"
    measure "$tarvo"
    exercise+=("$pss") exercise_dirty+=("$dirty")
    "$bin/tarvo" shutdown
    ended "$tarvo"
done
fresh_profile # the defaults again for the measurements below
mib() { awk "BEGIN{printf \"%.1f\", $1 / 1024}"; }
memory_line() { # <what> <PSS KiB...> -- <private dirty KiB...>
    local what=$1 pss=() k
    shift
    while [ "$1" != -- ]; do pss+=("$1"); shift; done
    shift
    printf '  %-38s %5s %7s    %s/ %s\n' "$what" "$(mib "$(median_of "${pss[@]}")")" "$(mib "$(median_of "$@")")" \
        "$(for k in "${pss[@]}"; do printf '%s ' "$(mib "$k")"; done)" "$(for k; do printf '%s ' "$(mib "$k")"; done)"
}
above() { # <name of the runs' figures> <name of the runs' figures below>: the median of the differences
    local -n high=$1 low=$2
    local i d=()
    for i in "${!high[@]}"; do d+=($((high[i] - low[i]))); done
    awk "BEGIN{printf \"%+.2f\", $(median_of "${d[@]}") / 1024}"
}
{
    echo "memory in MiB, median of $runs runs:       PSS  private dirty   (each run: PSS / private dirty)"
    memory_line "bare Qt tray program, idle" "${bare[@]}" -- "${bare_dirty[@]}"
    memory_line "bare Qt tray program, its menu shown" "${bare_menu[@]}" -- "${bare_menu_dirty[@]}"
    memory_line "Tarvo idle after start-up" "${idle[@]}" -- "${idle_dirty[@]}"
    memory_line "Tarvo after a micropause" "${micro[@]}" -- "${micro_dirty[@]}"
    memory_line "Tarvo after an exercise break" "${exercise[@]}" -- "${exercise_dirty[@]}"
    echo "  above Tarvo's idle, private dirty: after a micropause $(above micro_dirty idle_dirty) MiB, after an" \
        "exercise break $(above exercise_dirty idle_dirty) MiB (the bare program's menu: $(above bare_menu_dirty bare_dirty) MiB)"
    echo "  Tarvo's idle PSS above the bare program's: $(above idle bare) MiB"
} >"$work/memory"

# --- CPU ----------------------------------------------------------------------------------------------
# CPU time in nanoseconds over all threads (the scheduler's own account, finer than clock ticks).
cpu_ns() { cat /proc/"$pid"/task/*/schedstat | awk '{n += $1} END{printf "%d", n}'; }
switches() { cat /proc/"$pid"/task/*/status | awk '/^voluntary_ctxt_switches/{n += $2} END{print n}'; }
load=$benches/activity_monitor_bench
load_seconds=30
idle_us=() idle_sw=() desk_us=() desk_sw=() heavy_us=() heavy_sw=()
desk_events=() heavy_events=() # "motions keys" that each run of a load sent
# <name of the CPU figures> <name of the switch figures> <seconds> <command>...: runs the command and
# adds what the program spent meanwhile, in microseconds per minute and hundredths of a switch per second.
spent() {
    local -n us=$1 sw=$2
    local t=$3 c s
    shift 3
    c=$(cpu_ns)
    s=$(switches)
    "$@" >"$work/out"
    us+=($((($(cpu_ns) - c) * 60 / t / 1000)))
    sw+=($((($(switches) - s) * 100 / t)))
}
for _ in $(seq "$runs"); do
    run_until_docked >/dev/null
    pid=$tarvo_pid
    pids+=("$pid")
    sleep 15
    spent idle_us idle_sw 60 sleep 60
    # The desk comes first after start-up: its first events are part of what a user's desk costs.
    spent desk_us desk_sw "$load_seconds" "$load" --load-only "$DISPLAY" --seconds "$load_seconds" --desk
    desk_events+=("$(cat "$work/out")")
    # The heavy load without the one-off of a new input source: a second of it first, then a pause.
    "$load" --load-only "$DISPLAY" --seconds 1 >/dev/null
    sleep 2
    spent heavy_us heavy_sw "$load_seconds" "$load" --load-only "$DISPLAY" --seconds "$load_seconds"
    heavy_events+=("$(cat "$work/out")")
    "$bin/tarvo" shutdown
    ended "$pid"
done
# <label> <CPU figures name> <switch figures name>: the medians, and above idle the median of each
# run's rise.
cpu_line() {
    local -n us=$2 sw=$3
    local i dus=() dsw=()
    for i in "${!us[@]}"; do dus+=($((us[i] - idle_us[i]))) dsw+=($((sw[i] - idle_sw[i]))); done
    awk -v n="$1" -v us="$(median_of "${us[@]}")" -v sw="$(median_of "${sw[@]}")" \
        -v dus="$(median_of "${dus[@]}")" -v dsw="$(median_of "${dsw[@]}")" -v idle="$([ "$2" = idle_us ] && echo 1)" 'BEGIN{
        printf "  %-14s CPU %.2f ms/min, %.2f switches/s", n, us / 1000, sw / 100
        if (!idle) printf "; above idle %+.2f ms/min, %+.2f switches/s", dus / 1000, dsw / 100
        print "" }'
}

echo "time from exec to docked icon: first start ${first} ms (fresh profile, first-run import); warm starts ${times[*]} ms, median ${median} ms"
cat "$work/memory"
echo "CPU time and voluntary context switches, median of $runs runs (${load_seconds} s per load):"
cpu_line "idle 60 s" idle_us idle_sw
cpu_line "at the desk" desk_us desk_sw
cpu_line "heavy input" heavy_us heavy_sw
echo "  motions and keys sent per run: at the desk ${desk_events[*]/ /\/}; heavy input ${heavy_events[*]/ /\/}"
