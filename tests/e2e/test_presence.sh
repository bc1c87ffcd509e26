#!/usr/bin/env bash
# The real program and the person at the machine, on a clock ten times faster (a minute in 6 s): a
# full-screen window holds the exercise prompt and a due micropause, which come within 5 s after the
# window leaves full screen; a screen saver's lock ends a micropause on screen, and the next one still
# comes at its minute.
#   test_presence.sh <program folder> <screen saver stand-in>
set -euo pipefail
bin=$1
. "$(dirname "$0")/lib.sh"
needs Xvfb openbox trayer xdotool xprop wmctrl xmessage
faketime_lib=$(compgen -G '/usr/lib/*/faketime/libfaketimeMT.so.1' | head -n 1) ||
    { echo "SKIP: libfaketime is not installed"; exit 77; }

start_x 1024x768
coproc SAVER { "$2"; }
pids+=("$SAVER_PID")
read -r -t 10 line <&"${SAVER[0]}" && [ "$line" = ready ] || fail "the screen saver stand-in did not start"
saver() { echo "$1" >&"${SAVER[1]}"; }
start_work_window Film
wmctrl -a Film && wmctrl -r Film -b add,fullscreen
break_shown() { visible_window '^Tarvo Micropause$'; }

# libfaketime is preloaded before the sanitizer build's runtime; it only replaces the clock's calls.
export ASAN_OPTIONS="${ASAN_OPTIONS:+$ASAN_OPTIONS:}verify_asan_link_order=0"

# --- a full-screen window holds the prompt (minute 1) and the micropause (minute 3) ----------------
LD_PRELOAD=$faketime_lib FAKETIME="+0 x10" start_tarvo "[Options]" '"Initialised"="1"' \
    "[Exercise]" '"EveryM"="1"' '"AudibleX"="0"' "[Micropause]" '"InterruptEvery"="2"' '"InterruptFor"="60"' \
    '"IntelliReset"="0"' '"Blank"="0"' '"Audible"="0"' '"AudiblePre"="0"'
started=$(date +%s%N)
grep -q "presence followed through the screen saver, the window manager" "$work/tarvo.err" ||
    fail "the sources in use are not named on standard error"
sleep 21 # past the micropause's minute: a break, once shown, stays for 6 s, and the prompt until answered
! break_shown && ! visible_window '^Exercise\.\.\.$' || fail "a break came over the full-screen window"
wmctrl -r Film -b remove,fullscreen
wait_for 50 break_shown && visible_window '^Exercise\.\.\.$' || fail "the held breaks did not come within 5 s"
echo "ok - a full-screen window held the prompt and the micropause, which came within 5 s after it left"

# --- a lock ends the break on screen; the next one keeps its minute (the fifth) ----------------------
saver lock
wait_for 30 sh -c "! xdotool search --onlyvisible --name '^Tarvo Micropause$'" || fail "the lock did not end the break"
echo "ok - the lock ended the break on screen at once (it had 6 s to run)"
saver unlock
wait_for 150 break_shown || fail "the next micropause did not come"
at=$((($(date +%s%N) - started) / 1000000))
((at >= 27000 && at <= 35000)) || fail "the next micropause came after $at ms, not at its fifth minute (30 s)"
echo "ok - the next micropause came at its minute, $at ms after start-up"
echo "3 passed, 0 failed"
