#!/usr/bin/env bash
# The library defines exactly the symbols of the public interface.
set -euo pipefail
library=$1
expected=$(dirname "$0")/symbols.txt
diff <(sort "$expected") <(nm -D --defined-only -C "$library" | cut -d' ' -f3- | sort)
readelf -d "$library" | grep -q 'SONAME.*\[libEffectEngine.so.1\]'
readelf -d "$library" | grep -q 'NODELETE'
