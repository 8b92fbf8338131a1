#!/usr/bin/env bash
# Installs what is missing, then configures, builds and runs every test of a preset: test.sh [PRESET]; `release` if none is named.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

source tools/setup
install_missing

cmake --workflow --preset "${1:-release}"
