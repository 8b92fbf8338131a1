#!/usr/bin/env bash
# Installs what is missing, then configures, builds and runs every test of the release preset.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

source tools/setup
install_missing

cmake --workflow --preset check
