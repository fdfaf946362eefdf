// Independent pieces of work, shared out among several processes.
#pragma once

#include "effectengine/Progress.h"
#include "effectengine/ToolError.h"

#include <functional>
#include <string>

namespace tool {

/// Numbered pieces of work, each on its own. A failed piece is reported on stderr in one line and the
/// others go on, unless the disk is full.
class Workers {
public:
    /// Does the piece of this number.
    using Piece = std::function<void(std::size_t)>;
    /// Called once in every process before its first piece, and destroyed after its last one.
    using MakePiece = std::function<Piece()>;
    /// What messages call a piece.
    using Name = std::function<std::string(std::size_t)>;

    Workers(std::size_t count, Name nameOf) : count_(count), nameOf_(std::move(nameOf)) { }

    /// Does all pieces. It forks, so the process may have one thread only; with one process the pieces run in
    /// this one. A signal ends the work after the pieces in hand (interruption.h).
    /// @return success, or the exit code of the failed piece with the lowest number
    ExitCode run(int processes, const MakePiece& makePiece, Progress& progress) const;

private:
    class Board;

    void work(Board& board, const MakePiece& makePiece, const std::function<void()>& afterEach) const;
    ExitCode workInChildren(
        int processes, Board& board, const MakePiece& makePiece, Progress& progress) const;
    [[noreturn]] void beChild(Board& board, const MakePiece& makePiece, int reports) const;

    std::size_t count_;
    Name nameOf_;
};

} // namespace tool
