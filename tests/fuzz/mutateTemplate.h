// Mutations of particle templates: the odd numbers, cut sections and repeated blocks that people's files
// hold.
#pragma once

#include <array>
#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

class TemplateMutator {
public:
    explicit TemplateMutator(unsigned seed) : random_(seed) { }

    std::string operator()(const std::string& text)
    {
        std::vector<std::string> lines = linesOf(text);
        for (std::size_t i = 1 + pick(4); i > 0; --i)
            mutate(lines);
        std::string result;
        for (const std::string& line : lines)
            result += line + '\n';
        return result;
    }

private:
    static constexpr std::array<std::string_view, 34> kNumbers{"0", "-1", "1", "nan", "-nan", "inf", "-inf",
        "1e999", "-1e30", "1e30", "1e38", "3.4e38", "1e-30", "1e-45", "0.001", "1000000000", "4294967295",
        "4294967296", "-2147483648", "65535", "65536", "16383", "16384", "1e6", "0.5", "60000", "180", "360",
        "1e-6", "10 20", "1 2 3", "nan nan nan", "inf 0 0 1", "-0"};
    static constexpr std::array<std::string_view, 10> kTypes{
        "Point", "Box", "Cylinder", "Ellipsoid", "HollowEllipsoid", "Ring", "Ranged", "Nothing", "", "point"};
    static constexpr std::array<std::string_view, 12> kAffectors{"LinearForce", "ColourFader", "ColourFader2",
        "ColourImage", "ColourInterpolator", "DeflectorPlane", "DirectionRandomiser", "Rotator", "Scaler",
        "MassForce", "MaxVelocity", "Nothing"};
    static constexpr std::array<std::string_view, 73> kParameters{"quota", "emit_emitter_quota", "material",
        "particle_width", "particle_height", "cull_each", "renderer", "sorted", "local_space",
        "iteration_interval", "nonvisible_update_timeout", "billboard_type", "billboard_origin",
        "billboard_rotation_type", "common_direction", "common_up_vector", "point_rendering",
        "accurate_facing", "texture_sheet_size", "angle", "colour", "colour_range_start", "colour_range_end",
        "direction", "up", "direction_position_reference", "emission_rate", "position", "velocity",
        "velocity_min", "velocity_max", "time_to_live", "time_to_live_min", "time_to_live_max", "duration",
        "duration_min", "duration_max", "repeat_delay", "repeat_delay_min", "repeat_delay_max", "name",
        "emit_emitter", "width", "height", "depth", "inner_width", "inner_height", "inner_depth", "shape",
        "emission_rate_min", "emission_rate_max", "angle_min", "angle_max", "all_dimensions",
        "all_dimensions_min", "all_dimensions_max", "mass", "mass_min", "force_vector", "force_application",
        "red", "alpha", "image", "time0", "colour0", "time3", "plane_point", "plane_normal", "bounce",
        "randomness", "scope", "rotation_speed_range_end", "rate"};
    static constexpr std::array<std::string_view, 12> kWords{"{", "}", "absent.png", "true", "off", "add",
        "average", "oriented_common", "perpendicular_self", "inner", "billboard", "*"};

    static std::vector<std::string> linesOf(const std::string& text)
    {
        std::vector<std::string> lines(1);
        for (const char c : text)
            if (c == '\n')
                lines.emplace_back();
            else
                lines.back() += c;
        return lines;
    }

    std::size_t pick(std::size_t count)
    {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_);
    }
    template <class List> std::string one(const List& list) { return std::string(list[pick(list.size())]); }
    std::size_t at(const std::vector<std::string>& lines) { return pick(lines.size()); }

    std::string line()
    {
        switch (pick(6)) {
        case 0:
            return "emitter " + one(kTypes) + "\n{\n" + line() + "\n" + line() + "\n}";
        case 1:
            return "affector " + one(kAffectors) + "\n{\n" + line() + "\n}";
        default:
            return one(kParameters) + " " + (pick(5) ? one(kNumbers) : one(kWords));
        }
    }

    void mutate(std::vector<std::string>& lines)
    {
        if (lines.empty())
            lines.emplace_back("particle_system a");
        const std::size_t where = at(lines);
        const std::size_t other = at(lines);
        const auto place = lines.begin() + std::ptrdiff_t(where);
        switch (pick(9)) {
        case 0: // a line less, or a run of them
            lines.erase(place, lines.begin() + std::ptrdiff_t(std::min(lines.size(), where + 1 + pick(4))));
            break;
        case 1: { // a run of lines twice
            const std::vector<std::string> run(
                place, lines.begin() + std::ptrdiff_t(std::min(lines.size(), where + 1 + pick(12))));
            lines.insert(lines.begin() + std::ptrdiff_t(other), run.begin(), run.end());
            break;
        }
        case 2:
            std::swap(lines[where], lines[other]);
            break;
        case 3:
            lines.insert(place, one(kWords));
            break;
        case 4:
            lines.resize(where + 1); // the rest is missing
            break;
        case 5:
        case 6:
            lines.insert(place, line());
            break;
        default: { // another last word
            std::string& text = lines[where];
            const std::size_t blank = text.find_last_of(' ');
            text = (blank == std::string::npos ? text : text.substr(0, blank)) + " "
                + (pick(4) ? one(kNumbers) : one(kWords));
        }
        }
    }

    std::mt19937 random_;
};

} // namespace fuzz
