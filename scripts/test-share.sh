#!/usr/bin/env bash
# Prints the size of the test suite against the program's: non-blank lines of
# tests/ (.cpp .h .sh .py) and of src/, apps/, tools/. The suite is meant to
# stay between a quarter and a third of the program.
set -euo pipefail
cd "$(dirname "$0")/.."
count() { find "$@" -type f \( -name '*.cpp' -o -name '*.h' -o -name '*.sh' -o -name '*.py' \) -print0 |
            xargs -0 cat | grep -c '[^[:space:]]'; }
tests=$(count tests)
program=$(count src apps tools)
echo "tests: $tests non-blank lines; program: $program; share: $((tests * 100 / program)) %"
