// What effects add whose rows follow from the same rows of their inputs.
#pragma once

#include "pixels/View.h"

namespace KEXSDK {

/// Such an effect can compute any run of rows on its own: a row of its output depends on the same row of its
/// inputs, on the parameters and on the row's place, and on nothing else. Evaluation then takes a chain of
/// such nodes strip by strip, so that a strip stays in the cache from the first node to the last. A node
/// implements this beside CSimpleEffect::run(), and its EffectInfo says so (byRows).
class RowWise {
public:
    /// Begins a frame in place of run(), on the evaluating thread, while the inputs' pixels may not be there
    /// yet: reads the parameters and prepares what processRows() needs.
    /// @return false when this frame cannot be done by rows, and always without an input 0 of the node's
    /// size;
    ///         run() is called then
    virtual bool beginRows() = 0;

    /// Writes every pixel of rows [first, first + dst.height()) of the output. Called on several threads at
    /// once. Runs of rows that one task handles (rows::rowsPerTask) must stay on the calling thread, as the
    /// loops of pixels/rows.h do.
    /// @param src  those rows of input 0: the very rows of dst, or rows that nothing overwrites
    virtual void processRows(pixels::ConstView src, pixels::View dst, int first) const = 0;

    /// The picture of the node's size besides input 0 that processRows() reads; without bytes for none.
    virtual pixels::ConstView secondPicture() const { return {}; }

    /// Called on the evaluating thread after the frame's last row, once for every beginRows() that answered
    /// true.
    virtual void endRows() { }

protected:
    ~RowWise() = default;
};

} // namespace KEXSDK
