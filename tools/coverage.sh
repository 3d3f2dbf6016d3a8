#!/bin/bash
# Runs the tests in a build that counts what they reach, and prints a table of lines
# and branches per folder. Then see:
#   build/coverage/coverage.txt           missed lines and branches per file
#   build/coverage/html/index.html        every line with its counts
#
#   tools/coverage.sh            build, run every test, report (about 10 minutes)
#   tools/coverage.sh report     only the report of the last run
#
# Branches that only an exception takes are left out: gcc adds one to almost every
# call, and the engine throws no exceptions itself.
set -uo pipefail

root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
cd "$root" || exit 1
. tools/packages.sh

need_packages gcovr g++ cmake ninja-build libgtest-dev libgmock-dev python3 polyglot stockfish \
  xboard fairymax xvfb xauth xdotool xclip || exit 1
export PATH="$PATH:/usr/games"

status=0
if [ "${1:-}" != report ]; then
  find build/coverage -name '*.gcda' -delete 2>/dev/null
  cmake --preset coverage && cmake --build --preset coverage || exit 1
  find build/coverage -name '*.gcda' -delete
  ctest --preset coverage --parallel "$(nproc)" || status=$?
fi

folder=build/coverage
mkdir -p $folder/html
gcovr --root . --object-directory $folder --filter '(board|book|epd|eval|protocol|search|shell)/' \
  --exclude-throw-branches --exclude-unreachable-branches -j "$(nproc)" \
  --json $folder/coverage.json || exit 1
merged=(gcovr --root . --add-tracefile $folder/coverage.json)
"${merged[@]}" --json-summary $folder/summary.json --html-details $folder/html/index.html || exit 1
{
  echo "Lines:"
  "${merged[@]}" --txt
  echo "Branches:"
  "${merged[@]}" --txt --branches
} >$folder/coverage.txt
python3 tools/coverage_table.py $folder/summary.json
exit $status
