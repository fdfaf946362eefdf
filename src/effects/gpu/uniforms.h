// From a node's parameters to the uniforms of its GPU effect.
#pragma once

#include "model/CEffectBaseParam.h"
#include "model/CEffectImage.h"

#include <map>
#include <set>

namespace KEXSDK {

class TovEffectBase;

/// Gives every uniform the value of the parameter of its name; a "u_name" without one takes that of "Name".
/// A uniform that the node has no parameter for keeps the program's own value. Numbers are converted to the
/// uniform's type.
/// @param tag  names the caller in the debug records about each uniform
void setUniforms(TovEffectBase& effect, CEffectBaseParam& parameters, const char* tag);

/// Stores which texture unit a sampler shows: "mSample" and the index is the parameter, the index its value.
void nameSampler(CEffectBaseParam& parameters, i32 index);

/// Makes an image the effect's input and names the sampler that shows it.
void bindInput(TovEffectBase& effect, CEffectBaseParam& parameters, const CEffectImage& image, i32 index);

/// Remembers which images of a node are bound as inputs of its GPU effect.
class BoundInputs {
public:
    /// Binds every image there is. An input that was bound before and is gone is taken away: the effect would
    /// read its pixels again, and they may be gone as well.
    void bind(
        TovEffectBase& effect, CEffectBaseParam& parameters, const std::map<i32, CEffectImage*>& images);

private:
    std::set<i32> bound_;
};

} // namespace KEXSDK
