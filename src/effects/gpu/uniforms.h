// From a node's parameters to the uniforms of its GPU effect.
#pragma once

#include "model/CEffectBaseParam.h"
#include "model/CEffectImage.h"

class TovEffectBase;

/// Gives every uniform the value of the parameter of its name; a "u_name" without one takes that of "Name".
/// What the node does not hold keeps the program's own value. Numbers are converted to the uniform's type.
/// @param tag  of the debug records about it
void setUniforms(TovEffectBase& effect, KEXSDK::CEffectBaseParam& parameters, const char* tag);

/// Makes an image the effect's input and names the sampler that shows it, "mSample" and the index.
void bindInput(TovEffectBase& effect, KEXSDK::CEffectBaseParam& parameters, const KEXSDK::CEffectImage& image,
    i32 index);
