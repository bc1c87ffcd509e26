#!/usr/bin/env bash
# The program as a user gets it: installed with `cmake --install` into a fresh prefix that no one may
# write to, started with the command of its installed launcher (the link on the search path) on an X
# server with a tray host. The first start imports the defaults into the user's store and docks the
# icon; shut down, it leaves the installed tree exactly as it was, and that tree holds every medium.
#   test_installed_program.sh <cmake> <build folder>
set -euo pipefail
cmake=$1
build=$2
. "$(dirname "$0")/lib.sh"
needs Xvfb openbox trayer xdotool xprop xwininfo

# The program records its folder with links resolved, so the prefix is named that way too.
prefix=$(realpath "$work")/prefix
"$cmake" --install "$build" --prefix "$prefix" >"$work/install.log" || fail "cmake --install failed"
bin=$prefix/lib/tarvo-micropause
launcher=$prefix/share/applications/io.github.tarvo.micropause.desktop
command=$(sed -n 's/^Exec=//p' "$launcher")
[ "$command" ] || fail "the launcher has no command"
cmp -s "$prefix/etc/xdg/autostart/io.github.tarvo.micropause.desktop" "$launcher" ||
    fail "the login start is not the launcher"
[ ! -e "$prefix/bin/regedit" ] || fail "regedit is on the search path"
echo "ok - installed: the launcher and the login start run \"$command\", regedit stays in the program folder"

# Read-only, a write into the tree fails loudly; root may write anyway, which the snapshot shows.
chmod -R a-w "$prefix"
trap 'chmod -R u+w "$prefix"; cleanup' EXIT
snapshot() { (cd "$prefix" && find . -printf '%M %s %T@ %p %l\n' | sort && find . -type f -exec md5sum {} + | sort); }
snapshot >"$work/before"

start_x 1024x768
export PATH=$prefix/bin:$PATH
$command >"$work/tarvo.out" 2>"$work/tarvo.err" &
tarvo=$!
pids+=("$tarvo")
wait_for 100 grep -q "\"tray\"=\"$tarvo\"" "$store" || fail "the installed program did not start"
wait_for 150 docked_icon || fail "the icon did not dock into the notification area"
grep -q -F '[HKEY_CURRENT_USER\Software\VB and VBA Program Settings\Tarvo Micropause\Scheme*Medium Break]' "$store" ||
    fail "the first run did not import the built-in schemes"
grep -q -F "\"AppPath\"=\"$bin\"" "$store" || fail "the program did not find its folder through the link"
echo "ok - the launcher's command starts the program from its folder, the icon docks, the first run imports the defaults"

# The history's module lies in the program folder: the export finds it, and the start is in the file.
env -u DISPLAY tarvo-micropause history --csv >"$work/history.csv" 2>&1 || fail "the export failed: $(cat "$work/history.csv")"
grep -q ',start,' "$work/history.csv" || fail "no start in the history: $(cat "$work/history.csv")"
echo "ok - the installed export reads the history through the installed module"

timeout 20 tarvo-micropause shutdown || fail "tarvo-micropause shutdown did not end"
wait_for 50 sh -c "! kill -0 $tarvo 2>/dev/null" || fail "the running instance did not end"
# With every medium installed the generator has nothing to write.
"$bin/tarvomultimedia" || fail "tarvomultimedia found media missing from the installed program folder"
snapshot >"$work/after"
diff "$work/before" "$work/after" >"$work/changes" || fail "the installed tree changed: $(cat "$work/changes")"
echo "ok - shut down; the installed tree is unchanged and complete"
