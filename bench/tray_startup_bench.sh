#!/usr/bin/env bash
# Measures the running program under Xvfb with trayer, from a fresh profile: time from exec to the
# tray icon docking (on a warm X server, after one start that takes the first-run import), PSS of the
# process after 15 s, CPU time and voluntary context switches over 60 s with no input, and the same
# under two input loads of 30 s each, reported per minute and second and as the part above idle: a user
# at the desk (another client's 800x600 window at 560,240 has the input focus, the pointer moves inside
# it at 1000 Hz and the letters a to z are typed into it, 10 a second), counted from the first input of
# the session; then heavy input to no window in particular (1000 mouse motions and 10 keys a second,
# every other key with Shift), counted after a warm-up. All input goes through XTEST; no window manager.
#   bench/tray_startup_bench.sh [program folder]      (default: build/bin)
set -euo pipefail
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
dock_time=$(cd "$(dirname "$0")/../build/bench" && pwd)/dock_time

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
for _ in 1 2 3 4 5; do
    run_until_docked >"$work/ms"
    times+=("$(cat "$work/ms")")
    "$bin/tarvo" shutdown
    sleep 0.5
done
median=$(printf '%s\n' "${times[@]}" | sort -n | sed -n 3p)

run_until_docked >/dev/null
pid=$tarvo_pid
sleep 15
pss=$(awk '/^Pss:/{print $2}' "/proc/$pid/smaps_rollup")

# CPU time in nanoseconds over all threads (the scheduler's own account, finer than clock ticks).
cpu_ns() { cat /proc/"$pid"/task/*/schedstat | awk '{n += $1} END{printf "%d", n}'; }
switches() { cat /proc/"$pid"/task/*/status | awk '/^voluntary_ctxt_switches/{n += $2} END{print n}'; }
c0=$(cpu_ns)
s0=$(switches)
sleep 60
c1=$(cpu_ns)
s1=$(switches)

load=$(cd "$(dirname "$0")/../build/bench" && pwd)/activity_monitor_bench
load_seconds=30
idle_ms=$(awk "BEGIN{print ($c1 - $c0) / 1e6}")
idle_sw=$(awk "BEGIN{print ($s1 - $s0) / 60}")
under_load() { # <name> <load options>...: runs the load and prints its figures beside idle
    local name=$1 c s motions keys
    shift
    c=$(cpu_ns)
    s=$(switches)
    "$load" --load-only "$DISPLAY" --seconds "$load_seconds" "$@" >"$work/load"
    read -r motions keys <"$work/load"
    awk -v c="$(($(cpu_ns) - c))" -v s="$(($(switches) - s))" -v t="$load_seconds" -v im="$idle_ms" \
        -v is="$idle_sw" -v m="$motions" -v k="$keys" -v n="$name" 'BEGIN{
        ms = c / 1e6 * 60 / t; sw = s / t
        printf "%s %d s (%d motions, %d keys): CPU %.2f ms/min, %.2f switches/s; above idle %.2f ms/min, %.2f switches/s\n",
            n, t, m, k, ms, sw, ms - im, sw - is }' >>"$work/loads"
}
# The desk comes first: the first input of the session is part of what a user's desk costs (the first
# keys from a device make every client that follows the keyboard hear of a new keymap).
under_load "at the desk" --desk
# The other load without that one-off: a second of it first, then a pause.
"$load" --load-only "$DISPLAY" --seconds 1 >/dev/null
sleep 2
under_load "heavy input"
"$bin/tarvo" shutdown

echo "time from exec to docked icon: first start ${first} ms (fresh profile, first-run import); warm starts ${times[*]} ms, median ${median} ms"
echo "PSS after 15 s: $((pss / 1024)).$(((pss % 1024) * 10 / 1024)) MiB"
echo "idle 60 s: CPU $(awk "BEGIN{printf \"%.2f\", ($c1 - $c0) / 1e6}") ms, voluntary context switches $((s1 - s0)) ($(awk "BEGIN{printf \"%.2f\", ($s1 - $s0) / 60}")/s)"
cat "$work/loads"
