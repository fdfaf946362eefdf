// One technique of a particle scene: a particle system of OGRE's on a node of its own.
#pragma once

#include "core/Types.h"
#include "particles/EmitterAttributes.h"
#include "particles/attributePath.h"

#include <OgreVector.h>

#include <optional>
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
class QuotaAffector;

/// Attributes come in rounds, as EmitterAttributes says.
class Technique {
public:
    /// What attributes of the technique itself set.
    struct Settings {
        Ogre::Vector3 position{0, 0, 0};
        std::size_t quota = 0;
        std::size_t emitterQuota = 0;
        float width = 0;
        float height = 0;
        float maxVelocity = -1;
    };

    Technique(Ogre::SceneManager& manager, Ogre::SceneNode& parent, const std::string& name,
        const std::string& templateName);
    Technique(const Technique&) = delete;
    Technique& operator=(const Technique&) = delete;
    ~Technique();

    /// @param camera  what the particles are sorted for, in templates that say so
    void advance(float seconds, Ogre::Camera& camera);
    void show();
    void hide();

    void beginAttributes();
    void set(const AttributePath& path, std::span<const u32> words);
    void applyAttributes();

private:
    explicit Technique(Ogre::SceneManager& manager) : manager_(manager) { }

    void standStill();
    void loseWhatIsNowhere();
    void limitParticles(std::size_t quota);
    void limitVelocity(float limit);

    Ogre::SceneManager& manager_;
    Ogre::ParticleSystem* system_ = nullptr;
    Ogre::SceneNode* node_ = nullptr;
    std::vector<std::optional<EmitterAttributes>> emitters_; ///< empty for a type that is not this layer's
    MaxVelocityAffector* speedLimit_ = nullptr;              ///< made when it is first needed
    QuotaAffector* quotaLimit_ = nullptr;                    ///< made when it is first needed
    float iterationInterval_ = 0;
    bool shown_ = false;
    bool begun_ = false; ///< time has passed
    Settings template_;  ///< without any attribute
    Settings wanted_;
    Settings applied_;
};

} // namespace particles
