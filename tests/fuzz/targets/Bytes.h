// Random bytes as a source of numbers, texts and choices.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace fuzz {

/// Numbers and texts out of bytes. When these are used up, zeros come, and `empty` says so.
class Bytes {
public:
    explicit Bytes(std::span<const unsigned char> bytes) : bytes_(bytes) { }

    bool empty() const { return at_ >= bytes_.size(); }
    unsigned char byte() { return empty() ? 0 : bytes_[at_++]; }
    std::uint32_t word();
    /// 0..count - 1.
    std::size_t pick(std::size_t count) { return word() % count; }
    bool oneIn(std::size_t count) { return pick(count) == count - 1; }
    /// Anything that a double can be; mostly what people would write.
    double number();
    /// Up to `most` bytes without a NUL.
    std::string text(std::size_t most);
    template <class T> const T& of(std::span<const T> all) { return all[pick(all.size())]; }

private:
    std::span<const unsigned char> bytes_;
    std::size_t at_ = 0;
};

} // namespace fuzz
