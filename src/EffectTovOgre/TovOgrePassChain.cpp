// Draws passes in their order and looks up what each of them shows.
#include "EffectTovOgre/TovOgrePassChain.h"

#include "EffectTovOgre/UniformValues.h"

#include <OgreMesh.h>
#include <OgreSubMesh.h>

#include <algorithm>
#include <utility>

namespace KEXSDK {

namespace {

bool readsItself(const shader::DescriptorPass& pass, std::size_t index)
{
    return pass.inputs && std::ranges::any_of(*pass.inputs, [index](const shader::PassInput& input) {
        return input.source == shader::PassInput::Source::lastFrame && input.index == index;
    });
}

Ogre::TextureAddressingMode addressingMode(shader::PassInput::Wrap wrap)
{
    switch (wrap) {
    case shader::PassInput::Wrap::clamp:
        break;
    case shader::PassInput::Wrap::repeat:
        return Ogre::TAM_WRAP;
    case shader::PassInput::Wrap::mirror:
        return Ogre::TAM_MIRROR;
    }
    return Ogre::TAM_CLAMP;
}

/// How a person knows the pass: by its number, name and file.
std::string describe(const shader::DescriptorPass& pass, std::size_t index)
{
    return "Pass " + std::to_string(index + 1) + (pass.name.empty() ? "" : " \"" + pass.name + "\"")
        + (pass.shader.empty() ? "" : " with shader [" + pass.shader + "]");
}

} // namespace

TovOgrePassChain::TovOgrePassChain(
    std::vector<shader::DescriptorPass> passes, u32 effectNumber, TovOgrePicturePlane& plane)
    : passes_(std::move(passes)),
      name_("PassMaterialName_" + std::to_string(effectNumber) + "_"),
      plane_(plane)
{
    for (std::size_t i = 0; i + 1 < passes_.size(); ++i)
        earlier_.emplace_back(name_ + std::to_string(i), passes_[i], readsItself(passes_[i], i));
}

std::string TovOgrePassChain::makePrograms()
{
    std::string reason;
    std::size_t index = 0;
    for (; index < earlier_.size() && reason.empty(); ++index)
        reason = earlier_[index].makeProgram();
    if (!reason.empty())
        return describe(passes_[index - 1], index - 1) + ": " + reason;
    const shader::DescriptorPass& last = passes_.back();
    if (!last.shader.empty())
        reason = plane_.setShaderProgram(last.shader.c_str(), true, false);
    if (reason.empty())
        reason = plane_.linkPrograms();
    return reason.empty() ? reason : describe(last, index) + ": " + reason;
}

void TovOgrePassChain::getShaderParameters(ShaderParameters& list) const
{
    for (std::size_t i = 0; i < earlier_.size(); ++i) {
        const std::size_t first = list.size();
        earlier_[i].shader().getShaderParameters(list);
        for (std::size_t n = first; n < list.size(); ++n)
            list[n].pass = u32(i + 1);
    }
}

void TovOgrePassChain::setShaderParameters(const ShaderParameters& list)
{
    for (const ShaderParameter& parameter : list)
        if (parameter.pass > 0 && parameter.pass <= earlier_.size())
            handTo(earlier_[parameter.pass - 1].shader(), parameter);
}

void TovOgrePassChain::forget()
{
    for (TovOgrePass& pass : earlier_)
        pass.forget();
}

void TovOgrePassChain::draw(Ogre::SceneManager& scene, u32 width, u32 height)
{
    for (TovOgrePass& pass : earlier_)
        pass.resize(width, height);
    for (TovOgrePass& pass : earlier_)
        pass.beginFrame();
    Ogre::RenderOperation plane;
    plane_.mesh().getSubMesh(0)->_getRenderOperation(plane);
    for (std::size_t i = 0; i < earlier_.size(); ++i)
        earlier_[i].draw(scene, plane, plane_.width(), plane_.height(), texturesOf(passes_[i]));
    std::vector<ShownTexture> textures = texturesOf(passes_.back());
    if (!passes_.back().shader.empty())
        setPassUniforms(plane_, textures, width, height);
    plane_.showInstead(std::move(textures));
}

std::vector<ShownTexture> TovOgrePassChain::texturesOf(const shader::DescriptorPass& pass)
{
    std::vector<ShownTexture> textures;
    if (pass.inputs)
        for (const shader::PassInput& input : *pass.inputs)
            textures.push_back({pictureOf(input), input.nearest, addressingMode(input.wrap)});
    else
        for (const Ogre::TexturePtr& picture : plane_.pictures())
            textures.push_back({picture});
    return textures;
}

Ogre::TexturePtr TovOgrePassChain::pictureOf(const shader::PassInput& input)
{
    return input.source == shader::PassInput::Source::picture ? plane_.pictureOrBlank(i32(input.index))
                                                              : earlier_[input.index].picture();
}

} // namespace KEXSDK
