// The choice of effects that the GPU can draw and the CPU can compute.
#pragma once

#include <functional>
#include <string_view>

namespace KEXSDK {

/// The form that such an effect takes.
enum class EffectForm {
    gpu,          ///< that of the GPU, where there is one
    cpu,          ///< that of the CPU, whatever it leaves out
    completeOnCpu ///< that of the CPU, unless a frame asks for what only the GPU's form does
};

/// `gpu` until preferForm() was called. Any thread.
EffectForm preferredForm();
/// For nodes that are made from now on, and for the frames to come of those that are there: what `choose`
/// answers when preferredForm() is asked next. It may start the graphics system.
void preferForm(std::function<EffectForm()> choose);

/// Whether an OpenGL renderer of this name is a program that the processor runs.
bool isSoftwareRenderer(std::string_view name);

} // namespace KEXSDK
