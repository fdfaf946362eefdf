// A graphics system without a GPU, whose picture files are what a test holds in memory.
#pragma once

#include "EffectTovOgre/TovOgreRenderThread.h"
#include "pixels/Pixel.h"

#include <map>
#include <random>
#include <string>
#include <vector>

namespace test {

/// The picture files that there are, by name: pixels that repeat over pictures of any size.
struct Files {
    std::map<std::string, std::vector<pixels::Bgra>> pixels;
    std::vector<pixels::Bgra> others; ///< of every other file; when empty, such a file cannot be loaded
    std::vector<std::string> asked;
};
inline Files files;

class RepeatedPixels final : public KEXSDK::SharedImage {
public:
    bool hasData() const override { return !tile_.empty(); }
    u32 width() const override { return 1; }
    u32 height() const override { return 1; }
    KEXSDK::RecordFormat format() const override { return KEXSDK::RecordFormat::A8R8G8B8; }
    u32 bitsPerPixel() const override { return 32; }
    std::span<const u8> bytes() const override { return bytes_; }
    bool scale(u32 width, u32 height) override
    {
        for (u32 i = 0; i < width * height; ++i) {
            const pixels::Bgra p = tile_[i % tile_.size()];
            bytes_.insert(bytes_.end(), {p.b, p.g, p.r, p.a});
        }
        return true;
    }
    void freeMemory() override { bytes_.clear(); }

    void hold(const std::vector<pixels::Bgra>& tile)
    {
        tile_ = tile;
        bytes_.clear();
    }

private:
    std::vector<pixels::Bgra> tile_;
    std::vector<u8> bytes_;
};

class FilesInMemory final : public KEXSDK::GraphicsSystem {
public:
    bool start(const std::string&, const std::string&, const std::string&, u32) override { return true; }
    KEXSDK::GpuCapabilities capabilities() const override { return {}; }
    KEXSDK::TovEffectBase* createEffect(const char*) override { return nullptr; }
    void loadImage(const std::string& path) override
    {
        files.asked.push_back(path);
        const auto found = files.pixels.find(path);
        image_.hold(found == files.pixels.end() ? files.others : found->second);
    }
    KEXSDK::SharedImage& sharedImage() override { return image_; }
    bool saveImage(const std::string&, const u8*, u32, u32, KEXSDK::RecordFormat) override { return false; }
    void log(std::string_view) override { }

private:
    RepeatedPixels image_;
};

inline void useFilesInMemory()
{
    KEXSDK::TovOgreRenderThread::setGraphicsSystemFactory([] { return std::make_unique<FilesInMemory>(); });
}

/// Every file that is asked for is there, and holds the same noise.
inline void useFilesOfNoise()
{
    useFilesInMemory();
    std::mt19937 random(7);
    files.others.resize(1009);
    for (pixels::Bgra& p : files.others)
        p = {u8(random()), u8(random()), u8(random()), u8(random())};
}

} // namespace test
