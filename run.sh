#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs what is missing, builds Veltano and starts it.
set -euo pipefail
cd "$(dirname "$0")"
scripts/deps.sh
scripts/build.sh
exec build/bin/veltano "$@"
