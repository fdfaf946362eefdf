// Defaults, checks and dispatch.
#include "effects/am/library/amLibrary.h"

#include "effects/am/library/amDefaults.h"
#include "effects/am/library/amFilters.h"
#include "effects/am/library/amScratch.h"
#include "effects/am/library/amTables.h"

#include <new>

namespace KEXSDK {

namespace {

using am::EffectRow;
using am::Frame;

// Whether the rows that a descriptor speaks of can be read.
bool isReadable(const AmImageDesc* image)
{
    const auto isExtent = [](i32 value) { return value > 0 && value <= am::kMaxExtent; };
    return image && image->data && isExtent(image->width) && isExtent(image->height)
        && image->stride >= image->width * 4;
}

bool isPicture(const AmImageDesc* image)
{
    return isReadable(image) && image->size == sizeof(AmImageDesc) && image->dataSize > 0
        && image->bitsPerPixel == 32;
}

pixels::View viewOf(const AmImageDesc& image)
{
    return {image.data, {image.width, image.height}, image.stride};
}

// A packed copy of the picture in a buffer that was ensured for it.
pixels::ConstView copyInto(void* buffer, pixels::ConstView picture)
{
    const pixels::View copy(static_cast<u8*>(buffer), picture.extent());
    pixels::rows::copy(picture, copy);
    return copy;
}

i64 copySize(const Frame& frame)
{
    return std::max<i64>(frame.dataSize, i64(frame.dst.width()) * frame.dst.height() * 4);
}

i32 apply(Frame frame)
{
    const EffectRow* const row = am::findEffect(frame.block.id);
    if (!row)
        return kAmUnknown;
    if (row->second == am::Second::alike && frame.second.extent() != frame.dst.extent())
        return kAmBadImage;
    if (row->source == am::Source::kept && frame.inPlace()) {
        AmEffectParams& block = frame.block;
        const i64 bytes = copySize(frame);
        if (!am::ensureScratchB(block, bytes) || !am::ensureScratchA(block, bytes))
            return kAmNoMemory;
        copyInto(block.scratchA, frame.dst);
        frame.src = copyInto(block.scratchB, frame.dst);
    }
    if (row->prepare)
        row->prepare(frame.block);
    return row->run(frame);
}

i32 AmApplyFilter(const Frame& frame) { return apply(frame); }

// Every one of these works from the copy in scratch B.
i32 AmApplyLocal(Frame frame)
{
    if (frame.inPlace()) {
        if (!am::ensureScratchB(frame.block, copySize(frame)))
            return kAmNoMemory;
        frame.src = copyInto(frame.block.scratchB, frame.dst);
    }
    return apply(frame);
}

i32 AmApplyBlend(Frame frame, const AmImageDesc* second)
{
    constexpr i32 kMergeColor = 2049;
    if (frame.block.id != kMergeColor) {
        if (!isReadable(second))
            return kAmBadImage;
        frame.second = viewOf(*second);
    }
    return apply(frame);
}

i32 dispatch(const Frame& frame, const AmImageDesc* second)
{
    const i32 id = frame.block.id;
    if (am::kFilters.contains(id))
        return AmApplyFilter(frame);
    if (am::kLocals.contains(id))
        return AmApplyLocal(frame);
    if (am::kBlends.contains(id))
        return AmApplyBlend(frame, second);
    return kAmUnknown;
}

} // namespace

i32 AmCreateParams(AmEffectParams** out, i32 id)
{
    if (!am::kFilters.contains(id) && !am::kLocals.contains(id) && !am::kBlends.contains(id))
        return kAmOutOfRange;
    if (!out)
        return kAmUnknown;
    am::buildGlobalTables();
    void* const memory = am::allocate(sizeof(AmEffectParams));
    if (!memory)
        return kAmUnknown;
    *out = new (memory) AmEffectParams(am::defaultsOf(id));
    return kAmOk;
}

i32 AmReleaseParams(AmEffectParams* block)
{
    if (!block)
        return kAmUnknown;
    if (block->size != sizeof(AmEffectParams))
        return kAmBadParams;
    am::releaseScratch(*block);
    am::release(block);
    return kAmOk;
}

i32 AmApplyEffect(AmEffectParams* block, const AmImageDesc* image, const AmImageDesc* second)
{
    const pixels::ConstView source = isPicture(image) ? viewOf(*image) : pixels::View{};
    return AmApplyEffectFrom(source, block, image, second);
}

i32 AmApplyEffectFrom(
    pixels::ConstView source, AmEffectParams* block, const AmImageDesc* image, const AmImageDesc* second)
{
    if (!block || block->size != sizeof(AmEffectParams))
        return kAmBadParams;
    if (!isPicture(image))
        return kAmBadImage;
    if (image->width != block->width || image->height != block->height) {
        block->width = image->width;
        block->height = image->height;
        block->dirty |= kAmDirtySize;
    }
    const Frame frame{
        .src = source, .dst = viewOf(*image), .second = {}, .block = *block, .dataSize = image->dataSize};
    const i32 result = dispatch(frame, second);
    if (result != kAmOk)
        pixels::rows::copy(source, frame.dst);
    return result;
}

} // namespace KEXSDK
