// Forked processes around a board in shared memory, from which each takes the next piece when it is free.
#include "effectengine/Workers.h"

#include "effectengine/interruption.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <new>
#include <system_error>
#include <vector>

namespace tool {

// The state that all processes share, in memory that stays shared across fork.
class Workers::Board {
public:
    static constexpr int kWaiting = -1;
    static constexpr int kRunning = -2;

    explicit Board(std::size_t count) : count_(count)
    {
        void* const memory =
            mmap(nullptr, bytes(), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED)
            throw std::bad_alloc();
        head_ = new (memory) Head;
        states_ = reinterpret_cast<std::atomic<int>*>(head_ + 1);
        for (std::size_t i = 0; i < count_; ++i)
            new (&states_[i]) std::atomic<int>(kWaiting);
    }
    ~Board() { munmap(head_, bytes()); }
    Board(const Board&) = delete;
    Board& operator=(const Board&) = delete;

    /// The number of a piece to do; beyond the last piece when nothing is left.
    std::size_t take()
    {
        const std::size_t piece = head_->stopped ? count_ : std::min(head_->next++, count_);
        if (piece < count_)
            states_[piece] = kRunning;
        return piece;
    }
    void note(std::size_t piece, ExitCode code) { states_[piece] = int(code); }
    void stop() { head_->stopped = true; }
    int state(std::size_t piece) const { return states_[piece]; }

    /// True for the first caller alone, so that a failure that every process meets is reported once.
    bool firstToFail() { return !head_->failed.exchange(true); }

private:
    struct Head {
        std::atomic<std::size_t> next{0};
        std::atomic<bool> stopped{false};
        std::atomic<bool> failed{false};
    };
    static_assert(std::atomic<std::size_t>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

    std::size_t bytes() const { return sizeof(Head) + count_ * sizeof(std::atomic<int>); }

    std::size_t count_;
    Head* head_;
    std::atomic<int>* states_;
};

void Workers::work(Board& board, const MakePiece& makePiece, const std::function<void()>& afterEach) const
{
    const Piece piece = makePiece();
    for (std::size_t i = board.take(); i < count_; i = board.take()) {
        stopIfAsked();
        const ExitCode code = reportingFailure([&] { piece(i); }, nameOf_(i));
        board.note(i, code);
        if (code == ExitCode::diskFull)
            board.stop();
        afterEach();
    }
}

void Workers::beChild(Board& board, const MakePiece& makePiece, int reports) const
{
    ExitCode code = ExitCode::success;
    try {
        work(board, makePiece, [&] { (void)!write(reports, "", 1); });
    } catch (const ToolError& error) {
        code = error.code();
        if (board.firstToFail())
            complain(error.what());
    } catch (const std::exception& error) {
        code = ExitCode::internal;
        if (board.firstToFail())
            complain(error.what());
    } catch (...) { // asked to stop
    }
    _exit(int(code));
}

ExitCode Workers::workInChildren(
    int processes, Board& board, const MakePiece& makePiece, Progress& progress) const
{
    int reports[2];
    if (pipe2(reports, O_CLOEXEC) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe");
    std::vector<pid_t> children;
    const pid_t parent = getpid();
    for (int i = 0; i < processes; ++i) {
        const pid_t child = fork();
        if (child == 0) {
            prctl(PR_SET_PDEATHSIG, SIGTERM);
            if (getppid() != parent)
                _exit(int(ExitCode::internal));
            close(reports[0]);
            beChild(board, makePiece, reports[1]);
        }
        if (child > 0)
            children.push_back(child);
    }
    close(reports[1]);
    long long done = 0;
    char byte = 0;
    for (ssize_t got = 1; got != 0;) {
        got = read(reports[0], &byte, 1);
        if (got > 0)
            progress.report(++done);
        if (stopAsked())
            std::ranges::for_each(children, [](pid_t child) { kill(child, SIGTERM); });
    }
    close(reports[0]);
    ExitCode result = children.empty() ? ExitCode::internal : ExitCode::success;
    for (const pid_t child : children) {
        int status = 0;
        while (waitpid(child, &status, 0) < 0 && errno == EINTR) { }
        if (WIFEXITED(status) && WEXITSTATUS(status) != 0)
            result = ExitCode(WEXITSTATUS(status));
    }
    stopIfAsked();
    return result;
}

ExitCode Workers::run(int processes, const MakePiece& makePiece, Progress& progress) const
{
    Board board(count_);
    ExitCode result = ExitCode::success;
    if (processes > 1) {
        result = workInChildren(processes, board, makePiece, progress);
    } else {
        long long done = 0;
        work(board, makePiece, [&] { progress.report(++done); });
    }
    progress.finish();
    for (std::size_t i = count_; i-- > 0;) {
        const int state = board.state(i);
        if (state > 0)
            result = ExitCode(state);
        if (state == Board::kRunning) {
            complain(nameOf_(i) + ": the process that worked on it ended unexpectedly");
            result = ExitCode::internal;
        }
    }
    return result;
}

} // namespace tool
