// Every effect of the library at odd sizes, with every field of the block at its ends and beyond.
#include "am/AmFixture.h"
#include "effects/am/library/amDefaults.h"
#include "effects/am/library/amRow.h"
#include "effects/am/looks/brokenTelevision.h"
#include "pixels/widest.h"

#include <tbb/global_control.h>

#include <limits>

namespace {

using namespace KEXSDK;
using test::Am;
using test::AmBlock;
using test::AmPicture;

// One effect for each piece of code: of neighbours that share all their code, the first.
std::vector<Am> differentEffects()
{
    std::vector<Am> ids;
    const am::EffectRow* last = nullptr;
    for (i32 id = am::kFilters.first; id <= am::kBlends.last; ++id) {
        const am::EffectRow* const row = am::findEffect(id);
        if (row && !(last && last->apply == row->apply && last->prepare == row->prepare))
            ids.push_back(id);
        last = row;
    }
    return ids;
}

constexpr pixels::Extent kSizes[] = {{1, 1}, {1, 9}, {9, 1}, {2, 3}, {7, 5}, {33, 17}, {64, 48}};

// Runs a block twice on a picture with padding, in place and from another picture. Both give the same bytes
// and write nothing beside the picture.
template <class Set> std::vector<pixels::Bgra> run(Am id, pixels::Extent size, Set set)
{
    AmPicture source(size.width, size.height, 20);
    source.fillWithNoise(u32(id));
    AmPicture second(size.width, size.height, 12);
    second.fillWithNoise(5);
    const AmImageDesc texture = second.desc();
    const auto before = source.pixels();
    std::vector<pixels::Bgra> results[2];
    for (const bool inPlace : {true, false}) {
        AmBlock block(id);
        block->frameRate = 25;
        pixels::threadRandom().seed(9);
        am::restartTelevision();
        for (int i = 0; i < 2; ++i) {
            set(*block.get());
            AmPicture picture = source;
            if (!inPlace)
                picture.fillWithNoise(77);
            const AmImageDesc desc = picture.desc();
            EXPECT_EQ(inPlace ? AmApplyEffect(block.get(), &desc, &texture)
                              : AmApplyEffectFrom(source.view(), block.get(), &desc, &texture),
                kAmOk);
            EXPECT_TRUE(picture.surroundingsIntact());
            results[inPlace] = picture.pixels();
        }
    }
    EXPECT_TRUE(results[0] == results[1]) << "in place and from elsewhere differ";
    EXPECT_TRUE(source.pixels() == before);
    return results[0];
}

TEST(AmSweep, EveryEffectBearsEveryFieldAtEverySize)
{
    constexpr i32 kValues[] = {0, 1, 99, 100, 101, -1, 255, 1 << 20, std::numeric_limits<i32>::min(),
        std::numeric_limits<i32>::max()};
    constexpr float kReals[] = {0, 50, 100, -1, 1e30f, -1e30f, std::numeric_limits<float>::infinity(),
        std::numeric_limits<float>::quiet_NaN()};
    for (const Am id : differentEffects()) {
        for (const auto size : kSizes) {
            SCOPED_TRACE(testing::Message() << id << " at " << size.width << " x " << size.height);
            for (const i32 value : kValues) {
                run(id, size, [=](AmEffectParams& b) { b.percent = value; });
                run(id, size, [=](AmEffectParams& b) { b.radius = value; });
                run(id, size, [=](AmEffectParams& b) { b.posX = b.posY = value; });
                run(id, size, [=](AmEffectParams& b) {
                    b.direction = b.variant = b.toggle = value;
                    b.red = b.green = b.blue = b.alpha = u8(value);
                });
                run(id, size,
                    [=](AmEffectParams& b) { b.left = b.top = value, b.right = b.bottom = ~value; });
            }
            for (const float value : kReals)
                run(id, size, [=](AmEffectParams& b) { b.pickX = b.pickY = value, b.radius = 100; });
        }
    }
}

TEST(AmSweep, ThreadsAndVectorsNeverShowInTheBytes)
{
    for (const Am id : differentEffects()) {
        const auto with = [&](std::size_t threads, pixels::VectorLevel vectors) {
            const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
            pixels::limitVectors(vectors);
            auto result = run(id, {333, 301}, [](AmEffectParams&) {});
            pixels::limitVectors(pixels::VectorLevel::avx512);
            return result;
        };
        const auto plain = with(1, pixels::VectorLevel::base);
        EXPECT_TRUE(with(2, pixels::VectorLevel::base) == plain) << id;
        EXPECT_TRUE(with(1, pixels::VectorLevel::avx2) == plain) << id;
        EXPECT_TRUE(with(3, pixels::VectorLevel::avx512) == plain) << id;
    }
}

} // namespace
