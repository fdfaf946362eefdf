// Forked processes around a board in shared memory, from which each takes the next piece when it is free.
#include "effectengine/Workers.h"

#include "effectengine/interruption.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <new>
#include <system_error>

namespace tool {

namespace {

// What a process tells of a piece, through a pipe: this and the words behind it, in one write that no other
// process's comes into.
struct Report {
    std::size_t piece;
    Workers::Piece end;
    ExitCode code;
    std::size_t words;
};
constexpr std::size_t kMostWords = PIPE_BUF - sizeof(Report);

void send(int pipe, std::size_t piece, Workers::Piece end, const Outcome& outcome)
{
    std::array<char, PIPE_BUF> bytes;
    const Report report{piece, end, outcome.code, std::min(outcome.words.size(), kMostWords)};
    std::memcpy(bytes.data(), &report, sizeof report);
    std::memcpy(bytes.data() + sizeof report, outcome.words.data(), report.words);
    (void)!write(pipe, bytes.data(), sizeof report + report.words);
}

} // namespace

// The state that all processes share, in memory that stays shared across fork.
class Workers::Board {
public:
    explicit Board(std::size_t count) : count_(count)
    {
        void* const memory =
            mmap(nullptr, bytes(), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED)
            throw std::bad_alloc();
        head_ = new (memory) Head;
        begun_ = reinterpret_cast<std::atomic<bool>*>(head_ + 1);
        for (std::size_t i = 0; i < count_; ++i)
            new (&begun_[i]) std::atomic<bool>(false);
    }
    ~Board() { munmap(head_, bytes()); }
    Board(const Board&) = delete;
    Board& operator=(const Board&) = delete;

    /// The number of a piece to do; beyond the last piece when nothing is left.
    std::size_t take()
    {
        const std::size_t piece = head_->stopped ? count_ : std::min(head_->next++, count_);
        if (piece < count_)
            begun_[piece] = true;
        return piece;
    }
    void stop() { head_->stopped = true; }
    /// How many pieces nobody has taken; none once the work is stopped.
    std::size_t left() const
    {
        return head_->stopped ? 0 : count_ - std::min<std::size_t>(head_->next, count_);
    }
    bool begun(std::size_t piece) const { return begun_[piece]; }

    /// True for the first caller alone, so that a failure that every process meets is reported once.
    bool firstToFail() { return !head_->failed.exchange(true); }

private:
    struct Head {
        std::atomic<std::size_t> next{0};
        std::atomic<bool> stopped{false};
        std::atomic<bool> failed{false};
    };
    static_assert(std::atomic<std::size_t>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

    std::size_t bytes() const { return sizeof(Head) + count_ * sizeof(std::atomic<bool>); }

    std::size_t count_;
    Head* head_;
    std::atomic<bool>* begun_;
};

// What has become of the pieces.
class Workers::Collection {
public:
    Collection(const Listener& listener, std::size_t count, Progress& progress)
        : listener_(listener),
          progress_(progress),
          told_(count)
    {
    }

    void add(std::size_t piece, Piece end, const Outcome& outcome)
    {
        told_[piece] = true;
        if (outcome.code != ExitCode::success)
            result_.failures.push_back({piece, outcome});
        else
            ++(end == Piece::skipped ? result_.skipped : result_.done);
        progress_.report((long long)(result_.done + result_.skipped + result_.failures.size()));
        if (listener_)
            listener_(piece, end, outcome);
    }
    bool told(std::size_t piece) const { return told_[piece]; }
    void setFault(ExitCode code) { result_.fault = code; }

    Result result()
    {
        std::ranges::sort(result_.failures, {}, &Failure::piece);
        return std::move(result_);
    }

private:
    const Listener& listener_;
    Progress& progress_;
    std::vector<bool> told_;
    Result result_;
};

void Workers::work(Board& board, const MakeWork& makeWork, const Listener& ended) const
{
    const Work work = makeWork();
    for (std::size_t i = board.take(); i < count_; i = board.take()) {
        stopIfAsked();
        Piece end = Piece::done;
        const Outcome outcome = outcomeOf([&] { end = work(i); }, nameOf_(i));
        if (!outcome.words.empty())
            complain(outcome.words);
        if (outcome.code == ExitCode::diskFull)
            board.stop();
        ended(i, end, outcome);
    }
}

void Workers::beChild(Board& board, const MakeWork& makeWork, int reports) const
{
    ExitCode code = ExitCode::success;
    try {
        const Outcome outcome = outcomeOf([&] {
            work(board, makeWork,
                [&](std::size_t piece, Piece end, const Outcome& how) { send(reports, piece, end, how); });
        });
        code = outcome.code;
        if (!outcome.words.empty() && board.firstToFail())
            complain(outcome.words);
    } catch (...) { // asked to stop
    }
    _exit(int(code));
}

// @return whether a process ended in a way that leaves the others pieces to do
bool Workers::workInChildren(
    int processes, Board& board, const MakeWork& makeWork, Collection& collection) const
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
            beChild(board, makeWork, reports[1]);
        }
        if (child > 0)
            children.push_back(child);
    }
    close(reports[1]);
    std::string received;
    std::array<char, 4 * PIPE_BUF> part;
    for (ssize_t got = 1; got != 0;) {
        got = read(reports[0], part.data(), part.size());
        received.append(part.data(), std::size_t(std::max<ssize_t>(got, 0)));
        while (received.size() >= sizeof(Report)) {
            Report report;
            std::memcpy(&report, received.data(), sizeof report);
            if (received.size() < sizeof report + report.words)
                break;
            collection.add(
                report.piece, report.end, {report.code, received.substr(sizeof report, report.words)});
            received.erase(0, sizeof report + report.words);
        }
        if (stopAsked())
            std::ranges::for_each(children, [](pid_t child) { kill(child, SIGTERM); });
    }
    close(reports[0]);
    if (children.empty())
        collection.setFault(ExitCode::internal);
    bool crashed = false;
    for (const pid_t child : children) {
        int status = 0;
        while (waitpid(child, &status, 0) < 0 && errno == EINTR) { }
        if (WIFEXITED(status) && WEXITSTATUS(status) != 0)
            collection.setFault(ExitCode(WEXITSTATUS(status)));
        crashed |= WIFSIGNALED(status);
    }
    return crashed;
}

Workers::Result Workers::run(int processes, const MakeWork& makeWork, Progress& progress) const
{
    if (processes > 1)
        return runApart(processes, makeWork, progress);
    Board board(count_);
    Collection collection(listener_, count_, progress);
    untilAsked([&] {
        work(board, makeWork, [&](std::size_t piece, Piece end, const Outcome& outcome) {
            collection.add(piece, end, outcome);
        });
    });
    progress.finish();
    return collection.result();
}

Workers::Result Workers::runApart(int processes, const MakeWork& makeWork, Progress& progress) const
{
    Board board(count_);
    Collection collection(listener_, count_, progress);
    // A process that crashes takes its piece with it; new ones do what nobody else is left to do, unless the
    // last ones all died before they had begun a piece.
    bool crashed = false;
    for (std::size_t before = count_ + 1; board.left() > 0 && board.left() < before && !stopAsked();) {
        before = board.left();
        crashed = workInChildren(processes, board, makeWork, collection);
        if (!crashed)
            break;
    }
    progress.finish();
    const bool abandoned = crashed && board.left() > 0;
    for (std::size_t i = 0; i < count_; ++i) {
        if ((!board.begun(i) && !abandoned) || collection.told(i) || stopAsked())
            continue;
        const Outcome crash{
            ExitCode::internal, nameOf_(i) + ": the process that worked on it ended unexpectedly"};
        complain(crash.words);
        collection.add(i, Piece::done, crash);
    }
    return collection.result();
}

} // namespace tool
