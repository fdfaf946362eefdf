// Computes the rows of chained nodes in strips.
#include "model/RowChain.h"

#include "pixels/rows.h"
#include "pixels/streamedCopy.h"

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

// Whether the last picture can hold what one node leaves to the next: nobody reads anything else there, and
// every picture's rows lie apart from other rows of the others.
bool RowChain::mayGoByStrips() const
{
    if (count_ < 2)
        return false;
    const pixels::ConstView desk = steps_[count_ - 1].target;
    const auto liesWell = [&](pixels::ConstView picture) {
        return !overlapAskew(picture, steps_[0].source)
            && std::ranges::none_of(
                steps(), [&](const Step& other) { return overlapAskew(picture, other.target); });
    };
    return std::ranges::all_of(steps(), [&](const Step& step) {
        const pixels::ConstView second = step.node ? step.node->secondPicture() : pixels::ConstView();
        return liesWell(step.target)
            && (!second.bytes() || (second.bytes() != desk.bytes() && liesWell(second)));
    });
}

// Each strip goes through all nodes in the last picture, where it stays in the cache; the pictures in between
// get copies.
void RowChain::processStrips() const
{
    const pixels::View desk = steps_[count_ - 1].target;
    pixels::rows::anyOrderRuns(desk.extent(), [&](int first, int end) {
        const pixels::View strip = desk.rows(first, end);
        pixels::ConstView from = steps_[0].source.rows(first, end);
        for (const Step& step : steps()) {
            step.process(from, strip, first);
            if (step.target.bytes() != desk.bytes())
                pixels::copyStreamed(strip, step.target.rows(first, end));
            from = strip;
        }
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
