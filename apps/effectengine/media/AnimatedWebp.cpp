// An animated PNG is made of the frames while it is read. Its data are not compressed, so every frame takes
// the same number of bytes and each place in the file can be found without those before it.
#include "effectengine/media/AnimatedWebp.h"

#include "effectengine/ToolError.h"

extern "C" {
#include <libavutil/intreadwrite.h>
}

#include <webp/demux.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <vector>

namespace fs = std::filesystem;

namespace tool::media {

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kBuffer = 1 << 16;
constexpr std::size_t kLargestBlock = 65535; ///< of data that are not compressed
constexpr int kUnknownDuration = 100;        ///< milliseconds of a frame that tells 0, as browsers show it

void put(Bytes& to, std::uint32_t value, int bytes)
{
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        to.push_back(std::uint8_t(value >> shift));
}

/// Writes the head of a chunk; finish() completes it.
class Chunk {
public:
    Chunk(Bytes& to, const char* name, std::size_t size) : to_(to)
    {
        put(to_, std::uint32_t(size), 4);
        begin_ = to_.size();
        put(to_, AV_RB32(name), 4);
    }
    void finish() { put(to_, std::uint32_t(crc32_z(0, to_.data() + begin_, to_.size() - begin_)), 4); }

private:
    Bytes& to_;
    std::size_t begin_;
};

/// The bytes of the animated PNG.
class AnimationFile final : public InputBytes {
public:
    explicit AnimationFile(const fs::path& file) : webp_(fs::file_size(file))
    {
        std::ifstream(file, std::ios::binary)
            .read(reinterpret_cast<char*>(webp_.data()), std::streamsize(webp_.size()));
        const WebPData data{webp_.data(), webp_.size()};
        decoder_.reset(WebPAnimDecoderNew(&data, nullptr));
        if (!decoder_ || !WebPAnimDecoderGetInfo(decoder_.get(), &info_))
            throw ToolError(ExitCode::unreadable, "cannot read " + file.string() + ": its data is damaged");
        readDurations();
        if (durations_.empty())
            throw ToolError(ExitCode::unreadable, "no frame can be decoded from " + file.string());
        rowSize_ = std::size_t(info_.canvas_width) * 4;
        pixelSize_ = (rowSize_ + 1) * info_.canvas_height;
        const std::size_t blocks = (pixelSize_ + kLargestBlock - 1) / kLargestBlock;
        dataSize_ = 2 + pixelSize_ + 5 * blocks + 4;
        writeHead();
        Bytes end;
        Chunk(end, "IEND", 0).finish();
        end_ = end;
    }

    int read(std::uint8_t* to, int size)
    {
        const std::int64_t whole = this->size();
        if (place_ >= whole)
            return AVERROR_EOF;
        const Bytes* part = &head_;
        std::int64_t offset = place_;
        const auto headSize = std::int64_t(head_.size());
        if (place_ >= whole - std::int64_t(end_.size())) {
            part = &end_;
            offset = place_ - (whole - std::int64_t(end_.size()));
        } else if (place_ >= headSize) {
            const std::int64_t afterFirst = place_ - headSize - frameSize(0);
            const int number = afterFirst < 0 ? 0 : 1 + int(afterFirst / frameSize(1));
            offset = afterFirst < 0 ? place_ - headSize : afterFirst % frameSize(1);
            if (!makeFrame(number))
                return AVERROR_INVALIDDATA;
            part = &frame_;
        }
        const auto count = int(std::min<std::int64_t>(size, std::int64_t(part->size()) - offset));
        std::memcpy(to, part->data() + offset, std::size_t(count));
        place_ += count;
        return count;
    }

    std::int64_t seek(std::int64_t offset, int from)
    {
        if (from == AVSEEK_SIZE)
            return size();
        const std::int64_t base = from == SEEK_CUR ? place_ : from == SEEK_END ? size() : 0;
        if (base + offset < 0)
            return AVERROR(EINVAL);
        return place_ = base + offset;
    }

private:
    struct FreeDecoder {
        void operator()(WebPAnimDecoder* decoder) const { WebPAnimDecoderDelete(decoder); }
    };

    void readDurations()
    {
        WebPIterator frame;
        if (WebPDemuxGetFrame(WebPAnimDecoderGetDemuxer(decoder_.get()), 1, &frame)) {
            do {
                durations_.push_back(frame.duration > 0 ? frame.duration : kUnknownDuration);
            } while (WebPDemuxNextFrame(&frame));
        }
        WebPDemuxReleaseIterator(&frame);
    }

    void writeHead()
    {
        constexpr std::array<std::uint8_t, 8> kSignature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
        constexpr std::uint32_t kEightBitsWithAlpha = 0x08060000;
        head_.assign(kSignature.begin(), kSignature.end());
        Chunk picture(head_, "IHDR", 13);
        put(head_, info_.canvas_width, 4);
        put(head_, info_.canvas_height, 4);
        put(head_, kEightBitsWithAlpha, 4);
        put(head_, 0, 1);
        picture.finish();
        Chunk animation(head_, "acTL", 8);
        put(head_, std::uint32_t(durations_.size()), 4);
        put(head_, info_.loop_count, 4);
        animation.finish();
    }

    // The control chunk and the data of a frame; those of the first one bear no sequence number.
    std::int64_t frameSize(int number) const
    {
        return std::int64_t(38 + 12 + (number > 0 ? 4 : 0) + dataSize_);
    }
    std::int64_t size() const
    {
        return std::int64_t(head_.size()) + frameSize(0)
            + frameSize(1) * (std::int64_t(durations_.size()) - 1) + std::int64_t(end_.size());
    }

    bool makeFrame(int number)
    {
        if (number == number_)
            return true;
        if (number < decoded_) {
            WebPAnimDecoderReset(decoder_.get());
            decoded_ = 0;
        }
        std::uint8_t* pixels = nullptr;
        int ignored = 0;
        for (; decoded_ <= number; ++decoded_)
            if (!WebPAnimDecoderGetNext(decoder_.get(), &pixels, &ignored))
                return false;
        frame_.clear();
        frame_.reserve(std::size_t(frameSize(number)));
        writeControl(number);
        Chunk data(frame_, number > 0 ? "fdAT" : "IDAT", dataSize_ + (number > 0 ? 4 : 0));
        if (number > 0)
            put(frame_, std::uint32_t(2 * number), 4);
        writePixels(pixels);
        data.finish();
        number_ = number;
        return true;
    }

    void writeControl(int number)
    {
        const int duration = durations_[std::size_t(number)];
        const bool isLong = duration > 65535; // two bytes
        Chunk control(frame_, "fcTL", 26);
        put(frame_, std::uint32_t(number > 0 ? 2 * number - 1 : 0), 4);
        put(frame_, info_.canvas_width, 4);
        put(frame_, info_.canvas_height, 4);
        put(frame_, 0, 4);
        put(frame_, 0, 4);
        put(frame_, std::uint32_t(isLong ? std::min(duration / 1000, 65535) : duration), 2);
        put(frame_, isLong ? 1 : 1000, 2);
        put(frame_, 0, 2); // the frame takes the place of the one before it
        control.finish();
    }

    void writePixels(const std::uint8_t* pixels)
    {
        filtered_.resize(pixelSize_);
        for (std::size_t row = 0; row < info_.canvas_height; ++row) {
            std::uint8_t* const to = filtered_.data() + row * (rowSize_ + 1);
            *to = 0; // no prediction
            std::memcpy(to + 1, pixels + row * rowSize_, rowSize_);
        }
        put(frame_, 0x7801, 2);
        for (std::size_t done = 0; done < pixelSize_;) {
            const std::size_t count = std::min(kLargestBlock, pixelSize_ - done);
            const auto low = std::uint8_t(count);
            const auto high = std::uint8_t(count >> 8);
            const std::uint8_t last = done + count == pixelSize_;
            for (const std::uint8_t byte : {last, low, high, std::uint8_t(~low), std::uint8_t(~high)})
                frame_.push_back(byte);
            frame_.insert(frame_.end(), filtered_.data() + done, filtered_.data() + done + count);
            done += count;
        }
        put(frame_, std::uint32_t(adler32_z(1, filtered_.data(), pixelSize_)), 4);
    }

    Bytes webp_;
    std::unique_ptr<WebPAnimDecoder, FreeDecoder> decoder_;
    WebPAnimInfo info_{};
    std::vector<int> durations_; ///< milliseconds
    std::size_t rowSize_ = 0;
    std::size_t pixelSize_ = 0; ///< with a byte before each row
    std::size_t dataSize_ = 0;  ///< the pixels as a stream of blocks
    Bytes head_;
    Bytes end_;
    Bytes frame_; ///< the bytes of frame number_
    Bytes filtered_;
    int number_ = -1;
    int decoded_ = 0; ///< how many frames the decoder has given
    std::int64_t place_ = 0;
};

int readBytes(void* file, std::uint8_t* to, int size)
{
    return static_cast<AnimationFile*>(static_cast<InputBytes*>(file))->read(to, size);
}

std::int64_t seekBytes(void* file, std::int64_t offset, int from)
{
    return static_cast<AnimationFile*>(static_cast<InputBytes*>(file))->seek(offset, from & ~AVSEEK_FORCE);
}

} // namespace

bool isAnimatedWebp(const fs::path& file)
{
    constexpr std::uint8_t kAnimation = 2;
    constexpr std::size_t kFlags = 20;
    std::array<char, kFlags + 1> head{};
    std::error_code ignored;
    if (!fs::is_regular_file(file, ignored))
        return false;
    std::ifstream stream(file, std::ios::binary);
    return stream.read(head.data(), std::streamsize(head.size())) && std::memcmp(head.data(), "RIFF", 4) == 0
        && std::memcmp(head.data() + 8, "WEBPVP8X", 8) == 0 && head[kFlags] & kAnimation;
}

Input openAnimatedWebp(const fs::path& file)
{
    std::unique_ptr<InputBytes> bytes = std::make_unique<AnimationFile>(file);
    AVFormatContext* opened = avformat_alloc_context();
    auto* const buffer = static_cast<std::uint8_t*>(av_malloc(kBuffer));
    AVIOContext* const stream = opened && buffer
        ? avio_alloc_context(buffer, kBuffer, 0, bytes.get(), readBytes, nullptr, seekBytes)
        : nullptr;
    if (!stream) {
        avformat_free_context(opened);
        av_free(buffer);
        throw std::bad_alloc();
    }
    opened->pb = stream;
    opened->opaque = bytes.get();
    const int result = avformat_open_input(&opened, nullptr, av_find_input_format("apng"), nullptr);
    if (result < 0) {
        static_cast<void>(bytes.release()); // to the stream
        detail::freeBytes(stream);          // the context is gone already
        throw ToolError(ExitCode::unreadable, "cannot read " + file.string() + ": " + errorText(result));
    }
    static_cast<void>(bytes.release()); // to the input
    return Input(opened);
}

} // namespace tool::media
