// libvips. Its operations are lazy: a frame is made when its pixels are asked for.
#include "compare/Peer.h"

#include <vips/vips.h>

#include <memory>
#include <stdexcept>

namespace compare {

namespace {

struct Release {
    void operator()(VipsImage* image) const { g_object_unref(image); }
};
using Image = std::unique_ptr<VipsImage, Release>;

void require(bool done)
{
    if (!done)
        throw std::runtime_error(std::string("libvips: ") + vips_error_buffer());
}

Image over(std::span<unsigned char> pixels, host::FrameSize size)
{
    Image image(vips_image_new_from_memory(
        pixels.data(), pixels.size(), int(size.width), int(size.height), 4, VIPS_FORMAT_UCHAR));
    require(bool(image));
    image->Type = VIPS_INTERPRETATION_sRGB;
    return image;
}

// Calls an operation that answers 0 and an image, and makes all of its pixels.
template <class Operation> void make(Operation operation)
{
    VipsImage* out = nullptr;
    require(operation(&out) == 0);
    const Image lazy(out);
    const Image made(vips_image_new_memory());
    require(vips_image_write(lazy.get(), made.get()) == 0);
}

// The matrix that makes grey of the first three bands and keeps the fourth.
Image greyMatrix()
{
    static double weights[] = {.11, .59, .3, 0, .11, .59, .3, 0, .11, .59, .3, 0, 0, 0, 0, 1};
    Image matrix(vips_image_new_matrix_from_array(4, 4, weights, 16));
    require(bool(matrix));
    return matrix;
}

} // namespace

std::vector<Peer> vipsPeers(const Frames& frames, int threads)
{
    require(vips_init("effectengine_compare") == 0);
    vips_cache_set_max(0); // or the second frame would be the first one's
    vips_concurrency_set(threads);
    using Shared = std::shared_ptr<VipsImage>;
    const Shared first = over(frames.pixels[0], frames.size);
    const Shared second = over(frames.pixels[1], frames.size);
    const Shared grey = greyMatrix();
    const double deviation = blurDeviation(frames.size);
    std::vector<Peer> peers;
    const auto add = [&](const char* effect, const char* call, auto operation) {
        peers.push_back({effect, "libvips", call, [operation] { make(operation); }});
    };
    VipsImage* table = nullptr;
    require(vips_identity(&table, "bands", 4, nullptr) == 0);
    const Shared identity(table, Release());

    add("am-gray-scale", "recomb",
        [=](VipsImage** out) { return vips_recomb(first.get(), out, grey.get(), nullptr); });
    add("am-negative", "invert", [=](VipsImage** out) { return vips_invert(first.get(), out, nullptr); });
    add("am-solarize", "maplut",
        [=](VipsImage** out) { return vips_maplut(first.get(), out, identity.get(), nullptr); });
    add("am-flip-lr", "flip",
        [=](VipsImage** out) { return vips_flip(first.get(), out, VIPS_DIRECTION_HORIZONTAL, nullptr); });
    add("equalize", "hist_equal",
        [=](VipsImage** out) { return vips_hist_equal(first.get(), out, nullptr); });
    add("blur", "gaussblur, integer", [=](VipsImage** out) {
        return vips_gaussblur(first.get(), out, deviation, "precision", VIPS_PRECISION_INTEGER, nullptr);
    });
    add("am-sharp", "conv, 3 x 3, integer", [=](VipsImage** out) {
        static double weights[] = {-1, -1, -1, -1, 12, -1, -1, -1, -1};
        const Image kernel(vips_image_new_matrix_from_array(3, 3, weights, 9));
        vips_image_set_double(kernel.get(), "scale", 4);
        return vips_conv(first.get(), out, kernel.get(), "precision", VIPS_PRECISION_INTEGER, nullptr);
    });
    add("am-mosaic", "shrink and zoom", [=](VipsImage** out) {
        VipsImage* small = nullptr;
        if (vips_shrink(first.get(), &small, 16, 16, nullptr) != 0)
            return -1;
        const Image held(small);
        return vips_zoom(small, out, 16, 16, nullptr);
    });
    add("am-soft-light", "composite2, soft light", [=](VipsImage** out) {
        return vips_composite2(first.get(), second.get(), out, VIPS_BLEND_MODE_SOFT_LIGHT, nullptr);
    });
    return peers;
}

} // namespace compare
