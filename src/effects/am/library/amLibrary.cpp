// The library's calls: checks of what callers hand over, copies that an effect needs, and its run.
#include "effects/am/library/amLibrary.h"

#include "effects/am/library/amDefaults.h"
#include "effects/am/library/amFrame.h"
#include "effects/am/library/amScratch.h"
#include "effects/am/library/amTables.h"

#include <new>

namespace KEXSDK {

namespace {

using am::EffectRow;
using am::Frame;
using am::Second;

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

// Whether the second picture is what the effect of this id needs; puts it into the frame.
bool takeSecond(Frame& frame, const EffectRow* row, const AmImageDesc* second)
{
    if (!am::kBlends.contains(frame.block.id) || (row && row->second == Second::none))
        return true;
    if (!isReadable(second))
        return false;
    frame.second = viewOf(*second);
    return !(row && row->second == Second::alike) || frame.second.extent() == frame.dst.extent();
}

void takeSize(AmEffectParams& block, const AmImageDesc& image)
{
    if (image.width == block.width && image.height == block.height)
        return;
    block.width = image.width;
    block.height = image.height;
    block.dirty |= kAmDirtySize;
}

// Runs the effect of the block's id. In place, ids of kLocals get a copy of the picture in scratch B first,
// even when no effect has the id.
i32 apply(Frame frame, const AmImageDesc* second)
{
    AmEffectParams& block = frame.block;
    const EffectRow* const row = am::findEffect(block.id);
    if (!takeSecond(frame, row, second))
        return kAmBadImage;
    const bool copiesTwice = row && row->needsCopy;
    if (frame.inPlace() && (copiesTwice || am::kLocals.contains(block.id))) {
        const i64 bytes = copySize(frame);
        if (!am::ensureScratchB(block, bytes) || (copiesTwice && !am::ensureScratchA(block, bytes)))
            return kAmNoMemory;
        if (copiesTwice)
            copyInto(block.scratchA, frame.dst);
        frame.src = copyInto(block.scratchB, frame.dst);
    }
    if (!row)
        return kAmUnknown;
    if (row->prepare)
        row->prepare(block);
    return row->apply.draw(frame);
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
    takeSize(*block, *image);
    const Frame frame{
        .src = source, .dst = viewOf(*image), .second = {}, .block = *block, .dataSize = image->dataSize};
    const i32 result = apply(frame, second);
    if (result != kAmOk)
        pixels::rows::copy(source, frame.dst);
    return result;
}

bool AmBeginRows(AmEffectParams& block, const AmImageDesc& image, const AmImageDesc* second)
{
    const EffectRow* const row = am::findEffect(block.id);
    Frame frame{.src = {}, .dst = viewOf(image), .second = {}, .block = block, .dataSize = image.dataSize};
    if (!row || !row->apply.byRows || !isPicture(&image) || !takeSecond(frame, row, second))
        return false;
    takeSize(block, image);
    if (row->prepare)
        row->prepare(block);
    return true;
}

void AmApplyToRows(
    pixels::ConstView source, AmEffectParams& block, pixels::View image, pixels::ConstView second)
{
    am::findEffect(block.id)->apply.draw({.src = source,
        .dst = image,
        .second = second,
        .block = block,
        .dataSize = i32(image.strideBytes() * image.height())});
}

} // namespace KEXSDK
