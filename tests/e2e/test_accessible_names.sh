#!/usr/bin/env bash
# The real program as a screen reader sees it through AT-SPI: the options dialog with its three
# pages, the exercise prompt and the player. Every button, check box, option button, text field and
# spin button has a name; each spinner's arrows are named after their field and the message field
# after what it holds. The program runs on a clock 60 times faster, so the prompt comes within a
# second, and its one exercise lasts long enough to look at the player.
#   test_accessible_names.sh <program folder>
set -euo pipefail
bin=$1
. "$(dirname "$0")/lib.sh"
needs Xvfb openbox trayer xdotool dbus-send dbus-update-activation-environment /usr/bin/python3
/usr/bin/python3 -c 'import pyatspi' 2>/dev/null || { echo "SKIP: python3-pyatspi is not installed"; exit 77; }
faketime_lib=$(compgen -G '/usr/lib/*/faketime/libfaketimeMT.so.1' | head -n 1) ||
    { echo "SKIP: libfaketime is not installed"; exit 77; }
# A sanitizer build would refuse the clock preloaded ahead of its runtime.
export ASAN_OPTIONS=${ASAN_OPTIONS:+$ASAN_OPTIONS:}verify_asan_link_order=0

# Walks the program's accessible tree until the given names are there (at most five seconds); fails on
# a control without a name and on a name that did not come.
names() { # <name>...
    /usr/bin/python3 - "$@" <<'EOF'
import sys, time, pyatspi
roles = {pyatspi.ROLE_PUSH_BUTTON, pyatspi.ROLE_CHECK_BOX, pyatspi.ROLE_RADIO_BUTTON, pyatspi.ROLE_TEXT,
         pyatspi.ROLE_SPIN_BUTTON, pyatspi.ROLE_TREE, pyatspi.ROLE_TREE_TABLE, pyatspi.ROLE_TABLE,
         pyatspi.ROLE_LIST, pyatspi.ROLE_LIST_BOX}
def controls(node):
    for child in filter(None, node):
        if child.getRole() in roles and node.getRole() != pyatspi.ROLE_COMBO_BOX:  # not a combo's list
            yield child.name, f"{child.getRoleName()} in {node.name or node.getRoleName()!r}"
        yield from controls(child)
for _ in range(50):
    found = [c for app in pyatspi.Registry.getDesktop(0) if app and app.name == "Tarvo Micropause" for c in controls(app)]
    missing = set(sys.argv[1:]) - {name for name, _ in found}
    if not missing:
        break
    time.sleep(0.1)
faults = [f"no name: {where}" for name, where in found if not name] + [f"nothing named {n!r}" for n in missing]
print("\n".join(faults))
sys.exit(1 if faults else 0)
EOF
}

start_x 1280x1024
# The accessibility bus, started in this session with this display and runtime folder.
dbus-update-activation-environment DISPLAY XDG_RUNTIME_DIR
dbus-send --session --print-reply --dest=org.a11y.Bus /org/a11y/bus org.a11y.Bus.GetAddress >/dev/null ||
    fail "no accessibility bus"
export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
"$bin/regedit" /s "$bin/tarvo32.reg"
LD_PRELOAD=$faketime_lib FAKETIME="@2026-03-02 08:00:00 x60" start_tarvo "[Options]" '"Initialised"="1"' \
    "[Micropause]" '"InterruptEvery"="999"' "[Exercise]" '"EveryM"="1"' '"AudibleX"="0"' '"Scheme"="Slow"' \
    "[Schemes]" '"Num"="1"' '"1"="Slow"' \
    "[SchemeSlow]" '"Num"="1"' "\"1\"=\"$bin/lookfar.bmp\"" '"1d"="Look far"' '"1y"="1"' '"1s"="999"'
wait_for 100 visible_window '^Exercise\.\.\.$' || fail "the exercise prompt did not come"
menu_key o
wait_for 100 visible_window '^Tarvo Options$' || fail "the menu's \"&Options...\" did not open the dialog"
xdotool key ctrl+Tab sleep 0.2 key ctrl+Tab sleep 0.2 key ctrl+Tab
# Besides a name for every control: arrows of the first page, the schemes page and the prompt.
names "Increase Interrupt me for" "Decrease seconds" "Increase Minutes to postpone" "Micropause message" \
    "Exercises" ||
    fail "the options dialog or the prompt has unnamed controls"
xdotool windowactivate --sync "$(xdotool search --onlyvisible --name '^Exercise\.\.\.$' | head -n 1)" key Return
wait_for 100 visible_window '^Look far \(' || fail "the prompt's Exercise Now showed no player"
names "End the exercise break" || fail "the player has unnamed controls"
echo "PASS - every control of the options dialog, the prompt and the player has a name"
