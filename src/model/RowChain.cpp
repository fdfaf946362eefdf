// Computes the rows of chained nodes in strips.
#include "model/RowChain.h"

#include "pixels/rows.h"

#include <algorithm>

namespace KEXSDK {

namespace {

// Pictures of one size: whether they share memory otherwise than row for row.
bool overlapAskew(pixels::ConstView a, pixels::ConstView b)
{
    const std::ptrdiff_t size = a.strideBytes() * a.height();
    return a.bytes() != b.bytes() && a.bytes() < b.bytes() + size && b.bytes() < a.bytes() + size;
}

} // namespace

void RowChain::Step::process(pixels::ConstView src, pixels::View dst, int first) const
{
    if (node)
        node->processRows(src, dst, first);
    else
        pixels::rows::copy(src, dst);
}

void RowChain::goOnFrom(pixels::ConstView source)
{
    if (count_ == 0)
        return;
    const Step& last = steps_[count_ - 1];
    if (count_ == steps_.size() || last.target.bytes() != source.bytes()
        || last.target.extent() != source.extent())
        finish();
}

void RowChain::add(RowWise& node, pixels::ConstView source, pixels::View target)
{
    steps_[count_++] = {&node, source, target};
}

void RowChain::addCopy(pixels::ConstView source, pixels::View target)
{
    steps_[count_++] = {nullptr, source, target};
}

void RowChain::finish()
{
    struct End {
        RowChain& chain;
        ~End() { chain.end(); }
    } const inTheEnd{*this};
    if (mayGoByStrips()) {
        processStrips();
    } else {
        for (const Step& step : steps())
            step.process(step.source, step.target, 0);
    }
}

// Whether the rows of each picture that is written lie apart from all other rows. Pictures may be one and the
// same: within a row the nodes take their turns.
bool RowChain::mayGoByStrips() const
{
    const auto liesWell = [&](pixels::ConstView picture) {
        return std::ranges::none_of(
            steps(), [&](const Step& step) { return overlapAskew(picture, step.target); });
    };
    return count_ > 1 && std::ranges::all_of(steps(), [&](const Step& step) {
        const pixels::ConstView second = step.node ? step.node->secondPicture() : pixels::ConstView();
        return liesWell(step.source) && liesWell(step.target) && (!second.bytes() || liesWell(second));
    });
}

// All nodes on one strip before the next one: what a node reads, the one before it has just left in the
// cache.
void RowChain::processStrips() const
{
    pixels::rows::anyOrderRuns(steps_[0].target.extent(), [&](int first, int end) {
        for (const Step& step : steps())
            step.process(step.source.rows(first, end), step.target.rows(first, end), first);
    });
}

void RowChain::end()
{
    for (const Step& step : steps())
        if (step.node)
            step.node->endRows();
    count_ = 0;
}

} // namespace KEXSDK
