#!/bin/sh
# The package's strip: besides the debugging symbols, the compiler's note of its own version, which no
# one reads at run time (as Debian's own packages do).
exec strip --remove-section=.comment --remove-section=.note "$@"
