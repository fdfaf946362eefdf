// One technique: a particle system of OGRE's on a node of its own.
#pragma once

#include "core/Types.h"
#include "particles/EmitterAttributes.h"
#include "particles/attributePath.h"

#include <span>
#include <string>
#include <vector>

namespace Ogre {
class Camera;
class ParticleSystem;
class SceneManager;
class SceneNode;
} // namespace Ogre

namespace particles {

class MaxVelocityAffector;

class Technique {
public:
    Technique(Ogre::SceneManager& manager, Ogre::SceneNode& parent, const std::string& name,
        const std::string& templateName);
    Technique(const Technique&) = delete;
    Technique& operator=(const Technique&) = delete;
    ~Technique();

    /// @param camera  what the particles are sorted for, in templates that say so
    void advance(float seconds, Ogre::Camera& camera);
    void show();
    void hide();
    void set(const AttributePath& path, std::span<const u32> words);

    Ogre::ParticleSystem& system() { return *system_; }
    Ogre::SceneNode& node() { return *node_; }
    /// Made when it is first asked for.
    MaxVelocityAffector& speedLimit();

private:
    void standStill();

    Ogre::SceneManager& manager_;
    Ogre::ParticleSystem* system_;
    Ogre::SceneNode* node_;
    std::vector<EmitterAttributes> emitters_;
    MaxVelocityAffector* speedLimit_ = nullptr;
    float iterationInterval_;
    bool shown_ = false;
};

} // namespace particles
