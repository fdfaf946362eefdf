// GParamSpecs from the catalogue's facts, and the way of values to a run.
#include "gstreamer/EffectProperties.h"

#include "text/kebabCase.h"

#include <gst/gst.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace bridge {

namespace {

constexpr auto kFlags = GParamFlags(
    G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS | GST_PARAM_CONTROLLABLE | GST_PARAM_MUTABLE_PLAYING);

bool isFile(const EffectHostParameter& parameter) { return parameter.type == EFFECTHOST_FILE; }

bool isWhole(const EffectHostParameter& parameter)
{
    return parameter.type == EFFECTHOST_INTEGER || parameter.type == EFFECTHOST_INTEGERS;
}

bool isSwitch(const EffectHostParameter& parameter)
{
    return isWhole(parameter) && parameter.choiceCount == 0 && parameter.low == 0 && parameter.high == 1;
}

bool isEnumeration(const EffectHostParameter& parameter)
{
    return isWhole(parameter) && parameter.choiceCount > 0;
}

// Text that lives as long as the types do, which is to the end of the process.
const char* kept(const std::string& text) { return g_intern_string(text.c_str()); }

GType enumerationOf(const EffectHostParameter& parameter, const std::string& name)
{
    auto* const values = g_new0(GEnumValue, parameter.choiceCount + 1);
    for (std::uint32_t i = 0; i < parameter.choiceCount; ++i)
        values[i] = {parameter.choices[i].value, kept(parameter.choices[i].name),
            kept(text::kebabCase(parameter.choices[i].name))};
    const GType type = g_enum_register_static(name.c_str(), values); // which keeps the table
    gst_type_mark_as_plugin_api(type, GstPluginAPIFlags(0));
    return type;
}

std::string describe(const Property& property)
{
    const EffectHostParameter& parameter = *property.parameter;
    std::string text = parameter.help;
    if (*parameter.unit)
        text += " (" + std::string(parameter.unit) + ")";
    if (parameter.elements > 1)
        text += ", number " + std::to_string(property.element + 1);
    return text;
}

// The advised range, or all numbers, and the initial value in it.
std::pair<double, double> rangeOf(
    const EffectHostParameter& parameter, double initial, double lowest, double highest)
{
    if (!(parameter.low < parameter.high))
        return {lowest, highest};
    return {std::max(lowest, std::min(parameter.low, initial)),
        std::min(highest, std::max(parameter.high, initial))};
}

GParamSpec* specOf(const Property& property, const std::string& typePrefix)
{
    const EffectHostParameter& parameter = *property.parameter;
    const char* const name = kept(property.name);
    const char* const title =
        kept(parameter.elements > 1 ? parameter.title + (' ' + std::to_string(property.element + 1))
                                    : std::string(parameter.title));
    const char* const help = kept(describe(property));
    if (isFile(parameter))
        return g_param_spec_string(name, title, help, nullptr, kFlags);
    const double initial = property.initial;
    if (isSwitch(parameter))
        return g_param_spec_boolean(name, title, help, initial != 0, kFlags);
    if (isEnumeration(parameter))
        return g_param_spec_enum(name, title, help,
            enumerationOf(parameter, typeName(typePrefix, property.name)), int(initial), kFlags);
    if (isWhole(parameter)) {
        const auto [low, high] =
            rangeOf(parameter, initial, std::numeric_limits<gint>::min(), std::numeric_limits<gint>::max());
        return g_param_spec_int(name, title, help, int(low), int(high), int(initial), kFlags);
    }
    constexpr double kLargest = std::numeric_limits<float>::max();
    const auto [low, high] = rangeOf(parameter, initial, -kLargest, kLargest);
    return g_param_spec_double(name, title, help, low, high, initial, kFlags);
}

double numberOf(const EffectHostParameter& parameter, const GValue* value)
{
    if (isSwitch(parameter))
        return g_value_get_boolean(value);
    if (isEnumeration(parameter))
        return g_value_get_enum(value);
    return isWhole(parameter) ? g_value_get_int(value) : g_value_get_double(value);
}

void setNumber(const EffectHostParameter& parameter, double number, GValue* value)
{
    if (isSwitch(parameter))
        g_value_set_boolean(value, number != 0);
    else if (isEnumeration(parameter))
        g_value_set_enum(value, int(number));
    else if (isWhole(parameter))
        g_value_set_int(value, int(number));
    else
        g_value_set_double(value, number);
}

} // namespace

void installProperties(
    GObjectClass* type, const std::vector<Property>& properties, const std::string& typePrefix)
{
    for (std::size_t i = 0; i < properties.size(); ++i)
        g_object_class_install_property(
            type, kFirstEffectProperty + guint(i), specOf(properties[i], typePrefix));
}

EffectProperties::EffectProperties(const std::vector<Property>& properties) : properties_(properties)
{
    for (const Property& property : properties) {
        if (values_.empty() || values_.back().parameter != property.parameter) {
            values_.push_back({property.parameter, {}, {}});
        }
        if (property.parameter->elements > 0)
            values_.back().numbers.push_back(property.initial);
        valueIndex_.push_back(values_.size() - 1);
    }
}

void EffectProperties::set(std::size_t property, const GValue* given)
{
    const std::lock_guard lock(mutex_);
    Value& value = values_[valueOf(property)];
    if (isFile(*value.parameter)) {
        const char* const text = g_value_get_string(given);
        value.text = text ? text : "";
    } else {
        double& number = value.numbers[properties_[property].element];
        const double wanted = numberOf(*value.parameter, given);
        // Projects set everything that they saved. What has been left alone stays the effect's own value,
        // which may depend on the size of the frames.
        if (!value.given && wanted == number)
            return;
        number = wanted;
    }
    value.given = value.pending = true;
}

void EffectProperties::get(std::size_t property, GValue* wanted) const
{
    const std::lock_guard lock(mutex_);
    const Value& value = values_[valueOf(property)];
    if (isFile(*value.parameter))
        g_value_set_string(wanted, value.text.empty() ? nullptr : value.text.c_str());
    else
        setNumber(*value.parameter, value.numbers[properties_[property].element], wanted);
}

bool EffectProperties::apply(EffectHostRun* run, bool runIsNew)
{
    const std::lock_guard lock(mutex_);
    for (Value& value : values_) {
        const bool isEmptyFile = isFile(*value.parameter) && value.text.empty();
        if (!(runIsNew ? value.given : value.pending) || isEmptyFile)
            continue;
        if (!apply(run, value))
            return false;
        value.pending = false;
    }
    return true;
}

bool EffectProperties::apply(EffectHostRun* run, const Value& value)
{
    const char* const name = value.parameter->name;
    const EffectHostResult result = isFile(*value.parameter)
        ? EffectHostSetText(run, nullptr, name, value.text.c_str())
        : EffectHostSetNumbers(run, nullptr, name, value.numbers.data(), value.numbers.size());
    return result == EFFECTHOST_OK;
}

} // namespace bridge
