// What the tests of the plug-in share: pictures, runs of the host library, and the plug-in's elements.
#pragma once

#include "EffectEngine/EffectEngineHost.h"

#include <gst/gst.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace gsttest {

struct Size {
    int width;
    int height;
    friend bool operator==(const Size&, const Size&) = default;
};

/// BGRA, the top row first, rows without padding.
struct Picture {
    Size size{};
    std::vector<unsigned char> bytes;
    friend bool operator==(const Picture&, const Picture&) = default;
};

Picture noise(Size size, unsigned seed);

/// An effect over the host library, as a program without GStreamer would run it.
class HostRun {
public:
    HostRun(const std::string& effect, Size size);
    ~HostRun();
    HostRun(const HostRun&) = delete;
    HostRun& operator=(const HostRun&) = delete;

    void set(const char* parameter, double value);
    Picture frame(const std::vector<Picture>& inputs, double seconds, double rate, double duration);

private:
    EffectHostRun* run_ = nullptr;
};

struct Unref {
    void operator()(GstElement* element) const { gst_object_unref(element); }
};
using Element = std::unique_ptr<GstElement, Unref>;

class GStreamerTest : public testing::Test {
public:
    static void SetUpTestSuite();

protected:
    /// Effects that take so many pictures.
    static std::vector<const EffectHostEffect*> effects(unsigned inputs);

    /// One of each of the plug-in's elements, by name.
    static std::map<std::string, Element> elements();

    static std::string temporaryFile(const char* name, const std::string& contents);
    static std::set<std::string> storedInterface();
    static void writeLines(const std::string& file, const std::set<std::string>& lines);
};

} // namespace gsttest
