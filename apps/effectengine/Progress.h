// Reports of how far the work is: a bar on a terminal, lines of JSON for programs.
#pragma once

#include <CLI/CLI.hpp>

#include <chrono>
#include <string>

namespace tool {

enum class ProgressKind {
    automatic, ///< a bar when stderr is a terminal, else nothing
    bar,       ///< on stderr
    json,      ///< one object a line on stdout
    none,
};

/// A number with a decimal point in every locale.
std::string fixedText(double value, int digits);

/// Adds --progress to a verb.
void addProgressOption(CLI::App& command, ProgressKind& kind);

/// Shows the progress of one piece of work, a few times a second at most. Used by one thread at a time.
class Progress {
public:
    /// @param unit   what is counted, in the plural
    /// @param total  how many there will be; 0 when nobody knows
    Progress(ProgressKind kind, std::string unit, long long total);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    /// Ends the bar's line, so that the next text begins at the left.
    ~Progress();

    /// @param done  pieces of work complete since the beginning
    void report(long long done);

    /// Shows the last state, in case it came too soon after the one before to be shown.
    void finish();

private:
    using Clock = std::chrono::steady_clock;

    void show();
    void showBar(double rate, double remaining) const;
    void showJson(double rate, double remaining) const;

    ProgressKind kind_;
    std::string unit_;
    long long total_;
    long long done_ = 0;
    long long shown_ = -1;
    Clock::time_point begun_ = Clock::now();
    Clock::time_point lastShown_{};
};

} // namespace tool
