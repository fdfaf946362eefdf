// What tests that draw share: a render thread on the real graphics system, and pictures.
#pragma once

#include "EffectTovOgre/TovOgreEffectBase.h"
#include "effects/gpu/GpuEffect.h"
#include "gpu/OgreTest.h"
#include "support/paths.h"

#include <algorithm>
#include <random>
#include <vector>

namespace test {

struct Picture : KEXSDK::CEffectImage {
    Picture(u32 width, u32 height) : CEffectImage(width, height, 0, 32, nullptr) { }

    /// A picture of any bytes, alpha included; the same for the same seed.
    static std::unique_ptr<Picture> noise(u32 width, u32 height, unsigned seed)
    {
        auto picture = std::make_unique<Picture>(width, height);
        std::mt19937 random(seed);
        std::generate_n(picture->pixels(), picture->byteSize(), [&] { return u8(random()); });
        return picture;
    }
    /// A picture of one colour, given as the bytes blue, green, red and alpha.
    static std::unique_ptr<Picture> plain(u32 width, u32 height, std::array<u8, 4> bgra)
    {
        auto picture = std::make_unique<Picture>(width, height);
        for (u32 i = 0; i < picture->byteSize(); ++i)
            picture->pixels()[i] = bgra[i % 4];
        return picture;
    }

    std::vector<u8> bytes() const { return {pixels(), pixels() + byteSize()}; }
    std::array<u8, 4> pixel(u32 x, u32 y) const
    {
        std::array<u8, 4> found;
        std::copy_n(pixels() + (y * width() + x) * 4, 4, found.begin());
        return found;
    }
};

class GpuEffectTest : public OgreTest {
protected:
    GpuEffectTest() : thread_(test::kResourceDirectory, test::kResourceDirectory, directory_.c_str()) { }

    /// An effect with a fragment program, or the default one.
    static KEXSDK::GpuEffect effectOf(u32 width, u32 height, const char* source = nullptr)
    {
        KEXSDK::GpuEffect effect = KEXSDK::GpuEffect::create();
        effect->setSize(width, height);
        effect->setShaderSource(source, true, true);
        return effect;
    }

    /// The effect as its class over OGRE, for what only that class has.
    static KEXSDK::TovOgreEffectBase& ogre(const KEXSDK::GpuEffect& effect)
    {
        return dynamic_cast<KEXSDK::TovOgreEffectBase&>(*effect.get());
    }

    KEXSDK::TovOgreRenderThread thread_;
};

} // namespace test
