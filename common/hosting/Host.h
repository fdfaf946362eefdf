// The public interface for C++: objects that own the engine's handles, and exceptions for result codes.
#pragma once

#include "EffectEngine/EffectEngine.h"

#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace host {

/// A call of the engine that did not succeed.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Starts the engine, and ends it with this object's life.
class Engine {
public:
    /// Throws Failure.
    Engine(const std::string& resourceDirectory, const char* logDirectory);
    ~Engine() { UninitializeEngine(); }
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;
};

class Image {
public:
    /// Transparent black. Throws Failure.
    Image(unsigned width, unsigned height);
    /// Over packed pixels of somebody else, width x height x 4 bytes, which must outlive the image.
    Image(void* pixels, unsigned width, unsigned height);
    /// A picture file scaled to the size; an empty Image when it cannot be loaded.
    static Image load(const std::string& path, unsigned width, unsigned height);

    explicit operator bool() const { return handle_ != nullptr; }
    CEffectImage* handle() const { return handle_.get(); }
    unsigned width() const;
    unsigned height() const;
    /// width x height x 4 bytes, bottom row first.
    std::span<unsigned char> bytes() const;

private:
    struct Release {
        void operator()(CEffectImage* image) const { ReleaseImage(image); }
    };
    explicit Image(CEffectImage* handle) : handle_(handle) { }

    std::unique_ptr<CEffectImage, Release> handle_;
};

class Filter {
public:
    /// Throws Failure when nobody knows the GUID.
    Filter(const std::string& guid, int width, int height);

    CSimpleEffect* handle() const { return handle_.get(); }
    void setInput(const Image& image, unsigned index = 0);
    void connectFrom(const Filter& upstream, unsigned index = 0);

    // Setters answer whether the value was stored.
    bool set(const std::string& name, int value);
    bool set(const std::string& name, float value);
    bool set(const std::string& name, const std::vector<int>& values);
    bool set(const std::string& name, const std::vector<float>& values);
    /// A file path.
    bool set(const std::string& name, const std::wstring& path);

    /// Evaluates the graph; the image belongs to the filter. Throws Failure.
    CEffectImage* run();
    /// Evaluates the graph into an image of the filter's size, as DoFilterEx() does. Throws Failure.
    void runInto(CEffectImage* target);

private:
    struct Release {
        void operator()(CSimpleEffect* filter) const { ReleaseFilter(filter); }
    };

    std::unique_ptr<CSimpleEffect, Release> handle_;
};

/// The pixels of an image handle.
std::span<unsigned char> bytesOf(CEffectImage* image);

} // namespace host
