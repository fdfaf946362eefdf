// Between named parameters and the block.
#include "effects/am/library/CSimpleAmEffect.h"

#include "core/Log.h"
#include "effects/am/library/amCatalog.h"
#include "effects/am/library/amLibrary.h"
#include "pixels/numbers.h"

#include <cmath>
#include <new>

namespace KEXSDK {

namespace {

constexpr float kFramesPerSecond = 25.0f;

// Region bounds are whole pixels in the block and shares of the picture in the parameters.
i32 asPixels(float share, u32 extent) { return pixels::truncated(float(extent) * share); }

// One that comes back as the bound: the nearest may lie just below it.
float asShare(i32 bound, u32 extent)
{
    const float share = float(bound) / float(extent);
    return asPixels(share, extent) < bound ? std::nextafter(share, 2 * share) : share;
}

} // namespace

CSimpleAmEffect::CSimpleAmEffect(i32 id, u32 w, u32 h, const char* texturePath) : CSimpleEffect(w, h)
{
    CSimpleAmEffect::setup(id, texturePath);
}

CSimpleAmEffect::~CSimpleAmEffect() { AmReleaseParams(params); }

void CSimpleAmEffect::setup(i32 id, const char* texturePath)
{
    if (texturePath) {
        texture_ = CEffectImage::loadFromFile(texturePath, width(), height());
        if (texture_) {
            setInputImage(texture_.get(), 1);
        } else {
            logging::warning(
                "KEXSDK::CSimpleAmEffect::setup", std::string("Texture not loaded: [") + texturePath + "]");
            texture_ = std::make_unique<CEffectImage>(width(), height(), 0, 32, nullptr);
        }
    }
    if (AmCreateParams(&params, id) != kAmOk)
        throw std::bad_alloc();
    params->frameRate = kFramesPerSecond;
    declareParams();
}

void CSimpleAmEffect::declareParams()
{
    // Described first: the values that follow are the block's, for this node's size.
    for (const ParamInfo& info : amParameters(params->id))
        declare(info);
    setParamIntValue("PositionX", params->posX);
    setParamIntValue("PositionY", params->posY);
    setParamFloatValue("DecolorPosX", params->pickX * 100);
    setParamFloatValue("DecolorPosY", params->pickY * 100);
    setParamIntValue("Direction", params->direction);
    setParamIntValue("Percent", params->percent);
    setParamIntValue("Red", params->red);
    setParamIntValue("Gleen", params->green);
    setParamIntValue("Blue", params->blue);
    setParamIntValue("Radius", params->radius);
    setParamFloatValue("LeftPos", asShare(params->left, width()));
    setParamFloatValue("TopPos", asShare(params->top, height()));
    setParamFloatValue("RightPos", asShare(params->right, width()));
    setParamFloatValue("BottomPos", asShare(params->bottom, height()));
}

void CSimpleAmEffect::updateParams()
{
    const am::EffectRow* const effect = am::findEffect(params->id);
    if (effect && paramsChanged)
        params->dirty |= effect->rebuiltOnChange;
    params->posX = getParamInt("PositionX", 0);
    params->posY = getParamInt("PositionY", 0);
    params->pickX = getParamFloat("DecolorPosX", 0) / 100;
    params->pickY = getParamFloat("DecolorPosY", 0) / 100;
    params->direction = getParamInt("Direction", 0);
    params->percent = getParamInt(effect && effect->radiusIsPercent ? "Radius" : "Percent", 0);
    params->red = u8(getParamInt("Red", 0));
    params->green = u8(getParamInt("Gleen", 0));
    params->blue = u8(getParamInt("Blue", 0));
    params->radius = getParamInt("Radius", 0);
    params->left = asPixels(getParamFloat("LeftPos", 0), width());
    params->top = asPixels(getParamFloat("TopPos", 0), height());
    params->right = asPixels(getParamFloat("RightPos", 0), width());
    params->bottom = asPixels(getParamFloat("BottomPos", 0), height());
}

void CSimpleAmEffect::run()
{
    updateParams();
    const CEffectImage* const source = getInputImage(0);
    if (!source || !fits(*source))
        return;
    const AmImageDesc image = describe(*getOutputImage());
    if (!texture_) {
        AmApplyEffectFrom(source->view(), params, &image, nullptr);
        return;
    }
    // The host may have put another picture in the texture's place.
    const CEffectImage* const second = getInputImage(1);
    const AmImageDesc texture = describe(second && fits(*second) ? *second : *texture_);
    AmApplyEffectFrom(source->view(), params, &image, &texture);
}

AmImageDesc CSimpleAmEffect::describe(const CEffectImage& image) const
{
    return {
        .width = i32(width()),
        .height = i32(height()),
        .stride = i32(width() * 4),
        .dataSize = i32(width() * height() * 4),
        .data = image.pixels(),
    };
}

} // namespace KEXSDK
