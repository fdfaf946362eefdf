// Independent pieces of work, shared out among several processes.
#pragma once

#include "effectengine/Progress.h"
#include "effectengine/ToolError.h"

#include <functional>
#include <string>
#include <vector>

namespace tool {

/// Numbered pieces of work, each on its own. A failed piece is reported on stderr in one line and the
/// others go on, unless the disk is full.
class Workers {
public:
    enum class Piece { done, skipped };
    /// Does the piece of this number. Throws when it fails.
    using Work = std::function<Piece(std::size_t)>;
    /// Called once in every process before its first piece, and destroyed after its last one.
    using MakeWork = std::function<Work()>;
    /// What messages call a piece.
    using Name = std::function<std::string(std::size_t)>;
    /// Hears how a piece ended, in the process that called run().
    using Listener = std::function<void(std::size_t, Piece, const Outcome&)>;

    struct Failure {
        std::size_t piece;
        Outcome outcome;
    };
    struct Result {
        std::size_t done = 0;
        std::size_t skipped = 0;
        std::vector<Failure> failures;      ///< in the order of the pieces
        ExitCode fault = ExitCode::success; ///< why processes ended before they had done anything

        /// The code of the failed piece with the lowest number, else the fault.
        ExitCode code() const { return failures.empty() ? fault : failures.front().outcome.code; }
    };

    Workers(std::size_t count, Name nameOf, Listener listener = {})
        : count_(count),
          nameOf_(std::move(nameOf)),
          listener_(std::move(listener))
    {
    }

    /// Does all pieces. It forks, so the process may have one thread only; with one process the pieces run in
    /// this one. A signal ends the work after the pieces in hand (interruption.h), and the result is what was
    /// done until then.
    Result run(int processes, const MakeWork& makeWork, Progress& progress) const;

    /// The same with processes of their own for any number, so that nothing that a piece does harms this one.
    Result runApart(int processes, const MakeWork& makeWork, Progress& progress) const;

private:
    class Board;
    class Collection;

    void work(Board& board, const MakeWork& makeWork, const Listener& ended) const;
    bool workInChildren(int processes, Board& board, const MakeWork& makeWork, Collection& collection) const;
    [[noreturn]] void beChild(Board& board, const MakeWork& makeWork, int reports) const;

    std::size_t count_;
    Name nameOf_;
    Listener listener_;
};

} // namespace tool
