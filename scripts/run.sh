#!/usr/bin/env bash
# Installs what is missing, builds, and starts Tarvo Micropause with the given arguments.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh >/dev/null
exec build/bin/tarvo "$@"
