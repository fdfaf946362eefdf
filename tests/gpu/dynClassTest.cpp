// Creation of effects by class name.
#include "core/DynClass.h"

#include "gpu/FakeGraphicsSystem.h"

#include <gtest/gtest.h>

#include <optional>

namespace KEXSDK {

// Test classes stand where the effects do: a class is asked for by its name within the engine's namespace.
struct DynTestEffect : FakeEffect {
    DynTestEffect() : FakeEffect(shared) { }
    static inline Diary shared;
};

} // namespace KEXSDK

namespace {

using KEXSDK::DynTestEffect;

struct Nested : DynTestEffect { };

std::unique_ptr<KEXSDK::TovEffectBase> make(const char* name)
{
    return std::unique_ptr<KEXSDK::TovEffectBase>(DYN_CLASS::create(name));
}

TEST(DynClass, ComparesTheWholeNameExactly)
{
    EXPECT_EQ(make("DynTestEffect"), nullptr) << "no factory yet";
    const DYN_CLASS::CFactory<DynTestEffect> factory;
    EXPECT_NE(make("DynTestEffect"), nullptr);
    for (const char* const other : {"", "dynTestEffect", "DynTestEffect ", "DynTestEffec", "FakeEffect",
             "13DynTestEffect", "class DynTestEffect", "KEXSDK::DynTestEffect", "CCubeLut"})
        EXPECT_EQ(make(other), nullptr) << other;
    EXPECT_EQ(make(nullptr), nullptr);
}

TEST(DynClass, FactoriesJoinAtTheHeadAndLeaveInAnyOrder)
{
    const unsigned before = DYN_CLASS::CFactoryManager::count();
    EXPECT_EQ(before, 2u) << "the plain GPU effect and the one with particles";
    std::optional<DYN_CLASS::CFactory<DynTestEffect>> first(std::in_place), second(std::in_place);
    std::optional<DYN_CLASS::CFactory<Nested>> third(std::in_place);
    EXPECT_EQ(DYN_CLASS::CFactoryManager::count(), before + 3);
    second.reset(); // from the middle
    EXPECT_NE(make("DynTestEffect"), nullptr);
    EXPECT_NE(make("(anonymous namespace)::Nested"), nullptr);
    third.reset(); // the head
    EXPECT_EQ(make("(anonymous namespace)::Nested"), nullptr);
    EXPECT_NE(make("DynTestEffect"), nullptr);
    first.reset();
    EXPECT_EQ(make("DynTestEffect"), nullptr);
    EXPECT_EQ(DYN_CLASS::CFactoryManager::count(), before);
}

} // namespace
