// Puts a chain of two effects on raw frames, from standard input to standard output:
//     frames RESOURCES WIDTH HEIGHT RATE
// Frames are WIDTH x HEIGHT x 4 bytes blue, green, red, alpha, with the bottom row first:
//     ffmpeg -i in.mp4 -vf vflip -pix_fmt bgra -f rawvideo - |
//         frames /usr/share/effectengine/ 640 360 25 |
//         ffmpeg -f rawvideo -pix_fmt bgra -s 640x360 -r 25 -i - -vf vflip out.mp4
#include <EffectEngine/EffectEngine.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr const char* kGlow = "25E4478A-C617-4c60-B95A-F378D2923E17";
constexpr const char* kHueShift = "12E5BC38-3508-44b0-AD1A-D0B37D19289F";
constexpr int kWidestGlow = 100;

void require(unsigned result, const char* what)
{
    if (result != EFFECTENGINE_OK)
        throw std::runtime_error(std::string(what) + " failed with " + std::to_string(result));
}

struct Engine {
    explicit Engine(const char* resources)
    {
        require(InitializeEngine(resources, nullptr), "InitializeEngine");
    }
    ~Engine() { UninitializeEngine(); }
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;
};

struct Release {
    void operator()(CEffectImage* image) const { ReleaseImage(image); }
    void operator()(CSimpleEffect* filter) const { ReleaseFilter(filter); }
};
using Image = std::unique_ptr<CEffectImage, Release>;
using Filter = std::unique_ptr<CSimpleEffect, Release>;

// The image works on the host's own memory, so frames are not copied.
Image imageOn(std::vector<unsigned char>& pixels, unsigned width, unsigned height)
{
    const ImageCreateInfo info{width, height, {}, pixels.data()};
    CEffectImage* image = nullptr;
    require(CreateImage(&info, &image), "CreateImage");
    return Image(image);
}

Filter makeFilter(const char* guid, unsigned width, unsigned height)
{
    CSimpleEffect* filter = nullptr;
    require(GetFilter(guid, int(width), int(height), &filter), "GetFilter");
    return Filter(filter);
}

void run(const char* resources, unsigned width, unsigned height, double rate)
{
    const Engine engine(resources);
    std::vector<unsigned char> in(std::size_t{width} * height * 4);
    std::vector<unsigned char> out(in.size());
    const Image source = imageOn(in, width, height);
    const Image target = imageOn(out, width, height);
    // Made once: nodes keep their memory, and effects with a history what they have seen.
    const Filter glow = makeFilter(kGlow, width, height);
    const Filter hue = makeFilter(kHueShift, width, height);
    require(SetInputImage(glow.get(), source.get(), 0), "SetInputImage");
    require(ConnectFilter(glow.get(), hue.get(), 0), "ConnectFilter");
    require(setParamIntValue(hue.get(), "Hue", 20), "Hue");

    for (int frame = 0; std::fread(in.data(), 1, in.size(), stdin) == in.size(); ++frame) {
        const double seconds = frame / rate;
        for (CSimpleEffect* const filter : {glow.get(), hue.get()})
            require(setParamFloatValue(filter, kEffectCurrentTime, float(seconds)), "the time");
        // The glow grows wider with the time.
        require(setParamIntValue(glow.get(), "Blur", std::min(int(10 * seconds), kWidestGlow)), "Blur");
        // Evaluates the whole chain; the last node's pixels land in `out`.
        require(DoFilterEx(hue.get(), target.get()), "DoFilterEx");
        if (std::fwrite(out.data(), 1, out.size(), stdout) != out.size())
            throw std::runtime_error("cannot write");
    }
    if (std::fflush(stdout) != 0)
        throw std::runtime_error("cannot write");
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 5) {
        std::fprintf(stderr, "usage: frames RESOURCES WIDTH HEIGHT RATE\n");
        return 2;
    }
    try {
        run(argv[1], unsigned(std::atoi(argv[2])), unsigned(std::atoi(argv[3])), std::atof(argv[4]));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "frames: %s\n", error.what());
        return 1;
    }
}
