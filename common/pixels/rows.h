// The row loops of every effect, named by what they promise about order.
#pragma once

#include "pixels/SanitizerHandover.h"
#include "pixels/View.h"
#include "pixels/widest.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <type_traits>

namespace pixels::rows {

/// Pixels that one task handles: large enough to hide the cost of a task, small enough to balance cores.
inline constexpr int kPixelsPerTask = 32 * 1024;

inline int rowsPerTask(Extent size) { return std::max(1, kPixelsPerTask / std::max(1, size.width)); }

namespace detail {

// A loop's work, on the stack of the thread that asked for it; the tasks hold its address.
template <class Fn> struct RowWork {
    Fn& fn;
    SanitizerHandover started{};
    SanitizerHandover finished{};

    void run(int first, int last)
    {
        started.take();
        fn(first, last);
        finished.give();
    }
};

template <class Work> struct RowTask {
    Work* work;
    // Not checked for races: the task library hands this object itself over in ways the sanitizer cannot see.
    [[gnu::no_sanitize("thread")]] void operator()(const tbb::blocked_range<int>& rows) const
    {
        work->run(rows.begin(), rows.end());
    }
};

} // namespace detail

/// fn(first, last) over half-open runs of rows that together cover the height, on any thread, in any
/// order. Small pictures are one run on the calling thread. The result must not depend on where the runs are
/// cut.
template <class Fn> void anyOrderRuns(Extent size, Fn&& fn)
{
    const int grain = rowsPerTask(size);
    if (size.height <= grain) {
        if (size.height > 0)
            fn(0, size.height);
        return;
    }
    detail::RowWork<std::remove_reference_t<Fn>> work{fn};
    work.started.give();
    tbb::parallel_for(tbb::blocked_range<int>(0, size.height, grain), detail::RowTask<decltype(work)>{&work},
        tbb::simple_partitioner());
    work.finished.take();
}

/// fn(y) for every row, on any thread, in any order.
template <class Fn> void anyOrder(Extent size, Fn&& fn)
{
    anyOrderRuns(size, [&](int first, int last) {
        for (int y = first; y < last; ++y)
            fn(y);
    });
}

/// fn(y) for every row on the calling thread, in memory order: for kernels that read what they wrote or
/// draw random numbers.
template <class Fn> void inOrder(Extent size, Fn&& fn)
{
    for (int y = 0; y < size.height; ++y)
        fn(y);
}

/// Folds runs of rows into one value: accumulate(first, last, value) adds rows [first, last) to a value,
/// join(sum, part) adds part to sum. Both must be exact (integers), so that the result depends neither on the
/// runs nor on their order.
template <class Value, class Accumulate, class Join>
Value fold(Extent size, const Value& zero, Accumulate accumulate, Join join)
{
    Value sum = zero;
    std::mutex joining;
    anyOrderRuns(size, [&](int first, int last) {
        Value part = zero;
        accumulate(first, last, part);
        const std::lock_guard lock(joining);
        join(sum, part);
    });
    return sum;
}

namespace detail {

// GCC vectorises these loops over words whatever the kernel is. `ivdep` holds for equal rows, too: a pixel
// is written after it was read and never read again.
template <class Kernel> void mapRow(const Bgra* from, Bgra* to, int count, Kernel kernel)
{
#pragma GCC ivdep
    for (int x = 0; x < count; ++x)
        store(to + x, kernel(load(from + x)));
}

template <class Kernel> void mapRow2(const Bgra* a, const Bgra* b, Bgra* to, int count, Kernel kernel)
{
#pragma GCC ivdep
    for (int x = 0; x < count; ++x)
        store(to + x, kernel(load(a + x), load(b + x)));
}

} // namespace detail

/// Columns [first, last): dst(x, y) = kernel(src(x, y)), every pixel on its own; src and dst may be the same
/// rows. The kernel is copied into each loop, so keep what it needs in it by value.
template <class Kernel> void map(ConstView src, View dst, int first, int last, Kernel kernel)
{
    anyOrderRuns(dst.extent(), [&](int top, int end) {
        widest([=] {
            for (int y = top; y < end; ++y)
                detail::mapRow(src.row(y).data() + first, dst.row(y).data() + first, last - first, kernel);
        });
    });
}

/// dst(x, y) = kernel(src(x, y)) for all columns.
template <class Kernel> void map(ConstView src, View dst, Kernel kernel)
{
    map(src, dst, 0, dst.width(), kernel);
}

/// dst(x, y) = kernel(first(x, y), second(x, y)); dst may be either of the others.
template <class Kernel> void map2(ConstView first, ConstView second, View dst, Kernel kernel)
{
    anyOrderRuns(dst.extent(), [&](int top, int end) {
        widest([=] {
            for (int y = top; y < end; ++y)
                detail::mapRow2(
                    first.row(y).data(), second.row(y).data(), dst.row(y).data(), dst.width(), kernel);
        });
    });
}

/// Copies columns [first, last) of src to dst; the views may be the same rows.
inline void copyColumns(ConstView src, View dst, int first, int last)
{
    if (src.bytes() == dst.bytes() || last <= first)
        return;
    anyOrder(dst.extent(), [&](int y) {
        std::memcpy(dst.row(y).data() + first, src.row(y).data() + first, std::size_t(last - first) * 4);
    });
}

/// Copies src to dst; the views may be the same rows.
inline void copy(ConstView src, View dst)
{
    if (!src.packed() || !dst.packed())
        return copyColumns(src, dst, 0, dst.width());
    if (src.bytes() == dst.bytes())
        return;
    anyOrderRuns(dst.extent(), [&](int first, int last) {
        std::memcpy(
            dst.row(first).data(), src.row(first).data(), std::size_t(last - first) * dst.strideBytes());
    });
}

} // namespace pixels::rows
