// The blocks of the files in which the count stands, which FFmpeg reads but does not tell.
#include "effectengine/media/animationPlays.h"

#include <algorithm>
#include <cmath>
#include <fstream>

namespace fs = std::filesystem;

namespace tool::media {

namespace {

/// Reads numbers and skips; past the end everything is 0.
class Reader {
public:
    explicit Reader(const fs::path& file) : stream_(file, std::ios::binary) { }

    bool good() const { return stream_.good(); }
    std::string text(std::size_t size)
    {
        std::string bytes(size, '\0');
        stream_.read(bytes.data(), std::streamsize(size));
        return bytes;
    }
    std::uint32_t big(int bytes)
    {
        std::uint32_t value = 0;
        while (bytes-- > 0)
            value = value << 8 | std::uint32_t(byte());
        return value;
    }
    std::uint32_t little(int bytes)
    {
        std::uint32_t value = 0;
        for (int i = 0; i < bytes; ++i)
            value |= std::uint32_t(byte()) << (8 * i);
        return value;
    }
    void skip(std::int64_t bytes) { stream_.seekg(bytes, std::ios::cur); }

private:
    int byte() { return std::max(0, stream_.get()); }
    std::ifstream stream_;
};

// A GIF without the block that tells a count is played once; the count is of the times after the first.
int playsOfGif(Reader& file)
{
    file.skip(4); // the size
    const std::uint32_t flags = file.little(1);
    file.skip(2 + (flags & 0x80 ? 3 << ((flags & 7) + 1) : 0));
    while (file.good() && file.little(1) == 0x21) { // blocks before the first picture
        const bool application = file.little(1) == 0xff;
        bool counts = false;
        for (std::uint32_t size = file.little(1); file.good() && size > 0; size = file.little(1)) {
            const std::string part = file.text(size);
            if (counts && size >= 3 && part[0] == 1) {
                const int count = std::uint8_t(part[1]) | std::uint8_t(part[2]) << 8;
                return count == 0 ? 0 : count + 1;
            }
            counts = counts || (application && (part == "NETSCAPE2.0" || part == "ANIMEXTS1.0"));
        }
    }
    return 1;
}

std::optional<int> playsOfPng(Reader& file)
{
    file.skip(2);
    while (file.good()) {
        const std::uint32_t size = file.big(4);
        const std::string name = file.text(4);
        if (name == "acTL") {
            file.skip(4);
            return int(file.big(4));
        }
        if (name == "IDAT")
            return {};
        file.skip(std::int64_t(size) + 4);
    }
    return {};
}

std::optional<int> playsOfWebp(Reader& file)
{
    file.skip(2);
    if (file.text(4) != "WEBP")
        return {};
    while (file.good()) {
        const std::string name = file.text(4);
        const std::uint32_t size = file.little(4);
        if (name == "ANIM") {
            file.skip(4);
            return int(file.little(2));
        }
        file.skip(std::int64_t(size) + size % 2);
    }
    return {};
}

} // namespace

std::optional<int> playsOf(const fs::path& file)
{
    std::error_code ignored;
    if (!fs::is_regular_file(file, ignored))
        return {};
    Reader reader(file);
    const std::string head = reader.text(6);
    if (head == "GIF89a" || head == "GIF87a")
        return playsOfGif(reader);
    if (head.starts_with("\x89PNG"))
        return playsOfPng(reader);
    if (head.starts_with("RIFF"))
        return playsOfWebp(reader);
    return {};
}

void setPlays(Dictionary& options, const AVOutputFormat& container, int plays)
{
    const std::string_view name = container.name;
    if (name == "gif")
        options.set("loop", std::to_string(plays == 1 ? -1 : plays == 0 ? 0 : plays - 1));
    if (name == "apng")
        options.set("plays", std::to_string(plays));
    if (name == "webp")
        options.set("loop", std::to_string(plays));
}

void setFinalDelay(AVFormatContext& output, AVRational seconds)
{
    constexpr const char* kOption = "final_delay";
    const std::string_view name = output.oformat->name;
    if (seconds.num <= 0)
        return;
    if (name == "gif")
        av_opt_set_int(
            output.priv_data, kOption, std::clamp(std::lround(av_q2d(seconds) * 100), 0L, 65535L), 0);
    if (name == "apng") {
        const auto thousandths = int(std::clamp(std::lround(av_q2d(seconds) * 1000), 1L, 65535L));
        av_opt_set_q(output.priv_data, kOption, {thousandths, 1000}, 0);
    }
}

} // namespace tool::media
