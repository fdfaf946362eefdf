// What hosts in C++ share: looks and runs with owners, and frames of colours.
#pragma once

#include <EffectEngine/EffectEngineHost.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

/// Ends the program unless the call succeeded.
inline void succeed(EffectHostResult result, const char* call)
{
    if (result == EFFECTHOST_OK)
        return;
    std::fprintf(stderr, "%s failed with %d: %s\n", call, int(result), EffectHostLastError());
    std::exit(1);
}

struct ReleaseLook {
    void operator()(EffectHostLook* look) const { EffectHostReleaseLook(look); }
};
struct ReleaseRun {
    void operator()(EffectHostRun* run) const { EffectHostReleaseRun(run); }
};
using Look = std::unique_ptr<EffectHostLook, ReleaseLook>;
using Run = std::unique_ptr<EffectHostRun, ReleaseRun>;

inline Look makeLook(EffectHostLookSource source, const std::string& text)
{
    EffectHostLook* look = nullptr;
    succeed(EffectHostCreateLook(source, text.c_str(), nullptr, &look), "EffectHostCreateLook");
    return Look(look);
}

inline Run startRun(const Look& look, unsigned width, unsigned height)
{
    EffectHostRun* run = nullptr;
    succeed(EffectHostStartRun(look.get(), width, height, &run), "EffectHostStartRun");
    return Run(run);
}

/// Packed frames in the engine's own form.
struct Size {
    unsigned width;
    unsigned height;
};
using Pixels = std::vector<unsigned char>;

/// Opaque colours that differ from frame to frame and from seed to seed.
inline Pixels painted(Size size, unsigned seed)
{
    Pixels pixels(std::size_t(size.width) * size.height * 4);
    unsigned state = seed * 2654435761u + 1;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        state = state * 1664525u + 1013904223u;
        pixels[i] = i % 4 == 3 ? 255 : static_cast<unsigned char>(state >> 24);
    }
    return pixels;
}

inline EffectHostPicture pictureOn(Pixels& pixels, Size size)
{
    return {pixels.data(), std::ptrdiff_t(size.width) * 4, int(size.width), int(size.height), EFFECTHOST_BGRA,
        EFFECTHOST_BOTTOM_UP};
}

/// Runs the frame with this number at 25 frames a second of a 4-second clip.
inline Pixels runFrame(const Run& run, std::vector<Pixels> inputs, Size size, int number)
{
    std::vector<EffectHostPicture> pictures;
    for (Pixels& input : inputs)
        pictures.push_back(pictureOn(input, size));
    Pixels output(std::size_t(size.width) * size.height * 4);
    EffectHostFrame frame{};
    frame.inputs = pictures.data();
    frame.inputCount = pictures.size();
    frame.output = pictureOn(output, size);
    frame.seconds = number / 25.0;
    frame.rate = 25;
    frame.duration = 4;
    succeed(EffectHostRunFrame(run.get(), &frame), "EffectHostRunFrame");
    return output;
}
