#!/usr/bin/env bash
# The host library defines exactly the functions that its header declares: hostSymbolsTest.sh LIBRARY HEADER
set -euo pipefail
library=$1
declared=$(grep -oE '\bEffectHost[A-Za-z]+\(' "$2" | tr -d '(' | sort -u)
[ "$(wc -l <<<"$declared")" -gt 15 ]
diff <(echo "$declared") <(nm -D --defined-only -C "$library" | cut -d' ' -f3- | sort)
readelf -d "$library" | grep -q 'SONAME.*\[libEffectEngineHost.so.1\]'
readelf -d "$library" | grep -q 'NODELETE'
# Of the engine it takes what EffectEngine.h declares alone.
taken=$(nm -D --undefined-only -C "$library" | grep -E 'KEXSDK|CEffectEngine|Tov' | grep -vE 'KEXSDK::getParam(Int|Float)(Array)?Value' || true)
[ -z "$taken" ] || { echo "takes from the engine: $taken" >&2; exit 1; }
