// Two pictures, a transition between them, and an output with guard bytes.
#pragma once

#include "engine/effectList.h"
#include "support/EngineFixture.h"
#include "support/GuardedFrame.h"

#include <optional>
#include <string>

namespace test {

/// Values that tell the pictures apart wherever whole pixels or colours are taken from one of them.
inline constexpr pixels::Bgra kFrom{10, 20, 30, 40};
inline constexpr pixels::Bgra kTo{210, 220, 230, 240};

/// A pixel whose value tells its picture and its place there.
inline pixels::Bgra place(int picture, int x, int v)
{
    return {u8(x), u8(v), u8(picture), u8(100 + picture)};
}

class TransitionFixture : public EngineWithoutGpu {
protected:
    /// A new node by its command name between `from` and `to` of one value each.
    void open(const std::string& name, int width, int height)
    {
        from_.emplace(width, height);
        to_.emplace(width, height);
        out_.emplace(width, height);
        from_->fill(kFrom);
        to_->fill(kTo);
        filter_.emplace(findEffect(name)->guid, width, height);
        SetInputImage(filter_->handle(), from_->image(), 0);
        SetInputImage(filter_->handle(), to_->image(), 1);
    }
    /// Opens a transition between frames whose pixels tell their places: from is picture 1, to picture 2.
    void openPlaces(const std::string& name, int width, int height)
    {
        open(name, width, height);
        for (int v = 0; v < height; ++v) {
            for (int x = 0; x < width; ++x) {
                from().pictureRow(v)[std::size_t(x)] = place(1, x, v);
                to().pictureRow(v)[std::size_t(x)] = place(2, x, v);
            }
        }
    }

    pixels::View from() { return from_->view(); }
    pixels::View to() { return to_->view(); }
    GuardedFrame& fromFrame() { return *from_; }
    GuardedFrame& toFrame() { return *to_; }
    GuardedFrame& outFrame() { return *out_; }
    host::Filter& filter() { return *filter_; }

    /// The frame at a time of a total; rows of the result count from the bottom.
    pixels::ConstView show(float time, float total = 1)
    {
        filter_->set(kEffectCurrentTime, time);
        filter_->set(kEffectTotalTime, total);
        EXPECT_EQ(DoFilterEx(filter_->handle(), out_->image()), 0u);
        EXPECT_TRUE(out_->guardsIntact());
        return out_->view();
    }

    /// One row of the last frame, counted from the top, a letter for each pixel: '.' from, '#' to, 'c'
    /// colours of to over alpha of from, '?' anything else.
    std::string row(int v)
    {
        std::string text;
        for (const pixels::Bgra p : out_->view().pictureRow(v))
            text += p == kFrom ? '.' : p == kTo ? '#' : p == pixels::Bgra{210, 220, 230, 40} ? 'c' : '?';
        return text;
    }
    /// All rows of a new frame, from the top.
    std::vector<std::string> picture(float time, float total = 1)
    {
        show(time, total);
        std::vector<std::string> rows;
        for (int v = 0; v < out_->view().height(); ++v)
            rows.push_back(row(v));
        return rows;
    }
    /// One column of the last frame, from the top.
    std::string column(int x)
    {
        std::string text;
        for (int v = 0; v < out_->view().height(); ++v)
            text += row(v)[std::size_t(x)];
        return text;
    }

private:
    std::optional<GuardedFrame> from_, to_, out_;
    std::optional<host::Filter> filter_;
};

} // namespace test
