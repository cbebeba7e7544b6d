#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs what is missing, builds Veltano and runs its tests.
set -euo pipefail
cd "$(dirname "$0")"
scripts/deps.sh
scripts/build.sh
cd build
QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j2 "$@"
