#!/usr/bin/env bash
# scripts/check-layers passes this tree, and names each kind of offence in a copy of it.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
check=$root/scripts/check-layers
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$check"

# offence TEXT FILE LINE: with that line at its end, the file is named with that text, and nothing else is.
offence() {
    rm -rf "$work/tree"
    mkdir "$work/tree"
    cp -r "$root/common" "$root/src" "$root/host" "$root/apps" "$root/include" "$work/tree"
    mkdir -p "$(dirname "$work/tree/$2")"
    echo "$3" >>"$work/tree/$2"
    if "$check" "$work/tree" 2>"$work/said.txt"; then
        echo "passed: $3 in $2" >&2
        exit 1
    fi
    grep -qF "$2" "$work/said.txt" && grep -qF "$1" "$work/said.txt" && [ "$(wc -l <"$work/said.txt")" -eq 1 ] || {
        cat "$work/said.txt" >&2
        exit 1
    }
}
offence 'ee_common does not link the layer of src/model' common/pixels/numbers.h '#include "model/CSimpleEffect.h"'
offence 'ee_effects does not link the layer of src/EffectTovOgre' src/effects/am/library/amFrame.h ' # include <EffectTovOgre/TovOgreBase.h>'
offence 'ee_graphics does not link the layer of src/model' src/graphics/TovEffectBase.h '#include "model/CEffectBaseParam.h"'
offence 'ee_pictures does not link the layer of src/graphics' common/pictures/JpegCodec.h '#include "graphics/ImageParam.h"'
offence 'ee_shader does not link the layer of src/EffectTovOgre' src/effects/shader/CSimpleShaderEffect.h '#include "EffectTovOgre/TovOgreBase.h"'
offence 'ee_base does not link the layer of src/effects/lut' src/core/Clock.h '#include "../effects/lut/LutTable.h"'
offence 'common/pixels does not stand before common/text' common/text/Text.h '#include "pixels/numbers.h"'
offence 'its layer does not link OGRE' src/engine/effectList.cpp '#include <OgreRoot.h>'
offence 'its directory belongs to no layer' src/loose/file.h '#pragma once'
offence 'ee_low links ee_high, which does not stand above it' src/CMakeLists.txt \
    'effectengine_layer(ee_low DIRECTORIES low LIBRARIES ee_high) effectengine_layer(ee_high DIRECTORIES high)'
offence 'includes model/CSimpleEffect.h, which belongs to src/' host/EffectGraph.h '#include "model/CSimpleEffect.h"'
offence 'includes host/EffectGraph.h, which belongs to host/' apps/effectengine/Look.h '#include "host/EffectGraph.h"'
offence 'which belongs to apps/' host/EffectGraph.h '#include "../apps/effectengine/Look.h"'
