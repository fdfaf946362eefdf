// Copies named parameters to and from a node's block, and applies the block to the node's pictures.
#include "effects/am/library/CSimpleAmEffect.h"

#include "core/Log.h"
#include "effects/am/library/amCatalog.h"
#include "effects/am/library/amLibrary.h"
#include "pixels/numbers.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <string_view>

namespace KEXSDK {

namespace {

constexpr float kFramesPerSecond = 25.0f;

// Region bounds are whole pixels in the block and shares of the picture in the parameters.
i32 asPixels(float share, int extent) { return pixels::truncated(float(extent) * share); }

// A share that asPixels() turns into the bound again: the share nearest to it may lie just below.
float asShare(i32 bound, int extent)
{
    const float share = float(bound) / float(extent);
    return asPixels(share, extent) < bound ? std::nextafter(share, 2 * share) : share;
}

using Block = AmEffectParams;
using pixels::Extent;

// A parameter and the field of the block that it fills, for a node of the given size. Values are integers or
// floats; a double holds either exactly.
struct Parameter {
    const char* name;
    ParamType type;
    double (*declared)(const Block&, Extent);
    void (*fill)(Block&, double value, Extent);
};

template <class Field> void assign(Field& field, i32 value) { field = Field(value); }

template <auto kField> constexpr Parameter integer(const char* name)
{
    return {name, ParamType::integer, [](const Block& b, Extent) { return double(b.*kField); },
        [](Block& b, double value, Extent) { assign(b.*kField, i32(value)); }};
}

template <float Block::*kField> constexpr Parameter hundredths(const char* name)
{
    return {name, ParamType::real, [](const Block& b, Extent) { return double(b.*kField * 100); },
        [](Block& b, double value, Extent) { b.*kField = float(value) / 100; }};
}

template <i32 Block::*kField, int Extent::*kSide> constexpr Parameter shareOf(const char* name)
{
    return {name, ParamType::real,
        [](const Block& b, Extent size) { return double(asShare(b.*kField, size.*kSide)); },
        [](Block& b, double value, Extent size) { b.*kField = asPixels(float(value), size.*kSide); }};
}

// Every parameter of the block, in the order in which nodes declare them.
constexpr Parameter kParameters[] = {
    integer<&Block::posX>("PositionX"),
    integer<&Block::posY>("PositionY"),
    hundredths<&Block::pickX>("DecolorPosX"),
    hundredths<&Block::pickY>("DecolorPosY"),
    integer<&Block::direction>("Direction"),
    integer<&Block::percent>("Percent"),
    integer<&Block::red>("Red"),
    integer<&Block::green>("Gleen"),
    integer<&Block::blue>("Blue"),
    integer<&Block::radius>("Radius"),
    shareOf<&Block::left, &Extent::width>("LeftPos"),
    shareOf<&Block::top, &Extent::height>("TopPos"),
    shareOf<&Block::right, &Extent::width>("RightPos"),
    shareOf<&Block::bottom, &Extent::height>("BottomPos"),
};

// The stored number, or 0 when another type is stored.
double numberIn(const ParamVariant& stored, ParamType type)
{
    if (!stored.holds(type))
        return 0;
    return type == ParamType::integer ? double(stored.value.integer) : double(stored.value.real);
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
    effect_ = am::findEffect(id);
    declareParams();
}

void CSimpleAmEffect::declareParams()
{
    static_assert(std::size(kParameters) == kParameterCount);
    // The descriptions come first: their defaults are then replaced by the block's values for this node's
    // size.
    for (const ParamInfo& info : amParameters(params->id))
        declare(info);
    for (const Parameter& parameter : kParameters) {
        const double value = parameter.declared(*params, extent());
        if (parameter.type == ParamType::integer)
            setParamIntValue(parameter.name, i32(value));
        else
            setParamFloatValue(parameter.name, float(value));
    }
}

bool CSimpleAmEffect::setParamVariant(const char* name, std::unique_ptr<ParamVariant>& value)
{
    const ParamVariant* const taken = value.get();
    if (!CSimpleEffect::setParamVariant(name, value))
        return false;
    const auto found = std::ranges::find(kParameters, std::string_view(name), &Parameter::name);
    if (found != std::end(kParameters))
        stored_[std::size_t(found - kParameters)] = taken;
    return true;
}

void CSimpleAmEffect::updateParams()
{
    if (effect_ && paramsChanged)
        params->dirty |= effect_->rebuiltOnChange;
    for (std::size_t i = 0; i < stored_.size(); ++i)
        kParameters[i].fill(*params, numberIn(*stored_[i], kParameters[i].type), extent());
    if (effect_ && effect_->radiusIsPercent)
        params->percent = params->radius;
}

void CSimpleAmEffect::run()
{
    updateParams();
    const CEffectImage* const source = getInputImage(0);
    if (!source || !fits(*source))
        return;
    const AmImageDesc image = describe(*getOutputImage());
    const CEffectImage* const second = texture();
    const AmImageDesc described = second ? describe(*second) : AmImageDesc();
    AmApplyEffectFrom(source->view(), params, &image, second ? &described : nullptr);
}

bool CSimpleAmEffect::beginRows()
{
    const CEffectImage* const source = getInputImage(0);
    if (!effect_ || !effect_->apply.byRows || !source || !fits(*source))
        return false;
    updateParams();
    const CEffectImage* const second = texture();
    const AmImageDesc described = second ? describe(*second) : AmImageDesc();
    second_ = second ? second->view() : pixels::ConstView();
    return AmBeginRows(*params, describe(*getOutputImage()), second ? &described : nullptr);
}

void CSimpleAmEffect::processRows(pixels::ConstView src, pixels::View dst, int first) const
{
    AmApplyToRows(src, *params, dst, second_.bytes() ? second_.rows(first, first + dst.height()) : second_);
}

// What the effect combines with input 0: the picture that the host has put in the texture's place, or the
// texture; null for effects without one.
const CEffectImage* CSimpleAmEffect::texture()
{
    const CEffectImage* const second = texture_ ? getInputImage(1) : nullptr;
    return second && fits(*second) ? second : texture_.get();
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
