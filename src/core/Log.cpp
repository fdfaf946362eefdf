// The engine log over spdlog: own line layout, one file, opened for appending.
#include "core/Log.h"

#include <spdlog/details/os.h>
#include <spdlog/logger.h>
#include <spdlog/sinks/basic_file_sink.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <mutex>

namespace logging {

namespace {

constexpr std::array<char, 3> kByteOrderMark{'\xEF', '\xBB', '\xBF'};

const char* severityName(spdlog::level::level_enum level)
{
    switch (level) {
    case spdlog::level::critical:
        return "FATAL";
    case spdlog::level::err:
        return "ERROR";
    case spdlog::level::warn:
        return "WARN";
    case spdlog::level::info:
        return "INFO";
    case spdlog::level::debug:
        return "DEBUG";
    case spdlog::level::trace:
        return "VERB";
    default:
        return "NONE";
    }
}

spdlog::level::level_enum levelOf(Severity severity)
{
    switch (severity) {
    case Severity::fatal:
        return spdlog::level::critical;
    case Severity::error:
        return spdlog::level::err;
    case Severity::warning:
        return spdlog::level::warn;
    case Severity::information:
        return spdlog::level::info;
    case Severity::debug:
        return spdlog::level::debug;
    case Severity::verbose:
        return spdlog::level::trace;
    }
    return spdlog::level::off;
}

// 2026-11-19 02:21:14.007 INFO  [4312] message
class MyFormatter final : public spdlog::formatter {
public:
    void format(const spdlog::details::log_msg& record, spdlog::memory_buf_t& line) override
    {
        using namespace std::chrono;
        const std::tm local = spdlog::details::os::localtime(system_clock::to_time_t(record.time));
        const auto milliseconds =
            duration_cast<std::chrono::milliseconds>(record.time.time_since_epoch()).count() % 1000;
        fmt::format_to(std::back_inserter(line), "{}-{:02}-{:02} {:02}:{:02}:{:02}.{:03} {:<5} [{}] ",
            local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
            milliseconds, severityName(record.level), record.thread_id);
        line.append(record.payload.begin(), record.payload.end());
        line.push_back('\n');
    }

    std::unique_ptr<spdlog::formatter> clone() const override { return std::make_unique<MyFormatter>(); }
};

void markNewFile(const spdlog::filename_t&, std::FILE* file)
{
    std::fseek(file, 0, SEEK_END);
    if (std::ftell(file) == 0)
        std::fwrite(kByteOrderMark.data(), 1, kByteOrderMark.size(), file);
}

std::mutex openingMutex;
// Never destroyed: the render thread may still log while the process exits.
std::atomic<spdlog::logger*> engineLogger{nullptr};

} // namespace

bool open(const std::string& file) noexcept
{
    const std::lock_guard lock(openingMutex);
    if (engineLogger.load())
        return false;
    try {
        spdlog::file_event_handlers events;
        events.after_open = markNewFile;
        auto sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(file, false, events);
        auto logger = std::make_unique<spdlog::logger>("EffectEngine", std::move(sink));
        logger->set_formatter(std::make_unique<MyFormatter>());
        logger->set_level(spdlog::level::info);
        logger->flush_on(spdlog::level::info);
        // A full disk must neither throw into a frame nor write to the host's terminal.
        logger->set_error_handler([](const std::string&) {});
        engineLogger.store(logger.release());
        return true;
    } catch (...) {
        return false;
    }
}

bool admits(Severity severity) noexcept
{
    const spdlog::logger* const logger = engineLogger.load();
    return logger && logger->should_log(levelOf(severity));
}

void write(Severity severity, const char* tag, std::string_view message) noexcept
{
    spdlog::logger* const logger = engineLogger.load();
    if (!logger)
        return;
    try {
        logger->log(spdlog::source_loc{"", 0, tag}, levelOf(severity),
            spdlog::string_view_t(message.data(), message.size()));
    } catch (...) {
        // Losing a record is better than losing the frame.
    }
}

} // namespace logging
