// Parameters of an effect as properties of its element.
#pragma once

#include "gstreamer/names.h"

#include <glib-object.h>

#include <mutex>
#include <vector>

namespace bridge {

/// The ids of an effect's properties count from here; an element's own ones are below.
constexpr guint kFirstEffectProperty = 100;

/// Gives a class the properties. They can be controlled, and set while playing.
/// @param typePrefix  of the types of enumerations that are made for them
void installProperties(
    GObjectClass* type, const std::vector<Property>& properties, const std::string& typePrefix);

/// The values of an element's properties, which any thread sets and the one that streams hands to a run.
class EffectProperties {
public:
    /// @param properties  live as long as this
    explicit EffectProperties(const std::vector<Property>& properties);

    void set(std::size_t property, const GValue* given);
    void get(std::size_t property, GValue* wanted) const;

    /// Sets the run's parameters that the element's properties have changed since the last call, or, for a
    /// new run, that they ever changed. False when the run refuses one: EffectHostLastError() has the words.
    bool apply(EffectHostRun* run, bool runIsNew);

private:
    /// A parameter with the values of its properties.
    struct Value {
        const EffectHostParameter* parameter;
        std::vector<double> numbers;
        std::string text;
        bool given = false;   ///< by a property, at some time
        bool pending = false; ///< since the last frame
    };

    std::size_t valueOf(std::size_t property) const { return valueIndex_[property]; }
    static bool apply(EffectHostRun* run, const Value& value);

    const std::vector<Property>& properties_;
    std::vector<std::size_t> valueIndex_; ///< by property
    std::vector<Value> values_;
    mutable std::mutex mutex_;
};

} // namespace bridge
