// Ctrl-C and kill: work ends at the next frame, and what it had begun is removed.
#pragma once

#include <functional>

/// Runs the work so that SIGINT, SIGTERM and SIGHUP no longer end the process at once: stopIfAsked() throws
/// instead, the work unwinds and cleans up, and then the process ends by that signal, as shells expect.
void interruptibly(const std::function<void()>& work);

/// Whether a signal has come.
bool stopAsked() noexcept;

/// Throws when a signal has come; what is thrown is for interruptibly() alone to catch.
void stopIfAsked();
