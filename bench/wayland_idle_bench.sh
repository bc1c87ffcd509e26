#!/usr/bin/env bash
# The idle cost of the running program in a Wayland session, started as the Wayland tests start one:
# sway, headless with two outputs of 1280x800 and XWayland, as an ordinary user. CPU time and
# voluntary context switches of all the program's threads over 60 s with no input, 15 s after each
# start, counted as tray_startup_bench.sh counts them under Xvfb; RUNS starts (3 by default) give
# the medians.
#   [RUNS=3] bench/wayland_idle_bench.sh [program folder]      (default: build/bin)
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
program=$(cd "${1:-$here/../build/bin}" && pwd)
. "$here/../tests/e2e/lib.sh"
. "$here/../tests/e2e/wayland_session.sh"
needs sway Xwayland xdpyinfo setpriv
as_ordinary_user "$here/$(basename "$0")" "$program" "$work/shots" "$program"
bin=$program
start_sway

runs=${RUNS:-3}
used() { # <pid>: CPU nanoseconds and voluntary switches of all its threads so far
    echo "$(awk '{n += $1} END{printf "%d", n}' /proc/"$1"/task/*/schedstat)" \
        "$(cat /proc/"$1"/task/*/status | awk '/^voluntary_ctxt_switches/{n += $2} END{print n}')"
}
us=() sw=()
for _ in $(seq "$runs"); do
    start_tarvo "[Options]" '"Initialised"="1"'
    sleep 15
    read -r c0 s0 < <(used "$tarvo")
    sleep 60
    read -r c1 s1 < <(used "$tarvo")
    us+=($(((c1 - c0) / 1000))) sw+=($(((s1 - s0) * 100 / 60)))
    "$bin/tarvo" shutdown && wait "$tarvo" || true
done
median() { printf '%s\n' "$@" | sort -n | sed -n "$((($# + 1) / 2))p"; }
grep -m 1 -iE "natural pauses|idle" "$work/tarvo.err" || true
awk -v us="$(median "${us[@]}")" -v sw="$(median "${sw[@]}")" -v n="$runs" 'BEGIN{
    printf "sway, idle 60 s, median of %d runs: CPU %.2f ms/min, %.2f switches/s\n", n, us / 1000, sw / 100 }'
