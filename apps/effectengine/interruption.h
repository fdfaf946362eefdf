// Orderly ends on Ctrl-C and kill: work ends at the next frame, and what it had begun is removed. Work that
// does not end within a second, because a library is at something long, is ended by force.
#pragma once

#include <array>
#include <filesystem>
#include <functional>

namespace tool {

/// Runs the work so that SIGINT, SIGTERM and SIGHUP no longer end the process at once: stopIfAsked() throws
/// instead, the work unwinds and cleans up, and then the process ends by that signal, as shells expect. One
/// second after the signal it ends so in any case; nothing is cleaned up then but what a Leftover names.
void interruptibly(const std::function<void()>& work);

/// Whether a signal has come.
bool stopAsked() noexcept;

/// Throws when a signal has come; what is thrown is for interruptibly() alone to catch.
void stopIfAsked();

/// Runs a part of the work; what stopIfAsked() throws in it ends that part alone, for work that has something
/// to say at its end before it stops as well.
void untilAsked(const std::function<void()>& part);

/// Ends the work as if this signal had come: SIGPIPE for an output whose reader is gone. To be called within
/// interruptibly().
[[noreturn]] void stopBy(int signal);

/// A file that goes with the process when it is ended by force while this lives.
class Leftover {
public:
    /// Notes the file. A path longer than the system allows, and one beyond the first hundred at a time, is
    /// not noted, so its file stays.
    explicit Leftover(const std::filesystem::path& file);
    ~Leftover();
    Leftover(const Leftover&) = delete;
    Leftover& operator=(const Leftover&) = delete;

private:
    struct Place;
    static std::array<Place, 100> places;
    static Place* take();
    friend void removeLeftovers() noexcept;

    Place* place_;
};

/// Removes the files of all leftovers of this process. May be called in a handler of a signal.
void removeLeftovers() noexcept;

} // namespace tool
