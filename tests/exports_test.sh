#!/usr/bin/env bash
# Holds what the library $1 shows against the entries that its header declares.
set -euo pipefail
library=$1
header=$(dirname "$0")/../include/vorn_server.h

shown=$(nm -D --defined-only "$library" | awk '{ print $3 }' | sort)
declared=$(sed -n 's/^VORN_EXPORT.*[ *]\([A-Za-z_]*\)(.*/\1/p' "$header" | sort)
[ "$(wc -l <<<"$declared")" = 9 ] || { echo "the header declares: $declared" >&2 && exit 1; }
diff <(echo "$declared") <(echo "$shown") || { echo "the library shows other symbols than its header declares" >&2 && exit 1; }
echo "the library shows its nine entries"
