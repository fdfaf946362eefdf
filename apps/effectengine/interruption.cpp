// Handlers that note a signal, and one that ends the process when the work does not end in time.
#include "effectengine/interruption.h"

#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <climits>
#include <csignal>
#include <string>

namespace tool {

// The name of one leftover file. A signal's handler reads it, so it owns no memory and is complete before it
// is marked as used.
struct Leftover::Place {
    enum State { kFree, kTaken, kUsed };
    std::atomic<int> state{kFree};
    pid_t process;
    char path[PATH_MAX];
};
std::array<Leftover::Place, 100> Leftover::places;

namespace {

constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};

std::atomic<int> received{0};
static_assert(std::atomic<int>::is_always_lock_free);

struct Interrupted { };

/// How long after the first signal the process is ended by force: so early that it ends within a second.
/// Later signals put nothing off.
constexpr itimerval kPatience{{0, 0}, {0, 800'000}};
constexpr itimerval kNone{};

extern "C" void remember(int signal)
{
    if (received.exchange(signal) == 0)
        setitimer(ITIMER_REAL, &kPatience, nullptr);
}

extern "C" void endByForce(int)
{
    removeLeftovers();
    const int signal = received.load();
    struct sigaction action { };
    action.sa_handler = SIG_DFL;
    sigaction(signal, &action, nullptr);
    kill(getpid(), signal);
}

class Handlers {
public:
    Handlers()
    {
        struct sigaction action { };
        action.sa_handler = remember;
        sigemptyset(&action.sa_mask);
        for (std::size_t i = 0; i < kSignals.size(); ++i) {
            sigaction(kSignals[i], nullptr, &before_[i]);
            if (before_[i].sa_handler != SIG_IGN) // nohup
                sigaction(kSignals[i], &action, nullptr);
        }
        action.sa_handler = endByForce;
        sigaction(SIGALRM, &action, &alarmBefore_);
    }
    ~Handlers()
    {
        setitimer(ITIMER_REAL, &kNone, nullptr);
        sigaction(SIGALRM, &alarmBefore_, nullptr);
        for (std::size_t i = 0; i < kSignals.size(); ++i)
            sigaction(kSignals[i], &before_[i], nullptr);
    }

private:
    std::array<struct sigaction, kSignals.size()> before_{};
    struct sigaction alarmBefore_ { };
};

} // namespace

void removeLeftovers() noexcept
{
    for (const Leftover::Place& place : Leftover::places)
        if (place.state.load() == Leftover::Place::kUsed && place.process == getpid())
            unlink(place.path);
}

Leftover::Place* Leftover::take()
{
    for (Place& place : places)
        if (int expected = Place::kFree; place.state.compare_exchange_strong(expected, Place::kTaken))
            return &place;
    return nullptr;
}

Leftover::Leftover(const std::filesystem::path& file) : place_(nullptr)
{
    const std::string& path = file.native();
    if (path.size() < sizeof Place::path)
        place_ = take();
    if (!place_)
        return;
    place_->process = getpid();
    *std::ranges::copy(path, place_->path).out = '\0';
    place_->state = Place::kUsed;
}

Leftover::~Leftover()
{
    if (place_)
        place_->state = Place::kFree;
}

bool stopAsked() noexcept { return received.load() != 0; }

void stopIfAsked()
{
    if (stopAsked())
        throw Interrupted();
}

void untilAsked(const std::function<void()>& part)
{
    try {
        part();
    } catch (const Interrupted&) {
    }
}

void stopBy(int signal)
{
    received = signal;
    throw Interrupted();
}

void interruptibly(const std::function<void()>& work)
{
    {
        const Handlers handlers;
        try {
            work();
            return;
        } catch (const Interrupted&) {
        }
    }
    std::raise(received.load());
}

} // namespace tool
