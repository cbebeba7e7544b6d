#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Configures (once) and builds under build/ with Ninja.
set -euo pipefail
cd "$(dirname "$0")/.."
if [ ! -f build/build.ninja ]; then
  cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
fi
cmake --build build -j2
