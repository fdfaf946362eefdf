// The particles of one effect: a system of OGRE's for every technique of a template.
#pragma once

#include "core/Types.h"
#include "particles/Technique.h"
#include "particles/attributePath.h"

#include <deque>
#include <span>
#include <string>

namespace particles {

/// Techniques are the templates NAME, NAME/1, NAME/2 and so on. Time passes only in advance(); drawing
/// changes nothing. Everything random comes from OGRE's random value provider.
class ParticleScene {
public:
    /// Throws when no script has a template of that name.
    /// @param instanceName  unique; stands before the names that OGRE wants
    ParticleScene(Ogre::SceneManager& manager, Ogre::SceneNode& parent, const std::string& instanceName,
        const std::string& templateName);
    ParticleScene(const ParticleScene&) = delete;
    ParticleScene& operator=(const ParticleScene&) = delete;
    ~ParticleScene();

    void advance(float seconds, Ogre::Camera& camera);

    /// Between the two the scene is part of what is drawn.
    void show();
    void hide();

    // Attributes are set in rounds: beginAttributes, setAttribute for each, applyAttributes. The scene is
    // then as the template and these attributes say, and only what differs from before was touched.

    void beginAttributes();
    /// A selection that is not there, or words that the attribute does not take, change nothing.
    /// @param words  the 32-bit words of numbers, real or whole as the attribute wants them
    void setAttribute(const AttributePath& path, std::span<const u32> words);
    void applyAttributes();

private:
    Ogre::SceneNode& parent_;
    std::deque<Technique> techniques_;
};

} // namespace particles
