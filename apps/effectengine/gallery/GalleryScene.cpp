// The pictures of the scene, and the window that drifts over the first one.
#include "effectengine/gallery/GalleryScene.h"

#include "effectengine/effectList.h"
#include "hosting/imageView.h"
#include "hosting/opacity.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace tool {

namespace {

constexpr unsigned kLongestSide = 320;
constexpr unsigned kLargestScale = 3;
constexpr unsigned kBlock =
    16; ///< side of a JPEG file's blocks: cells of whole blocks do not mix at their edges
constexpr unsigned kMarginShare = 6;
constexpr double kFramesAround = 24;

void copy(const host::Image& from, const host::Image& to)
{
    std::memcpy(to.bytes().data(), from.bytes().data(), to.bytes().size());
}

} // namespace

GalleryLayout layoutFor(PictureSize picture)
{
    const double shape = double(picture.height) / picture.width;
    const double wanted = shape <= 1 ? kLongestSide : kLongestSide / shape;
    const unsigned width = std::max(kBlock, unsigned(std::lround(wanted / kBlock)) * kBlock);
    const unsigned height = std::clamp(unsigned(std::lround(width * shape)), 1u, kLongestSide);
    const unsigned scale =
        std::clamp(unsigned(std::lround(double(picture.width) / width)), 1u, kLargestScale);
    return {{width, height}, scale};
}

GalleryScene::GalleryScene(const GalleryLayout& layout, const std::filesystem::path& picture,
    const std::optional<std::filesystem::path>& second)
    : work_(layout.work()),
      margin_{work_.width / kMarginShare, work_.height / kMarginShare},
      picture_(loadPicture(picture, work_)),
      wide_(loadPicture(picture, {work_.width + margin_.width, work_.height + margin_.height})),
      first_(work_.width, work_.height),
      second_(work_.width, work_.height),
      secondPicture_(work_.width, work_.height)
{
    copy(picture_, first_);
    makeSecond(second);
}

void GalleryScene::makeSecond(const std::optional<std::filesystem::path>& file)
{
    if (file) {
        secondPicture_ = loadPicture(*file, work_);
        return;
    }
    host::Filter colourless(effectNamed("black-and-white").guid, int(work_.width), int(work_.height));
    colourless.setInput(picture_);
    const auto bytes = host::bytesOf(colourless.run());
    std::ranges::copy(bytes, secondPicture_.bytes().begin());
    for (int y = 0; y < int(work_.height); ++y)
        std::ranges::reverse(viewOf(secondPicture_).row(y));
}

bool GalleryScene::isOpaque(unsigned inputs) const
{
    CEffectImage* const pictures[] = {first_.handle(), second_.handle()};
    return host::areOpaque(std::span(pictures).first(std::min<std::size_t>(inputs, std::size(pictures))));
}

void GalleryScene::show(std::optional<unsigned> frame)
{
    copy(secondPicture_, second_);
    if (!frame) {
        copy(picture_, first_);
        return;
    }
    const double angle = 2 * std::numbers::pi * *frame / kFramesAround;
    const auto along = [](double wave, unsigned margin) { return std::size_t((wave + 1) / 2 * margin); };
    const std::size_t left = along(std::cos(angle), margin_.width);
    const std::size_t bottom = along(std::sin(angle), margin_.height);
    for (int y = 0; y < int(work_.height); ++y) {
        const auto row = viewOf(wide_).row(int(bottom) + y).subspan(left, work_.width);
        std::ranges::copy(row, viewOf(first_).row(y).begin());
    }
}

} // namespace tool
