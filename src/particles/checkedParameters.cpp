// Commands for OGRE's parameter dictionaries that check the text before OGRE's own get it.
#include "particles/checkedParameters.h"

#include "particles/RangedEmitter.h"
#include "particles/limits.h"
#include "particles/words.h"

#include <OgreLogManager.h>
#include <OgreMaterialManager.h> // (the particle manager's header does not include what it needs)
#include <OgreMovableObject.h>
#include <OgreParticleAffector.h>
#include <OgreParticleAffectorFactory.h>
#include <OgreParticleEmitterFactory.h>
#include <OgreParticleSystem.h>
#include <OgreParticleSystemManager.h>
#include <OgreParticleSystemRenderer.h>
#include <OgreResourceGroupManager.h>
#include <OgreStringConverter.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <deque>
#include <sstream>
#include <string>
#include <string_view>

namespace particles {

namespace {

using Ogre::String;
using Ogre::StringConverter;

struct Limits {
    double low;
    double high;
};

constexpr Limits kUsual{-kLargestNumber, kLargestNumber};
constexpr Limits kPositive{0, kLargestNumber};
constexpr Limits kRate{0, kLargestRate};

struct NamedLimits {
    std::string_view name; ///< or what it begins with
    Limits limits;
};

constexpr std::array kNamed{NamedLimits{"quota", {0, kLargestQuota}},
    NamedLimits{"emit_emitter_quota", {0, kLargestEmitterQuota}}, NamedLimits{"emission_rate", kRate},
    NamedLimits{"particle_", kPositive}, NamedLimits{"all_dimensions", kPositive},
    NamedLimits{"time_to_live", kPositive}, NamedLimits{"duration", kPositive},
    NamedLimits{"repeat_delay", kPositive}, NamedLimits{"iteration_interval", kPositive},
    NamedLimits{"inner_", {0, 1}}};

Limits limitsOf(std::string_view name)
{
    const auto named =
        std::ranges::find_if(kNamed, [&](const NamedLimits& entry) { return name.starts_with(entry.name); });
    return named == kNamed.end() ? kUsual : named->limits;
}

/// The text, its numbers brought within limits where they are not; empty when one is no finite number.
String within(const Limits& limits, const String& text)
{
    std::istringstream words(text);
    String result;
    bool changed = false;
    for (String word; words >> word;) {
        double number = 0;
        if (StringConverter::parse(word, number)) {
            if (std::isnan(number))
                return {};
            if (const double nearest = std::clamp(number, limits.low, limits.high); nearest != number) {
                word = StringConverter::toString(float(nearest));
                changed = true;
            }
        }
        result += (result.empty() ? "" : " ") + word;
    }
    return changed ? result : text;
}

void log(const String& message) { Ogre::LogManager::getSingleton().logMessage(message); }

class CheckedCommand final : public Ogre::ParamCommand {
public:
    CheckedCommand(String name, Ogre::ParamCommand& command)
        : name_(std::move(name)),
          command_(&command),
          limits_(limitsOf(name_))
    {
    }

private:
    String doGet(const void* target) const override { return command_->doGet(target); }
    void doSet(void* target, const String& text) override
    {
        const String checked = within(limits_, text);
        if (checked != text)
            log("Particle script: \"" + name_ + " " + text + "\" is "
                + (checked.empty() ? "left out." : "taken as \"" + checked + "\"."));
        if (!checked.empty() || text.empty())
            command_->doSet(target, checked);
    }

    String name_;
    Ogre::ParamCommand* command_;
    Limits limits_;
};

/// Sets a renderer if there is one of that name: OGRE removes the old one before it looks for the new one.
class RendererCommand final : public Ogre::ParamCommand {
    String doGet(const void* target) const override
    {
        return static_cast<const Ogre::ParticleSystem*>(target)->getRendererName();
    }
    void doSet(void* target, const String& name) override
    {
        auto known = Ogre::ParticleSystemManager::getSingleton().getRendererFactoryIterator();
        if (known.current() != known.end() && std::any_of(known.begin(), known.end(), [&](const auto& entry) {
                return entry.first == name;
            }))
            static_cast<Ogre::ParticleSystem*>(target)->setRenderer(name);
        else
            log("Particle script: there is no renderer \"" + name + "\".");
    }
};

struct Dictionary : Ogre::ParamDictionary {
    static Ogre::ParamCommandMap& commands(Ogre::ParamDictionary& dictionary)
    {
        return dictionary.*(&Dictionary::mParamCommands);
    }
};

bool holdsNumbers(const Ogre::ParameterDef& parameter)
{
    return parameter.paramType != Ogre::PT_STRING && parameter.paramType != Ogre::PT_BOOL;
}

void check(Ogre::ParamDictionary* dictionary, std::deque<CheckedCommand>& checked)
{
    if (!dictionary)
        return;
    auto& commands = Dictionary::commands(*dictionary);
    for (const Ogre::ParameterDef& parameter : dictionary->getParameters())
        if (const auto command = commands.find(parameter.name);
            command != commands.end() && holdsNumbers(parameter))
            command->second = &checked.emplace_back(parameter.name, *command->second);
}

} // namespace

void checkParameters(Ogre::ParticleSystemManager& manager)
{
    // The commands of an earlier start are free: OGRE deletes all dictionaries when it ends.
    static std::deque<CheckedCommand> checked;
    static RendererCommand renderer;
    checked.clear();
    // One object of each class is made here, because OGRE makes a class's dictionary with its first object.
    const String name = "EffectEngine/one of each";
    Ogre::ParticleSystem& system = *manager.createTemplate(name, Ogre::RGN_DEFAULT);
    check(system.getParamDictionary(), checked);
    Dictionary::commands(*system.getParamDictionary())["renderer"] = &renderer;
    check(system.getRenderer()->getParamDictionary(), checked);
    for (const auto& [type, factory] : manager.getEmitterFactoryIterator())
        check(system.addEmitter(type)->getParamDictionary(), checked);
    for (const auto& [type, factory] : manager.getAffectorFactoryIterator())
        check(system.addAffector(type)->getParamDictionary(), checked);
    manager.removeTemplate(name);
}

} // namespace particles
