#!/usr/bin/env bash
# Builds the Debian package of Tarvo Micropause from a clean configure in build-package/: optimised,
# without sanitizers and tests, with Debian's hardening flags, installed below /usr. Checks the desktop
# entry, the AppStream data and the package (lintian), and prints the path of the .deb last.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh package

dir=build-package
rm -rf "$dir"
# All of Debian's hardening, immediate binding included.
export DEB_BUILD_MAINT_OPTIONS=hardening=+all
export CFLAGS="$(dpkg-buildflags --get CPPFLAGS) $(dpkg-buildflags --get CFLAGS)"
export CXXFLAGS="$(dpkg-buildflags --get CPPFLAGS) $(dpkg-buildflags --get CXXFLAGS)"
export LDFLAGS="$(dpkg-buildflags --get LDFLAGS)"
cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_INSTALL_PREFIX=/usr -DTARVO_TESTS=OFF \
    -DCMAKE_STRIP="$PWD/packaging/strip-for-debian.sh" >/dev/null
cmake --build "$dir" -j "$(nproc)"
(cd "$dir" && cpack >/dev/null)
deb=$(realpath "$dir"/tarvo-micropause_*.deb)

echo "== checking the desktop entry, the AppStream data and the package"
desktop-file-validate packaging/io.github.tarvo.micropause.desktop
appstreamcli validate --no-net --pedantic packaging/io.github.tarvo.micropause.metainfo.xml >/dev/null
# Errors fail the build; warnings and notes are shown.
lintian --fail-on error --display-info "$deb"
echo "$deb"
