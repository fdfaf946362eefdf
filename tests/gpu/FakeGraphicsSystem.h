// A graphics system without a GPU: it keeps a diary, and can be told to fail.
#pragma once

#include "EffectTovOgre/TovOgreRenderThread.h"
#include "graphics/GraphicsSystem.h"
#include "graphics/TovEffectBase.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

/// What the fakes of one test did, and how they are to behave.
struct Diary {
    std::mutex mutex;
    std::vector<std::string> lines;
    std::set<std::thread::id> threads; ///< that called any function but the log
    std::atomic<int> starts = 0;
    std::atomic<int> systems = 0; ///< that exist now
    std::atomic<int> effects = 0; ///< that exist now
    u32 nextId = 0;

    bool startWorks = true;
    bool knowsClasses = true;
    bool windowCloses = false;
    std::pair<i32, i32> driver{4, 5};
    std::string renderer = "a card";
    std::string throwIn; ///< the operation that throws
    std::function<void()> duringRender;

    void note(std::string line, bool ownThread = true)
    {
        const std::lock_guard guard(mutex);
        if (ownThread)
            threads.insert(std::this_thread::get_id());
        lines.push_back(std::move(line));
    }
    std::vector<std::string> taken()
    {
        const std::lock_guard guard(mutex);
        return std::exchange(lines, {});
    }
    void perhapsThrow(const std::string& operation) const
    {
        if (throwIn == operation)
            throw std::runtime_error(operation + " threw");
    }
};

class FakeEffect : public KEXSDK::TovEffectBase {
public:
    explicit FakeEffect(Diary& diary) : diary_(diary), id_(++diary.nextId) { ++diary_.effects; }
    ~FakeEffect() override
    {
        --diary_.effects;
        diary_.note("destroy " + std::to_string(id_));
    }
    void render(KEXSDK::_ImageParam** output, u8* buffer, u32 channels) override
    {
        diary_.note(
            "render " + std::to_string(id_) + (buffer ? " into buffer " : " ") + std::to_string(channels));
        if (diary_.duringRender)
            diary_.duringRender();
        diary_.perhapsThrow("render");
        if (!*output)
            *output = &record_;
    }
    void getPixels(KEXSDK::_ImageParam* record, u8* buffer, u32 channels) override
    {
        diary_.note("getPixels " + std::to_string(id_) + (record ? " record " : " nothing ")
            + (buffer ? "buffer " : "") + std::to_string(channels));
    }
    bool isWindowClosed() override { return diary_.windowCloses; }
    u32 getId() override { return id_; }
    KEXSDK::ShaderParameters* getShaderParameters() override
    {
        diary_.note("prepare " + std::to_string(id_));
        return &shaderParameters_;
    }
    void setReadBackMode(KEXSDK::ReadBackMode) override { }
    void setPictureOnly(bool) override { }
    void setShaderSource(const char*, bool, bool) override { }

    KEXSDK::_ImageParam record_;

private:
    Diary& diary_;
    u32 id_;
};

/// A picture of 16 x 16 pixels whose "decoder" fills it with the last character of the path, slowly enough to
/// be disturbed.
class FakeImage : public KEXSDK::SharedImage {
public:
    bool hasData() const override { return !bytes_.empty(); }
    u32 width() const override { return 16; }
    u32 height() const override { return 16; }
    KEXSDK::RecordFormat format() const override { return KEXSDK::RecordFormat::A8R8G8B8; }
    u32 bitsPerPixel() const override { return 32; }
    std::span<const u8> bytes() const override { return bytes_; }
    bool scale(u32, u32) override { return hasData(); }
    void freeMemory() override { bytes_.clear(); }

    void decode(u8 value)
    {
        bytes_.assign(16 * 16 * 4, 0);
        for (u8& byte : bytes_)
            byte = value;
    }

private:
    std::vector<u8> bytes_;
};

class FakeGraphicsSystem : public KEXSDK::GraphicsSystem {
public:
    explicit FakeGraphicsSystem(Diary& diary) : diary_(diary) { ++diary_.systems; }
    ~FakeGraphicsSystem() override
    {
        diary_.note("end");
        --diary_.systems;
    }
    bool start(const std::string& resourceDirectory, const std::string& pluginsDirectory,
        const std::string& logDirectory, u32 kind) override
    {
        ++diary_.starts;
        diary_.note("start " + resourceDirectory + "|" + pluginsDirectory + "|" + logDirectory + "|"
            + std::to_string(kind));
        diary_.perhapsThrow("start");
        return diary_.startWorks;
    }
    KEXSDK::GpuCapabilities capabilities() const override
    {
        KEXSDK::GpuCapabilities found;
        found.maxTextureSize = 4321;
        found.textures3D = true;
        found.renderer = diary_.renderer;
        found.driver.major = diary_.driver.first;
        found.driver.minor = diary_.driver.second;
        return found;
    }
    KEXSDK::TovEffectBase* createEffect(const char* className) override
    {
        diary_.note(std::string("create ") + className);
        diary_.perhapsThrow("create");
        return diary_.knowsClasses ? new FakeEffect(diary_) : nullptr;
    }
    void loadImage(const std::string& path) override
    {
        diary_.note("load " + path);
        diary_.perhapsThrow("load");
        if (!path.empty())
            image_.decode(u8(path.back()));
    }
    KEXSDK::SharedImage& sharedImage() override { return image_; }
    bool saveImage(
        const std::string& path, const u8*, u32 width, u32 height, KEXSDK::RecordFormat format) override
    {
        diary_.note("save " + path + " " + std::to_string(width) + "x" + std::to_string(height) + " "
            + std::to_string(u32(format)));
        diary_.perhapsThrow("save");
        return true;
    }
    void log(std::string_view message) override { diary_.note("log " + std::string(message), false); }

private:
    Diary& diary_;
    FakeImage image_;
};
