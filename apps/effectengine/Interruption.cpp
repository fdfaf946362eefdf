// Signals become a flag.
#include "effectengine/Interruption.h"

#include <array>
#include <atomic>
#include <csignal>

namespace {

constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};

std::atomic<int> received{0};
static_assert(std::atomic<int>::is_always_lock_free);

struct Interrupted { };

extern "C" void remember(int signal) { received.store(signal); }

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
    }
    ~Handlers()
    {
        for (std::size_t i = 0; i < kSignals.size(); ++i)
            sigaction(kSignals[i], &before_[i], nullptr);
    }

private:
    std::array<struct sigaction, kSignals.size()> before_{};
};

} // namespace

bool stopAsked() noexcept { return received.load() != 0; }

void stopIfAsked()
{
    if (stopAsked())
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
