#!/usr/bin/env bash
# Runs the demo host from a build tree.
set -euo pipefail
build=${1:-build}
exec "$build/bin/layerhost"
