// A wipe whose order is a picture: where it is dark, the second picture shows first.
#include "core/Log.h"
#include "effects/transitions/Canvas.h"
#include "effects/transitions/Progress.h"
#include "effects/transitions/WipeOrder.h"
#include "model/CSimpleEffect.h"
#include "model/EffectRegistry.h"
#include "text/Text.h"

#include <cmath>

namespace KEXSDK {
namespace {

using pixels::Bgra;
using transitions::kLastPlace;

constexpr auto kWipePicture =
    PathParam{"WipePicture", "picture whose dark places change first; without one the wipe runs to the right"}
        .inPack(transitions::kWipeFolder, "clock");
constexpr auto kSoftness =
    Param<float>{"Softness", 0.1f, {0, 1}, "width of the soft edge, as a share of the whole way"};
constexpr auto kInvert =
    Param<int>{"Invert", 0, {0, 1}, "which places change first"}.choosing("0 dark first, 1 bright first");

constexpr int kWhole = 256;

/// The weight of the second picture's colours where its own weight is `weight`, 0..kWhole: pictures count by
/// their alpha, too, so that no colour comes out of transparent places.
constexpr int colourWeight(int alphaShare, int alphaSum, int weight)
{
    const int share = int(float(alphaShare * kWhole) / float(std::max(alphaSum, 1)) + 0.5f);
    return alphaSum > 0 ? share : weight;
}

/// Both pictures with straight alpha, rounded to nearest; weight 0 gives `from`, kWhole gives `to`.
constexpr Bgra mixed(Bgra from, Bgra to, int weight)
{
    const int toAlpha = to.a * weight;
    const int alphaSum = toAlpha + from.a * (kWhole - weight);
    const int share = colourWeight(toAlpha, alphaSum, weight);
    const auto colour = [share](int f, int t) {
        return u8((f * (kWhole - share) + t * share + kWhole / 2) >> 8);
    };
    return {
        colour(from.b, to.b), colour(from.g, to.g), colour(from.r, to.r), u8((alphaSum + kWhole / 2) >> 8)};
}

class CPictureWipe final : public CSimpleEffect {
public:
    CPictureWipe(u32 w, u32 h) : CSimpleEffect(w, h) { declare(kWipePicture, kSoftness, kInvert); }

    u32 getInputCount() override { return 2; }

    /// A picture is read at once; the answer is whether it was, and one that was not changes nothing. An
    /// empty path takes the picture away.
    bool setParamVariant(const char* name, std::unique_ptr<ParamVariant>& value) override
    {
        if (std::string_view(name) != kWipePicture.name)
            return CSimpleEffect::setParamVariant(name, value);
        if (!value || !value->holds(ParamType::filePath) || !value->value.text)
            return false;
        const std::string file = text::utf8(value->path());
        transitions::WipeOrder order;
        if (!file.empty()) {
            transitions::WipePicture picture = transitions::readWipePicture(file, extent());
            if (picture.order.empty()) {
                logging::warning(
                    "CPictureWipe::setParamVariant", "Refused [" + file + "]: " + picture.problem);
                return false;
            }
            order = std::move(picture.order);
        }
        if (!CSimpleEffect::setParamVariant(name, value))
            return false;
        order_ = std::move(order);
        return true;
    }

    /// Shows input 0 turning into input 1 as u_global_time runs from 0 to u_total_time. Without both inputs
    /// in the node's size the output stays as it is; a total time that is no positive number shows input 0.
    void run() override
    {
        const CEffectImage* const from = getInputImage(0);
        const CEffectImage* const to = getInputImage(1);
        if (!from || !to || !fits(*from) || !fits(*to))
            return;
        const transitions::Canvas canvas{
            getOutputImage()->view(), from->view(), to->view(), extent().width, extent().height};
        const float total = getParamFloat(kTotalTime.name, 0);
        if (!(total > 0) || !std::isfinite(total))
            return pixels::rows::copy(canvas.from, canvas.dst);
        if (order_.empty())
            order_ = transitions::orderFromLeft(extent());
        const float time = pixels::clamped(getParamFloat(kGlobalTime.name, 0), 0.0f, total);
        draw(canvas, transitions::Progress(time, total).linear());
    }

private:
    pixels::Extent extent() const { return {int(width()), int(height())}; }

    /// The edge, `soft` wide, ends behind the last place when `progress` is 1.
    void draw(const transitions::Canvas& canvas, double progress)
    {
        const int soft =
            std::max(pixels::roundHalfUp(pixels::clamped(get(kSoftness), 0.0f, 1.0f) * kLastPlace), 1);
        const int edge = pixels::roundHalfUp(progress * (kLastPlace + soft));
        const float perSoft = 1.0f / float(soft);
        const int mirror = get(kInvert) != 0 ? kLastPlace : 0;
        const u16* const order = order_.data();
        drawRows(canvas, [=](const transitions::Line& line) {
            const u16* const places = order + std::ptrdiff_t(line.v) * line.width;
            line.mix(0, line.width, [=](Bgra f, Bgra t, int x) {
                const float way = float(std::clamp(edge - (places[x] ^ mirror), 0, soft)) * perSoft;
                return mixed(f, t, int(way * way * (3 - 2 * way) * float(kWhole) + 0.5f));
            });
        });
    }

    transitions::WipeOrder order_; ///< empty until a picture is set or a frame is drawn
};

const Registration<CPictureWipe> registered{{
    .guid = "8BC3F6DB-B9A3-4122-A5F8-34BC523ED306",
    .name = "picture-wipe",
    .title = "Picture Wipe",
    .family = "transition",
    .summary = "The second picture appears in the order of a wipe picture, its dark places first.",
    .inputs = 2,
    .alpha = Alpha::computed,
}};

} // namespace
} // namespace KEXSDK
