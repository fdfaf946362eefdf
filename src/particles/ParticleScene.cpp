// The techniques of a scene: made, advanced and set together.
#include "particles/ParticleScene.h"

#include <OgreMaterialManager.h> // (the particle manager's header does not include what it needs)
#include <OgreMovableObject.h>
#include <OgreParticleSystemManager.h>
#include <OgreSceneNode.h>

#include <stdexcept>

namespace particles {

namespace {

constexpr int kMostTechniques = 100; // two digits select one

bool isTemplate(const std::string& name)
{
    return Ogre::ParticleSystemManager::getSingleton().getTemplate(name) != nullptr;
}

} // namespace

ParticleScene::ParticleScene(Ogre::SceneManager& manager, Ogre::SceneNode& parent,
    const std::string& instanceName, const std::string& templateName)
    : parent_(parent)
{
    if (!isTemplate(templateName))
        throw std::invalid_argument("Can't find particle template [" + templateName + "]");
    std::string name = templateName;
    for (int i = 0; i < kMostTechniques && isTemplate(name);) {
        techniques_.emplace_back(manager, parent, instanceName + "/" + std::to_string(i), name);
        name = templateName + "/" + std::to_string(++i);
    }
}

ParticleScene::~ParticleScene() = default;

void ParticleScene::advance(float seconds, Ogre::Camera& camera)
{
    for (Technique& technique : techniques_)
        technique.advance(seconds, camera);
}

void ParticleScene::show()
{
    for (Technique& technique : techniques_)
        technique.show();
}

void ParticleScene::hide()
{
    for (Technique& technique : techniques_)
        technique.hide();
}

void ParticleScene::beginAttributes()
{
    for (Technique& technique : techniques_)
        technique.beginAttributes();
}

void ParticleScene::applyAttributes()
{
    for (Technique& technique : techniques_)
        technique.applyAttributes();
}

void ParticleScene::setAttribute(const AttributePath& path, std::span<const u32> words)
{
    if (path.affector != kNothing || path.technique < 0 || std::size_t(path.technique) >= techniques_.size())
        return; // neither affectors nor a whole system have attributes that OGRE knows
    techniques_[std::size_t(path.technique)].set(path, words);
}

} // namespace particles
