#!/usr/bin/env bash
# Writes the binary interface as it is now to tests/abi/, where a test compares it. What may change: docs/abi.md.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
cmake --preset release >/dev/null
cmake --build --preset release --target RkXmlLib16 >/dev/null
tests/abi/dump.sh build/release/RkXmlLib16/libRkXmlLib16.so tests/abi g++ "$PWD"
git --no-pager diff --stat -- tests/abi
