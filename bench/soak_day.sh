#!/usr/bin/env bash
# A working day at speed: the real program runs 24 simulated hours (libfaketime, 60 times faster, so
# about 25 minutes) under Xvfb with openbox and a tray host, while synthetic keyboard and mouse input
# works and pauses in a seeded random pattern. Watched only from outside, it checks that
#   - every micropause and every exercise prompt comes at the minute the schedule says,
#   - a pause of input longer than a micropause is credited (the micropause countdown starts afresh),
#   - the resident memory and the open files stay flat from the first simulated hour to the last.
#   bench/soak_day.sh [program folder] [hours]      (default: build/bin, 24)
# SOAK_SPEED (default 60) and SOAK_SEED (default 1) vary the run; SOAK_LOG names a folder that keeps
# the plan and what was seen. Exits 1 when something is off.
#
# How the schedule runs (and so what is expected): a minute tick moves the exercise countdown while no
# exercise prompt is up and the micropause countdown while one is; the prompt is answered with "Later"
# after a while, and regedit changes the minutes the next "Later" postpones by ("ProcrastinateM"),
# which the program must read back from its settings file. Every action happens half-way between two
# minute ticks, so that which tick it precedes is never in doubt.
set -euo pipefail
if [ -z "${DBUS_SESSION_BUS_ADDRESS:-}" ]; then # a session bus, as on a desktop
    exec dbus-run-session -- "$0" "$@"
fi
bin=$(cd "${1:-$(dirname "$0")/../build/bin}" && pwd)
hours=${2:-24}
speed=${SOAK_SPEED:-60}
seed=${SOAK_SEED:-1}
# The scratch folder $work, the processes in $pids that end with the script, start_x, fail, $store.
source "$(dirname "$0")/../tests/e2e/lib.sh"
needs Xvfb openbox trayer xdotool xprop awk
faketime_lib=$(compgen -G '/usr/lib/*/faketime/libfaketimeMT.so.1' | head -n 1) ||
    { echo "SKIP: libfaketime is not installed"; exit 77; }

# The schedule, in simulated units: a micropause (and the natural-pause check) of 20 s, one every 3
# minutes while the prompt is up, the prompt every 10 minutes. No sounds: nothing blocks on a sound
# server.
interrupt_for=20 interrupt_every=3 every_m=10 first_later=5
# libfaketime runs every clock of the program from this start, CLOCK_BOOTTIME too: under it that clock
# reads the faked wall clock in place of the time since boot. The tick count is its milliseconds cut
# to 32 bits; a tick count that wraps makes one natural-pause check see no input, so the day must not
# cross a wrap (this start keeps it negative all day).
start_time="2026-03-02 08:00:00"
minutes=$((hours * 60))
tick0=$(($(TZ=UTC date -d "$start_time" +%s) * 1000 % 4294967296))
((tick0 >= 2147483648 ? tick0 + minutes * 60000 < 4294967296 : tick0 + minutes * 60000 < 2147483648)) ||
    fail "the tick count would wrap during the day; choose another start time"

# --- the plan: actions half-way through minutes, and the events they make due ----------------------
# Output, one a line:  A <minute> <action> [argument]   the action half-way after tick <minute>
#                      E <minute> micropause|prompt      an event due at tick <minute>
#                      P <start> <end> <decisive> <next> a pause of input from half-way after tick
#                        <start> to half-way after tick <end>; decisive when crediting it changes what
#                        is seen (a micropause it suppresses, or the tick <next> of the next one)
awk -v seed="$seed" -v n="$minutes" -v E="$every_m" -v R="$interrupt_every" -v M="$first_later" '
function pick() { return substr("key  mouseboth ", 1 + 5 * int(rand() * 3), 5) }
function tick(k) {
    if (!pending) {
        if (--X == 0) { print "E", k, "prompt"; pending = 1; laterAt = k + 4 + int(rand() * 14) }
        return
    }
    if (idle) { # every check of a pause credits it: no micropause, and C starts afresh at its end
        if (--Calt < 1) { suppressed = 1; Calt = R }
        return
    }
    if (--C < 1) {
        print "E", k, "micropause"; C = R
        if (watching) { print "P", pstart, pend, 1, k; watching = 0 }
    }
}
function endWatch() { if (watching) print "P", pstart, pend, 0, -1; watching = 0 }
BEGIN {
    srand(seed); C = R; X = E; pending = 0; idle = 0; setMAt = -1; want = 0
    # Two long absences (a meeting, lunch) besides the short pauses.
    long[240] = 30; long[720] = 60
    for (k = 0; k <= n; k++) {
        if (k > 0) tick(k)
        if (k in long) want = long[k]
        if (k == setMAt) { M = 2 + int(rand() * 7); print "A", k, "procrastinate", M }
        if (idle) {
            if (k < pend) continue
            idle = 0; C = R; print "A", k, "work", pick()
            if (suppressed) print "P", pstart, pend, 1, -1
            else if (Calt != R) watching = 1
            else print "P", pstart, pend, 0, -1
            continue
        }
        if (pending && k >= laterAt) {
            print "A", k, "later"; X = M; pending = 0; setMAt = k + 1
            continue
        }
        # A pause may not start when the next tick brings a micropause: whether its first check
        # comes before or after that tick would decide whether the micropause comes.
        if ((want || rand() < 0.07) && !(pending && C == 1)) {
            endWatch()
            idle = 1; pstart = k; pend = k + (want ? want : 1 + int(rand() * 5)); Calt = C; suppressed = 0
            want = 0
            print "A", k, "idle"
        } else if (rand() < 0.1) {
            print "A", k, "work", pick()
        }
    }
    endWatch()
}' >"$work/plan"

# --- the profile ------------------------------------------------------------------------------------
export TZ=UTC
"$bin/regedit" /s "$bin/tarvo32.reg" || fail "regedit could not import the defaults"
settings() { # <section> <"key"="value" lines>...
    local section=$1
    shift
    printf 'REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\Tarvo Micropause\\%s]\n' "$section"
    printf '%s\n' "$@"
}
{
    settings Options '"Initialised"="1"'
    settings Micropause "\"InterruptFor\"=\"$interrupt_for\"" "\"InterruptEvery\"=\"$interrupt_every\"" \
        '"IntelliReset"="1"' '"Audible"="0"' '"AudiblePre"="0"' '"Blank"="1"' '"Monitor0"="1"' '"Monitor1"="1"'
    settings Exercise "\"EveryM\"=\"$every_m\"" '"AudibleX"="0"' "\"ProcrastinateM\"=\"$first_later\""
} | sed '2,${/^REGEDIT4$/d}' >"$work/profile.reg"
"$bin/regedit" /s "$work/profile.reg" || fail "regedit could not import the soak's settings"

start_x 1280x800

# --- the input: a loop that types and moves the mouse as $work/input says (key, mouse, both, none) ---
exec {nap}<> <(:) # read -t on it waits without a process
set_input() { echo "$1" >"$work/input.new" && mv "$work/input.new" "$work/input"; }
set_input both
(
    step=1
    while :; do
        read -r mode <"$work/input" || mode=none
        case $mode in
        key) xdotool key shift ;;
        mouse) xdotool mousemove_relative -- "$step" 0 ;;
        both) xdotool key shift mousemove_relative -- "$step" 0 ;;
        esac
        step=$((-step))
        read -r -t 0.05 -u "$nap" || true
    done
) &
pids+=($!)

# --- the observer: every change of the window manager's client list, with the real time -------------
(
    declare -A name=()
    xprop -spy -root _NET_CLIENT_LIST | while IFS= read -r line; do
        now=$EPOCHREALTIME
        declare -A seen=()
        for id in $(echo "${line#*# }" | tr ',' ' '); do
            seen[$id]=1
            if [ -z "${name[$id]:-}" ]; then
                # A busy X server now and then refuses a connection: ask again before giving up.
                for _ in 1 2 3; do name[$id]=$(xdotool getwindowname "$id" 2>/dev/null) && break; done
                echo "$now + $id ${name[$id]:=?}"
            fi
        done
        for id in "${!name[@]}"; do
            [ -n "${seen[$id]:-}" ] || { echo "$now - $id ${name[$id]}"; unset "name[$id]"; }
        done
        unset seen
    done
) >"$work/windows" &
pids+=($!)

# --- the program, on the fast clock -----------------------------------------------------------------
# The library is preloaded into the program itself (the faketime command would run it as its child,
# with another pid); its thread-safe build, since Qt runs threads.
LD_PRELOAD=$faketime_lib FAKETIME="@$start_time x$speed" "$bin/tarvo" >"$work/tarvo.out" 2>"$work/tarvo.err" &
tarvo=$!
pids+=("$tarvo")
# Start-up writes "AppPath" right after it has armed the timers: the real time of that write is tick 0.
wait_for 100 grep -q '"AppPath"=' "$store" || fail "the program did not start"
us() { echo "${1/[.,]/}"; } # seconds with six decimals as microseconds
r0=$(us "$(stat -c %.6Y "$store")")
minute_us=$((60000000 / speed))

declare -A actions=()
while read -r kind k rest; do
    [ "$kind" = A ] && actions[$k]+="$rest;"
done <"$work/plan"

prompt_window() { xdotool search --onlyvisible --name '^Exercise\.\.\.$' 2>/dev/null | head -n 1; }
no_break() { ! xdotool search --onlyvisible --name '^Tarvo Micropause$' >/dev/null 2>&1; }
no_prompt() { [ -z "$(prompt_window)" ]; }
later() {
    local mode prompt
    read -r mode <"$work/input"
    set_input none # a key held by the typing loop would change the shortcut
    wait_for 5 no_break || true
    prompt=$(prompt_window)
    [ -n "$prompt" ] && xdotool windowactivate --sync "$prompt" key --clearmodifiers alt+l
    wait_for 3 no_prompt || echo "$k prompt-stayed" >>"$work/late"
    set_input "$mode"
}
sample() { # <hour>: resident memory in KiB and the number of open files
    echo "H $1 $(awk '/^VmRSS:/{print $2}' "/proc/$tarvo/status") $(find "/proc/$tarvo/fd" -mindepth 1 | wc -l)" >>"$work/samples"
}

: >"$work/late"
: >"$work/samples"
for ((k = 0; k <= minutes; k++)); do
    now=$(us "$EPOCHREALTIME")
    wait_us=$((r0 + k * minute_us + minute_us / 2 - now))
    ((wait_us > 0)) && { read -r -t "$((wait_us / 1000000)).$(printf %06d $((wait_us % 1000000)))" -u "$nap" || true; }
    todo=${actions[$k]:-}
    # First the input, whose timing counts: input that stops or starts after the next tick would have
    # been planned for the wrong minute. (When "Later" took effect shows in the window log.)
    if [[ $todo =~ work\ ([a-z]+) ]]; then
        set_input "${BASH_REMATCH[1]}"
    elif [[ $todo == *idle* ]]; then
        set_input none
    fi
    late=$((($(us "$EPOCHREALTIME") - r0) * 100 / minute_us - k * 100))
    ((late < 90)) || echo "$k late $late" >>"$work/late"
    [[ $todo == *later* ]] && later
    if [[ $todo =~ procrastinate\ ([0-9]+) ]]; then
        settings Exercise "\"ProcrastinateM\"=\"${BASH_REMATCH[1]}\"" >"$work/later.reg"
        "$bin/regedit" /s "$work/later.reg" || fail "regedit could not set ProcrastinateM"
    fi
    ((k % 60 == 0 && k > 0)) && sample $((k / 60))
    kill -0 "$tarvo" 2>/dev/null || fail "the program ended at minute $k"
done
"$bin/tarvo" shutdown
wait_for 50 sh -c "! kill -0 $tarvo 2>/dev/null" || fail "shutdown did not end the program"

[ -z "${SOAK_LOG:-}" ] || { mkdir -p "$SOAK_LOG" && cp "$work/plan" "$work/windows" "$work/samples" "$work/late" "$SOAK_LOG/"; }

# --- the verdict ------------------------------------------------------------------------------------
awk -v r0="$r0" -v m="$minute_us" -v hours="$hours" -v end="$minutes" '
function us(t) { sub(/[.,]/, "", t); return t + 0 }
function ticks(t) { return (us(t) - r0) / m }
FILENAME ~ /plan$/ && $1 == "E" { want[$3, $2]++; expected[$3]++ }
FILENAME ~ /plan$/ && $1 == "A" && $3 == "later" { laterAt[$2] = 1 }
FILENAME ~ /plan$/ && $1 == "P" { pauses++; ps[pauses] = $2; pe[pauses] = $3; pd[pauses] = $4; pn[pauses] = $5 }
FILENAME ~ /windows$/ {
    title = $0; sub(/^[^ ]+ [^ ]+ [^ ]+ /, "", title)
    kind = title == "Tarvo Micropause" ? "micropause" : title == "Exercise..." ? "prompt" : ""
    at = ticks($1)
    if (kind == "" || at > end + 0.5) next # the shutdown closes what is open
    if ($2 == "+") {
        k = int(at + 0.2); got[kind, k]++; seen[kind]++; shownAt[$3] = at
        lag = (at - k) * 60
        if (!(kind in maxLag) || lag > maxLag[kind]) maxLag[kind] = lag
        if (!(kind in minLag) || lag < minLag[kind]) minLag[kind] = lag
    } else if (kind == "micropause" && ($3 in shownAt)) {
        d = (at - shownAt[$3]) * 60; breaks++; total += d; if (d > longest) longest = d
    } else if (kind == "prompt" && !(int(at) in laterAt)) {
        bad++; print "FAIL: the prompt went at minute " at ", not in a minute whose \"Later\" was pressed"
    }
}
FILENAME ~ /samples$/ { rss[$2] = $3; fds[$2] = $4 }
FILENAME ~ /late$/ { bad++; print "FAIL: the harness was late at minute " $1 " (" $2 " " $3 "): the run proves nothing" }
END {
    for (key in want) {
        split(key, p, SUBSEP); n = want[key] - got[key]
        for (; n > 0; n--) { bad++; miss[p[1]]++; if (shown++ < 10) print "FAIL: no " p[1] " at minute " p[2] }
    }
    for (key in got) {
        split(key, p, SUBSEP); n = got[key] - want[key]
        for (; n > 0; n--) { bad++; extra[p[1]]++; if (shown++ < 10) print "FAIL: an unexpected " p[1] " at minute " p[2] }
    }
    for (i = 1; i <= pauses; i++) {
        if (!pd[i]) continue
        ok = pn[i] < 0 || got["micropause", pn[i]] > 0
        for (k = ps[i] + 1; k <= pe[i]; k++) if (got["micropause", k]) ok = 0
        decisive++; credited += ok
    }
    for (kind in expected)
        printf "%ss: %d expected, %d seen, %d missing, %d unexpected; shown %.1f to %.1f s (simulated) after their minute\n",
            kind, expected[kind], seen[kind], miss[kind], extra[kind], minLag[kind], maxLag[kind]
    printf "micropause length: %.1f s on average, at most %.1f s (simulated; 20 s set)\n", total / breaks, longest
    printf "natural pauses: %d; %d of the %d whose crediting shows in the schedule were credited\n", pauses, credited, decisive
    if (credited < decisive) bad++
    line = "resident memory (KiB) / open files by hour:"
    for (h = 1; h <= hours; h++) line = line " " rss[h] "/" fds[h]
    print line
    drss = rss[hours] - rss[1]; dfd = fds[hours] - fds[1]
    printf "hour 1 to hour %d: memory %+d KiB, open files %+d\n", hours, drss, dfd
    if (drss > 1024 || drss < -1024) { bad++; print "FAIL: the memory grew by more than 1 MiB" }
    if (dfd != 0) { bad++; print "FAIL: the number of open files changed" }
    exit bad > 0
}' "$work/plan" "$work/windows" "$work/samples" "$work/late" || fail "the day did not go as planned"
[ -s "$work/tarvo.err" ] && fail "the program wrote to its standard error"
echo "ok - $hours simulated hours at x$speed (seed $seed)"
