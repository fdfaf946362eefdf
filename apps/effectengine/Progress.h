// How far the work is: a bar on a terminal, lines of JSON for programs.
#pragma once

#include <CLI/CLI.hpp>

#include <chrono>
#include <string>

enum class ProgressKind {
    automatic, ///< a bar when stderr is a terminal, else nothing
    bar,       ///< on stderr
    json,      ///< one object a line on stdout
    none,
};

/// Adds --progress to a verb.
void addProgressOption(CLI::App& command, ProgressKind& kind);

/// Shows at most a few steps a second, and the last one. Used by one thread at a time.
class Progress {
public:
    /// @param unit   what is counted, in the plural
    /// @param total  how many there will be; 0 when nobody knows
    Progress(ProgressKind kind, std::string unit, long long total);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    /// Ends the bar's line.
    ~Progress();

    /// @param done  pieces of work complete since the beginning
    void report(long long done);

    /// Shows the last state once more, also when it came too soon after the one before.
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
