#!/usr/bin/env bash
# Runs the demo host from a build tree: its window when there is a display,
# otherwise a screenshot of the window, written beside the build.
# Usage: demo.sh [builddir] [drawing.svg|project.lhp]
set -euo pipefail
build=${1:-build}
shift || true
host="$build/bin/layerhost"
if [[ ! -x "$host" ]]; then
    echo "demo.sh: $host is missing; build first (make build)" >&2
    exit 1
fi
if [[ -n "${DISPLAY:-}" || -n "${WAYLAND_DISPLAY:-}" ]]; then
    # An offscreen platform left in the environment would hide the window.
    if [[ "${QT_QPA_PLATFORM:-}" == offscreen ]]; then
        unset QT_QPA_PLATFORM
    fi
    exec "$host" "$@"
fi
shot="$(cd "$build" && pwd)/layerhost-screenshot.png"
# Qt's chatter about the offscreen platform is no news to the user; the
# host's own errors are not Qt warnings and still show.
QT_QPA_PLATFORM=offscreen QT_LOGGING_RULES="default.warning=false;qt.qpa.*=false" \
    "$host" --screenshot "$shot" "$@"
echo "No display: wrote a screenshot of the demo host to $shot"
