// Keeps the texture of a drawn picture at hand for its readers.
#pragma once

#include "graphics/ImageParam.h"

#include <utility>

namespace KEXSDK {

/// While a lease lives, its record keeps the texture that an effect drew into it, and readers may take that
/// in place of the memory. With the last lease the texture is let go: whoever asked for the evaluation may
/// write the memory then. A default-constructed lease is empty.
class TextureLease {
public:
    TextureLease() = default;
    /// The record must outlive the lease.
    explicit TextureLease(_ImageParam& record) : record_(&record) { ++record.textureLeases; }
    TextureLease(TextureLease&& other) noexcept : record_(std::exchange(other.record_, nullptr)) { }
    TextureLease& operator=(TextureLease&& other) noexcept
    {
        TextureLease previous(std::move(*this));
        record_ = std::exchange(other.record_, nullptr);
        return *this;
    }
    ~TextureLease()
    {
        if (record_ && --record_->textureLeases == 0)
            record_->dropTexture();
    }

private:
    _ImageParam* record_ = nullptr;
};

} // namespace KEXSDK
