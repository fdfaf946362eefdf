// The filter node behind every id of the numeric effect library.
#pragma once

#include "effects/am/library/amRow.h"
#include "model/CSimpleEffect.h"
#include "model/RowWise.h"

#include <array>
#include <memory>

namespace KEXSDK {

/// Owns one parameter block, fills it from the node's named parameters and applies it to input 0. A
/// failed effect leaves a copy of input 0 in the output.
class CSimpleAmEffect : public CSimpleEffect, public RowWise {
public:
    /// @param id           of the catalog
    /// @param texturePath  picture that the effect combines with input 0, or null. It becomes input 1; when
    ///                     it cannot be loaded the effect sees transparent black
    CSimpleAmEffect(i32 id, u32 width, u32 height, const char* texturePath);
    ~CSimpleAmEffect() override;

    /// One for every id: the effect loads its texture itself, hosts need not set it.
    u32 getInputCount() override { return 1; }
    void run() override;
    bool beginRows() override;
    void processRows(pixels::ConstView src, pixels::View dst, int first) const override;
    pixels::ConstView secondPicture() const override { return second_; }

    /// Remembers where the values of the block's parameters lie: every run reads them.
    bool setParamVariant(const char* name, std::unique_ptr<ParamVariant>& value) override;

    /// Called by the constructor: loads the texture, makes the block, declares the parameters.
    virtual void setup(i32 id, const char* texturePath);
    /// Called by every run: copies the parameters into the block and marks what must be rebuilt.
    virtual void updateParams();

protected:
    AmEffectParams* params = nullptr;

private:
    static constexpr std::size_t kParameterCount = 14;

    pixels::Extent extent() const { return {int(width()), int(height())}; }
    void declareParams();
    AmImageDesc describe(const CEffectImage& image) const;
    const CEffectImage* texture();

    /// The texture, or transparent black in its place; empty for ids without a texture.
    std::unique_ptr<CEffectImage> texture_;
    pixels::ConstView second_;              ///< what the frame's rows are combined with, from beginRows() on
    const am::EffectRow* effect_ = nullptr; ///< null for ids without an effect
    std::array<const ParamVariant*, kParameterCount> stored_{};
};

} // namespace KEXSDK
