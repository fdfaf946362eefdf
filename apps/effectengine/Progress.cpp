// Drawing of the bar, and the JSON lines.
#include "effectengine/Progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace tool {

namespace {

using namespace std::chrono_literals;

constexpr auto kPause = 200ms;
constexpr int kUsualColumns = 80;
constexpr int kWidestBar = 40;

int terminalColumns()
{
    winsize size{};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsualColumns;
}

std::string clockText(double seconds)
{
    const long long whole = std::llround(seconds);
    char text[32];
    if (whole >= 3600)
        std::snprintf(text, sizeof text, "%lld:%02lld:%02lld", whole / 3600, whole / 60 % 60, whole % 60);
    else
        std::snprintf(text, sizeof text, "%lld:%02lld", whole / 60, whole % 60);
    return text;
}

} // namespace

std::string fixedText(double value, int digits)
{
    char text[64];
    return {text, std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, digits).ptr};
}

void addProgressOption(CLI::App& command, ProgressKind& kind)
{
    const std::map<std::string, ProgressKind> names{{"auto", ProgressKind::automatic},
        {"bar", ProgressKind::bar}, {"json", ProgressKind::json}, {"none", ProgressKind::none}};
    command
        .add_option_function<std::string>(
            "--progress", [&kind, names](const std::string& name) { kind = names.at(name); },
            "auto (a bar on a terminal), bar, json (lines on stdout) or none")
        ->check(CLI::IsMember({"auto", "bar", "json", "none"}))
        ->type_name("KIND");
}

Progress::Progress(ProgressKind kind, std::string unit, long long total)
    : kind_(kind),
      unit_(std::move(unit)),
      total_(total)
{
    if (kind_ == ProgressKind::automatic)
        kind_ = isatty(STDERR_FILENO) ? ProgressKind::bar : ProgressKind::none;
}

Progress::~Progress()
{
    if (kind_ == ProgressKind::bar && shown_ >= 0)
        std::fputc('\n', stderr);
}

void Progress::report(long long done)
{
    done_ = done;
    if (Clock::now() - lastShown_ >= kPause)
        show();
}

void Progress::finish()
{
    if (shown_ != done_)
        show();
}

void Progress::show()
{
    lastShown_ = Clock::now();
    shown_ = done_;
    const double seconds = std::chrono::duration<double>(lastShown_ - begun_).count();
    const double rate = seconds > 0 ? double(done_) / seconds : 0;
    const double remaining = rate > 0 ? double(std::max(0LL, total_ - done_)) / rate : 0;
    if (kind_ == ProgressKind::bar)
        showBar(rate, remaining);
    else if (kind_ == ProgressKind::json)
        showJson(rate, remaining);
}

void Progress::showBar(double rate, double remaining) const
{
    const std::string speed = fixedText(rate, 1) + " " + unit_ + "/s";
    if (total_ <= 0) {
        std::fprintf(stderr, "\r%lld %s  %s\x1b[K", done_, unit_.c_str(), speed.c_str());
        return;
    }
    const double share = std::min(1.0, double(done_) / double(total_));
    const std::string words = " " + std::to_string(int(share * 100)) + "%  " + std::to_string(done_) + "/"
        + std::to_string(total_) + "  " + speed + "  " + clockText(remaining) + " left";
    const int room = std::clamp(terminalColumns() - int(words.size()) - 3, 0, kWidestBar);
    const auto filled = std::size_t(share * room);
    std::fprintf(stderr, "\r[%s%s]%s\x1b[K", std::string(filled, '#').c_str(),
        std::string(std::size_t(room) - filled, ' ').c_str(), words.c_str());
}

void Progress::showJson(double rate, double remaining) const
{
    const std::string total = total_ > 0 ? std::to_string(total_) : "null";
    const std::string left = total_ > 0 && rate > 0 ? fixedText(remaining, 1) : "null";
    std::printf(R"({"unit":"%s","done":%lld,"total":%s,"rate":%s,"remaining":%s})"
                "\n",
        unit_.c_str(), done_, total.c_str(), fixedText(rate, 2).c_str(), left.c_str());
    std::fflush(stdout);
}

} // namespace tool
