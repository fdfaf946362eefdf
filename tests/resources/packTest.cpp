// The pictures of the resource pack: all there, transparent where the photograph must show, and of the
// brightness that their blend needs.
#include "effects/am/library/amCatalog.h"
#include "engine/effectList.h"
#include "gpu/OgreTest.h"
#include "hosting/Host.h"
#include "pictures/PictureCodecs.h"
#include "support/paths.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <map>
#include <numeric>
#include <optional>
#include <set>

namespace {

namespace fs = std::filesystem;

struct Decoded {
    u32 width = 0;
    u32 height = 0;
    std::vector<u8> bytes; ///< blue, green, red, alpha; top row first

    const u8* at(u32 x, u32 y) const { return bytes.data() + (std::size_t(y) * width + x) * 4; }

    /// The mean of a channel over the middle ninth of the picture.
    double middle(int channel) const
    {
        double sum = 0;
        for (u32 y = height / 3; y < height * 2 / 3; ++y)
            for (u32 x = width / 3; x < width * 2 / 3; ++x)
                sum += at(x, y)[channel];
        return sum / ((height * 2 / 3 - height / 3) * (width * 2 / 3 - width / 3));
    }
    /// The share of pixels whose alpha is below this one.
    double shareBelow(int alpha) const
    {
        std::size_t count = 0;
        for (std::size_t i = 3; i < bytes.size(); i += 4)
            count += bytes[i] < alpha;
        return double(count) / (double(width) * height);
    }
    std::set<u8> levels(int channel) const
    {
        std::set<u8> found;
        for (std::size_t i = std::size_t(channel); i < bytes.size(); i += 4)
            found.insert(bytes[i]);
        return found;
    }
};

std::set<std::string> catalogueTextures()
{
    std::set<std::string> names;
    for (const auto& [effect, family] : KEXSDK::amCatalog())
        if (effect->texture)
            names.insert(effect->texture);
    return names;
}

constexpr const char* kOverlays[] = {
    "NightGlassView", "CamcorderOn", "CamcorderOff", "Sight", "WindowShades", "Woven", "Concert"};

class PackFiles : public OgreTest {
protected:
    PackFiles() : thread_(test::kResourceDirectory, test::kResourceDirectory, directory_.c_str())
    {
        EXPECT_TRUE(KEXSDK::gpuAvailable()) << read("Ogre.log");
    }

    /// Loads a picture by its bare name, as effects ask for it.
    Decoded load(const std::string& name)
    {
        const KEXSDK::LoadedImage image = thread_.loadImage(name.c_str());
        if (!image || !image->hasData())
            return {};
        return {image->width(), image->height(), {image->bytes().begin(), image->bytes().end()}};
    }

    KEXSDK::TovOgreRenderThread thread_;
};

TEST_F(PackFiles, EveryTextureOfTheCatalogueIsThereWithTheAlphaThatItsBlendReads)
{
    for (const std::string& name : catalogueTextures()) {
        const Decoded picture = load(name);
        ASSERT_GE(picture.width, 1024u) << name;
        ASSERT_GE(picture.height, 768u) << name;
        if (name == "MergeImage.png" || name == "oldtime.png") {
            EXPECT_LT(picture.middle(3), 140) << name << " hides the photograph";
            EXPECT_EQ(picture.at(2, 2)[3], 255) << name << " has no border";
            EXPECT_GT(picture.levels(3).size(), 100u) << name << " has hard edges";
        } else {
            EXPECT_EQ(picture.levels(3), std::set<u8>{255}) << name;
        }
        EXPECT_GT(picture.levels(1).size(), 40u) << name << " is hardly a picture";
    }
}

TEST_F(PackFiles, EveryOverlayIsThereInBothShapesAndLetsThePictureThrough)
{
    for (const std::string name : kOverlays)
        for (const auto& [suffix, width] : {std::pair{"16_9.png", 1920u}, {"4_3.png", 1440u}}) {
            SCOPED_TRACE(name + suffix);
            const Decoded picture = load(name + suffix);
            ASSERT_EQ(picture.width, width);
            ASSERT_EQ(picture.height, 1080u);
            EXPECT_GT(picture.shareBelow(48), 0.25) << "the picture hardly shows";
            EXPECT_LT(picture.middle(3), name == "WindowShades" ? 160 : 45);
            EXPECT_GT(*picture.levels(3).rbegin(), 235) << "nothing lies over the picture";
            EXPECT_GT(picture.levels(3).size(), 120u) << "hard edges";
        }
}

TEST_F(PackFiles, OnlyTheRecordingLightTellsOnFromOff)
{
    for (const std::string suffix : {"16_9.png", "4_3.png"}) {
        const Decoded on = load("CamcorderOn" + suffix);
        const Decoded off = load("CamcorderOff" + suffix);
        ASSERT_EQ(on.bytes.size(), off.bytes.size());
        int red = 0;
        for (u32 y = 0; y < on.height; ++y)
            for (u32 x = 0; x < on.width; ++x) {
                const u8* const p = on.at(x, y);
                if (std::equal(p, p + 4, off.at(x, y)))
                    continue;
                red += p[3] > 200 && p[2] > 200 && p[1] < 160 && p[0] < 150;
                ASSERT_TRUE(x < on.width / 4 && y < on.height / 4) << "outside the upper left corner";
            }
        EXPECT_GT(red, 500);
    }
}

TEST_F(PackFiles, NothingElseLiesAmongThem)
{
    std::set<std::string> expected = catalogueTextures();
    std::set<std::string> found;
    for (const auto& file : fs::directory_iterator(std::string(test::kResourceDirectory) + "Textures"))
        found.insert(file.path().filename());
    EXPECT_EQ(found, expected);
    EXPECT_EQ(std::distance(fs::directory_iterator(std::string(test::kResourceDirectory) + "Overlays"), {}),
        2 * std::ssize(kOverlays));
}

/// A dark and a bright brown, side by side; every blend shall keep them apart where the viewer looks.
class PackEffects : public testing::Test {
protected:
    static constexpr unsigned kWidth = 480;
    static constexpr unsigned kHeight = 270;
    static constexpr int kDark = 70;
    static constexpr int kBright = 200;

    PackEffects() : engine_(test::kResourceDirectory, nullptr), photograph_(kWidth, kHeight)
    {
        const auto bytes = photograph_.bytes();
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] =
                i % 4 == 3 ? 255 : u8((i / 4 % kWidth < kWidth / 2 ? kDark : kBright) + 20 * int(i % 4) - 20);
    }

    /// Means over the dark and the bright part of the middle ninth, and how far the whole picture moved.
    struct Shown {
        double dark[3] = {};
        double bright[3] = {};
        double changed = 0;

        /// How far apart the two browns are, in the channel that shows it best.
        double contrast() const
        {
            double best = 0;
            for (int c = 0; c < 3; ++c)
                best = std::max(best, bright[c] - dark[c]);
            return best;
        }
        double brightest() const { return *std::max_element(bright, bright + 3); }
        double darkest() const { return *std::min_element(dark, dark + 3); }
    };
    Shown show(const std::string& guid)
    {
        host::Filter filter(guid, kWidth, kHeight);
        filter.setInput(photograph_);
        const auto out = host::bytesOf(filter.run());
        const auto in = photograph_.bytes();
        Shown shown;
        constexpr double kCentral = (kWidth / 6) * (kHeight / 3);
        for (unsigned y = 0; y < kHeight; ++y)
            for (unsigned x = 0; x < kWidth; ++x)
                for (unsigned c = 0; c < 3; ++c) {
                    const std::size_t at = (std::size_t(y) * kWidth + x) * 4 + c;
                    shown.changed += std::abs(int(out[at]) - int(in[at])) / (kWidth * kHeight * 3.0);
                    if (y / (kHeight / 3) == 1 && x / (kWidth / 3) == 1)
                        (x < kWidth / 2 ? shown.dark : shown.bright)[c] += out[at] / kCentral;
                }
        return shown;
    }

private:
    host::Engine engine_;
    host::Image photograph_;
};

TEST_F(PackEffects, NoTextureDrownsThePhotographOrLeavesItUntouched)
{
    for (const auto& [effect, family] : KEXSDK::amCatalog()) {
        if (!effect->texture)
            continue;
        const auto& [place, name, guid] = effect->entry;
        const Shown shown = show(guid);
        EXPECT_GT(shown.changed, 3) << name << " does nothing";
        if (std::string_view(name) == "Classic")
            continue; // a drawing: areas turn to paper
        EXPECT_GT(shown.contrast(), 50) << name;
        EXPECT_GT(shown.brightest(), 110) << name << " is too dark";
        EXPECT_LT(shown.darkest(), 150) << name << " is too bright";
    }
}

TEST_F(PackEffects, OverlaysReachTheFrame)
{
    for (const KEXSDK::EffectInfo& effect : listEffects()) {
        if (effect.family == "overlay") {
            EXPECT_GT(show(effect.guid).changed, 1) << effect.name;
        }
    }
}

/// The pack's wipe pictures, by name.
std::map<std::string, pictures::DecodedGrey> wipePictures()
{
    std::map<std::string, pictures::DecodedGrey> all;
    for (const auto& entry : fs::directory_iterator(std::string(test::kResourceDirectory) + "wipes")) {
        std::ifstream file(entry.path(), std::ios::binary);
        all[entry.path().stem()] = pictures::decodeGrey(file);
    }
    return all;
}

TEST(PackWipes, GiveEveryGreyTheSameArea)
{
    const auto all = wipePictures();
    EXPECT_EQ(all.size(), 24u);
    for (const auto& [name, picture] : all) {
        SCOPED_TRACE(name);
        ASSERT_EQ(picture.width, 1280u);
        ASSERT_EQ(picture.height, 720u);
        std::array<double, 256> area{};
        for (const u16 grey : picture.values)
            area[grey / 257] += 256.0 / double(picture.values.size());
        double before = 0;
        for (std::size_t grey = 0; grey < 256; ++grey) {
            EXPECT_NEAR(area[grey], 1, 0.3) << "grey " << grey;
            before += area[grey];
            EXPECT_NEAR(before, double(grey + 1), 0.35) << "up to grey " << grey;
        }
    }
}

TEST(PackWipes, AreFoundByTheirNamesAndKeepTheirSpeedAtOtherSizes)
{
    constexpr unsigned kWidth = 960;
    constexpr unsigned kHeight = 540;
    const host::Engine engine(test::kResourceDirectory, nullptr);
    const host::Image from(kWidth, kHeight), to(kWidth, kHeight);
    std::ranges::fill(from.bytes(), u8(0));
    std::ranges::fill(to.bytes(), u8(255));
    host::Filter filter(findEffect("picture-wipe")->guid, int(kWidth), int(kHeight));
    filter.setInput(from, 0);
    filter.setInput(to, 1);
    filter.set(kEffectTotalTime, 100.0f);
    filter.set("Softness", 0.02f);
    for (const auto& [name, picture] : wipePictures()) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(filter.set("WipePicture", std::wstring(name.begin(), name.end())));
        for (const int percent : {10, 25, 50, 75, 90}) {
            filter.set(kEffectCurrentTime, float(percent));
            const auto bytes = host::bytesOf(filter.run());
            const double sum = std::accumulate(bytes.begin(), bytes.end(), 0.0);
            // The fine grain of the dissolve fades when it is scaled, and loses some of its darkest and
            // brightest.
            EXPECT_NEAR(sum / (255.0 * double(bytes.size())), percent / 100.0, 0.04) << percent << " percent";
        }
    }
}

} // namespace
