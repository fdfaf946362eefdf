// How long the texture of a drawn picture stands for its memory.
#pragma once

#include "graphics/ImageParam.h"

#include <utility>

namespace KEXSDK {

/// While one lives, a record keeps the texture that an effect drew into it, and readers may take that in
/// place of the memory. With the last lease the texture is let go: whoever asked for the evaluation may write
/// the memory then. Empty as constructed.
class TextureLease {
public:
    TextureLease() = default;
    /// The record outlives the lease.
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
