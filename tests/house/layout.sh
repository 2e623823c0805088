#!/usr/bin/env bash
# Every source file of the project is laid out as .clang-format says.
set -euo pipefail
git ls-files '*.h' '*.cpp' | xargs "$1" --dry-run -Werror
