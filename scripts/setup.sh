#!/usr/bin/env bash
# Installs the Debian packages that building, running and testing Tarvo Micropause need; with
# `package`, also those that building and checking its Debian package need (scripts/package.sh).
# Does nothing (and needs no network) when they are all installed already.
set -euo pipefail

packages=(
    g++ cmake ninja-build clang-format          # tool chain
    qt6-base-dev qt6-base-dev-tools             # Qt Core, Gui, Widgets, Test; moc, uic
    qt6-svg-dev                                 # Qt SVG: the build draws the program icon with it
    pkg-config libxcb1-dev libxcb-xinput-dev    # the activity monitor's X connection (XInput 2)
    libxcb-xkb-dev                              # keyboard-state notifications only while a window has the focus
    libwayland-dev wayland-protocols            # the activity monitor's Wayland connection (ext-idle-notify-v1)
    libx11-dev libxtst-dev                      # the activity monitor benchmark's XTEST input load
    xvfb xdotool                                # X11 tests: a private X server and input through XTEST
    wmctrl                                      # presence tests: a window put full screen through the window manager
    dbus-daemon                                 # idle-monitor tests: a private session bus
    trayer openbox x11-utils x11-xserver-utils  # X11 tests: tray host, window manager, xprop/xwininfo, xrandr
    x11-xkb-utils                               # X11 tests: setxkbmap switches the keyboard layout
    libcanberra-dev libcanberra-pulse sound-theme-freedesktop # warning sounds, and the theme's "bell"
    pulseaudio pulseaudio-utils sox             # sound tests: a private server with a null sink, parec; sox to inspect recordings
    qt6-multimedia-dev                          # Qt Multimedia: the video helper tarvovideo plays the exercise videos with it
    gstreamer1.0-plugins-base gstreamer1.0-plugins-good # its GStreamer back end: playback, AVI demuxer, Motion JPEG decoder
    gstreamer1.0-libav                          # users' own clips in older codecs (Cinepak, Microsoft Video 1, Indeo...)
    gstreamer1.0-tools                          # gst-launch, with which the end-to-end tests take their screenshots
    libqt6sql6-sqlite                           # Qt SQL's SQLite driver: the break history's database
    fonts-dejavu-core                           # the exercise media's title lettering
    clang libclang-rt-14-dev                    # fuzzing (scripts/fuzz.sh): clang and its libFuzzer and sanitizer runtimes
    faketime libfaketime                        # bench/soak_day.sh: a day of schedule on a clock 60 times faster
    sway grim wtype jq xwayland qt6-wayland     # Wayland test: sway runs headless, the quickest of the three compositors
                                                # to start, with screenshots, typing and a window tree of its own
    python3-gi                                  # Wayland test: a StatusNotifierItem tray host on the session bus (GLib's Gio)
    at-spi2-core python3-pyatspi                # accessibility test: the AT-SPI bus, and a screen reader's view of it from /usr/bin/python3
)
if [ "${1:-}" = package ]; then
    packages+=(
        dpkg-dev file                           # CPack's dependency search (dpkg-shlibdeps), Debian's build flags
        lintian desktop-file-utils appstream    # checks of the package, its desktop entry and its AppStream data
    )
fi

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}\n' "$p" 2>/dev/null | grep -q '^install ok installed$' || missing+=("$p")
done
((${#missing[@]} == 0)) && exit 0

echo "Installing: ${missing[*]}"
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
"${as_root[@]}" apt-get update -q
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}"
