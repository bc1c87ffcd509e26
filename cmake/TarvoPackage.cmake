# The Debian package, built by CPack from the install rules (scripts/package.sh: `cpack` in a Release
# build configured with the prefix /usr).
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tarvo-micropause)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "Tarvo Micropause developers")
set(TARVO_PACKAGE_MAINTAINER "Tarvo Micropause maintainers <maintainers@users.noreply.c-seed-92b1feab.example>"
    CACHE STRING "The Maintainer field of the Debian package")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${TARVO_PACKAGE_MAINTAINER})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "break reminder with micropauses and exercise breaks")
# CPack puts the summary above this as the synopsis line.
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION [[
Tarvo Micropause is a break reminder for people who work long hours at a
keyboard and mouse. It lives in the notification area, watches the clock and
the keyboard and mouse activity, and interrupts work with short micropauses (a
full-screen countdown every few minutes) and longer exercise breaks (short
exercise videos and pictures from named schemes). Pausing by yourself for a
whole micropause counts as one.

The package starts the reminder at every desktop login; each user can switch
that off in the desktop's autostart settings.]])

# Absolute destinations (the autostart entry in /etc/xdg/autostart) need the staging folder as DESTDIR
# and the real prefix as the install prefix.
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_SET_DESTDIR ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)

# What the binaries link is found by dpkg-shlibdeps. What they load or start at run time is not:
#  - libcanberra, which the sound player opens when the first sound plays;
#  - the GStreamer elements that play the built-in media (AVI demuxer and Motion JPEG decoder, in -good;
#    playbin and the converters in -base); Qt Multimedia's GStreamer back end crashes without any;
#  - the decoders of the classic Windows codecs in users' own clips (libav), welcome but not needed;
#  - libcanberra's sound server back end and the sound theme with the "bell" of the warning beeps;
#    without them sounds may not reach the sound server, and the beep is the program's own WAV tone;
#  - Qt SQL's SQLite driver, a plugin that the break history loads (without it the program runs and
#    says that the history is not recorded).
# The Qt plugins it loads (the xcb platform, the JPEG reader of the media) come with libqt6gui6, which
# the binaries link, and the video back end with libqt6multimedia6: Debian's qt6-qpa-plugins holds only
# platforms it does not use, and the icon is drawn at build time, so no SVG plugin is needed.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "libcanberra0, gstreamer1.0-plugins-base, gstreamer1.0-plugins-good, libqt6sql6-sqlite")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "gstreamer1.0-libav, libcanberra-pulse, sound-theme-freedesktop")


include(CPack)
