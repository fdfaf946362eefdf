// The script parameters of the emitters.
#include "particles/RangedEmitter.h"

#include <OgreStringConverter.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace particles {

namespace {

using Ogre::String;
using Ogre::StringConverter;

constexpr std::array<std::string_view, 5> kShapes{"point", "box", "ellipsoid", "ring", "cylinder"};

class ShapeCommand final : public Ogre::ParamCommand {
    String doGet(const void* target) const override
    {
        return String(kShapes[std::size_t(static_cast<const RangedEmitter*>(target)->shape)]);
    }
    void doSet(void* target, const String& text) override
    {
        const auto found = std::ranges::find(kShapes, text);
        if (found != kShapes.end())
            static_cast<RangedEmitter*>(target)->shape = RangedEmitter::Shape(found - kShapes.begin());
    }
};

/// The script parameter for one axis of the size, or of its empty part.
class AxisCommand final : public Ogre::ParamCommand {
public:
    AxisCommand(Ogre::Vector3 RangedEmitter::*vector, std::size_t axis) : vector_(vector), axis_(axis) { }

private:
    String doGet(const void* target) const override
    {
        return StringConverter::toString((static_cast<const RangedEmitter*>(target)->*vector_)[axis_]);
    }
    void doSet(void* target, const String& text) override
    {
        (static_cast<RangedEmitter*>(target)->*vector_)[axis_] = StringConverter::parseReal(text);
    }

    Ogre::Vector3 RangedEmitter::*vector_;
    std::size_t axis_;
};

enum class End { both, low, high };

/// One number, or an end of a range. Values that were not given are empty texts, so that copies of an emitter
/// do not get them either.
class ValueCommand final : public Ogre::ParamCommand {
public:
    ValueCommand(DynamicValue RangedEmitter::*value, End end) : value_(value), end_(end) { }

private:
    String doGet(const void* target) const override
    {
        const DynamicValue& value = static_cast<const RangedEmitter*>(target)->*value_;
        if (!value.given || value.random == (end_ == End::both))
            return {};
        return StringConverter::toString(end_ == End::high ? value.high : value.low);
    }
    void doSet(void* target, const String& text) override
    {
        float number = 0;
        if (text.empty() || !StringConverter::parse(text, number))
            return;
        DynamicValue& value = static_cast<RangedEmitter*>(target)->*value_;
        if (!value.given)
            value.low = value.high = number; // until the other end is read
        value.given = true;
        value.random = end_ != End::both;
        if (end_ != End::high)
            value.low = number;
        if (end_ != End::low)
            value.high = number;
    }

    DynamicValue RangedEmitter::*value_;
    End end_;
};

struct ValueCommands {
    const char* name;
    bool inBase; ///< OGRE's base class has the parameter for both ends already
    ValueCommand both, low, high;

    ValueCommands(const char* parameter, DynamicValue RangedEmitter::*value, bool ofEveryEmitter = false)
        : name(parameter),
          inBase(ofEveryEmitter),
          both(value, End::both),
          low(value, End::low),
          high(value, End::high)
    {
    }
};

} // namespace

void RangedEmitter::defineParameters()
{
    // A dictionary's name that OGRE's own classes do not use: their commands are for other objects.
    if (!createParamDictionary("particles::" + mType))
        return; // an earlier emitter of the type has filled it
    addBaseParameters();
    static ShapeCommand shapes;
    static constexpr const char* kAxes[]{"width", "height", "depth"};
    static AxisCommand sizes[]{
        {&RangedEmitter::size, 0}, {&RangedEmitter::size, 1}, {&RangedEmitter::size, 2}};
    static AxisCommand inners[]{
        {&RangedEmitter::inner, 0}, {&RangedEmitter::inner, 1}, {&RangedEmitter::inner, 2}};
    static ValueCommands values[]{{"emission_rate", &RangedEmitter::rate, true},
        {"angle", &RangedEmitter::angle, true}, {"mass", &RangedEmitter::mass},
        {"all_dimensions", &RangedEmitter::allDimensions}, {"particle_width", &RangedEmitter::particleWidth},
        {"particle_height", &RangedEmitter::particleHeight}};

    Ogre::ParamDictionary& parameters = *getParamDictionary();
    const auto add = [&](const String& name, Ogre::ParamCommand& command) {
        parameters.addParameter(Ogre::ParameterDef(name, "", Ogre::PT_REAL), &command);
    };
    if (type_ == Type::ranged)
        parameters.addParameter(Ogre::ParameterDef("shape", "", Ogre::PT_STRING), &shapes);
    const std::size_t hollowAxes = type_ == Type::ring ? 2 : type_ == Type::hollowEllipsoid ? 3 : 0;
    for (std::size_t i = 0; i < std::size(kAxes) && type_ != Type::point; ++i) {
        add(kAxes[i], sizes[i]);
        if (i < hollowAxes)
            add(std::string("inner_") + kAxes[i], inners[i]);
    }
    for (ValueCommands& value : values) {
        const String name = value.name;
        if (!value.inBase)
            add(name, value.both);
        add(name + "_min", value.low);
        add(name + "_max", value.high);
    }
}

} // namespace particles
