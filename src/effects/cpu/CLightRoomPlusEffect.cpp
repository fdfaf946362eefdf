// Photographic adjustment: white balance, tone and vignette, then local contrast, sharpness, lens and glow.
#include "core/Log.h"
#include "effects/gpu/GpuEffect.h"
#include "effects/gpu/preferredForm.h"
#include "effects/gpu/uniforms.h"
#include "effects/lightroom/ColourSteps.h"
#include "effects/lightroom/HazeRemoval.h"
#include "effects/lightroom/colourShader.h"
#include "effects/lightroom/detail.h"
#include "graphics/GraphicsService.h"
#include "model/CPureCEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/rows.h"

#include <utility>

namespace KEXSDK {
namespace {

constexpr auto kClarity = Param<float>{"clarity", 0, {-100, 100}, "local contrast"};
constexpr auto kSharpen = Param<float>{"sharpen", 0, {0, 100}, "sharpness of edges"}.titled("Sharpness");
constexpr auto kColorEnable = Param<int>{"LightRoomColorEnable", 1, {0, 1}, "run the colour steps"}
                                  .titled("Colour Steps")
                                  .choosing("0 off, 1 on");
constexpr auto kResolution = ArrayParam<float>{"u_resolution", {640, 480}, 2, {1, pixels::kLargestSide},
    "size of the picture, for the vignette on the GPU", "pixels"}
                                 .titled("Picture Size");

// The host adds these; a missing one counts as 0. The value given here shows the effect; that of haze removal
// is 0, because it changes the input picture itself.
constexpr auto kDehaze =
    Param<float>{"dehaze", 0, {0, 100}, "take haze off; the input itself changes"}.undeclared();
constexpr auto kDistort =
    Param<float>{"distort", 10, {-100, 100}, "lens: above 0 the middle grows, below 0 the corners"}
        .titled("Lens Distortion")
        .undeclared();
constexpr auto kDiffuse =
    Param<float>{"diffuse", 20, {-100, 100}, "glow; above 0 it softens too"}.titled("Diffusion").undeclared();
constexpr auto kTemperature = Param<int>{"u_temperature", 14000, {0, 23000},
    "white balance: 11500 is neutral, less is cooler, more is warmer"}
                                  .storedByHosts(11500);
constexpr auto kTint = Param<float>{"u_tint", 5, {-100, 100}, "green below 0, magenta above"}.undeclared();
constexpr auto kExposure = Param<float>{"u_exposure", 10, {-100, 100}, "exposure"}.undeclared();
constexpr auto kBrightness = Param<float>{"u_brightness", 5, {-100, 100}, "brightness"}.undeclared();
constexpr auto kContrast = Param<float>{"u_contrast", 10, {-100, 100}, "contrast"}.undeclared();
constexpr auto kVibrance =
    Param<float>{"u_vib", 0, {-100, 100}, "vibrance, on the GPU only"}.titled("Vibrance").undeclared();
constexpr auto kSaturation =
    Param<float>{"u_sat", 70, {-100, 100}, "saturation; colours grow paler up to 50 and deeper from there"}
        .titled("Saturation")
        .undeclared();
constexpr auto kHighLight = Param<float>{"u_highLight", 0, {-100, 100}, "highlights, on the GPU only"}
                                .titled("Highlights")
                                .undeclared();
constexpr auto kShadow =
    Param<float>{"u_shadow", 0, {-100, 100}, "shadows, on the GPU only"}.titled("Shadows").undeclared();
constexpr auto kWhiteLevel =
    Param<float>{"u_whiteLevel", 0, {-100, 100}, "white level, on the GPU only"}.undeclared();
constexpr auto kBlackLevel =
    Param<float>{"u_blackLevel", 0, {-100, 100}, "black level, on the GPU only"}.undeclared();
constexpr auto kVignetteAmount =
    Param<float>{"u_vignette_amount", -60, {-100, 100}, "vignette: darker below 0, brighter above"}
        .undeclared();
constexpr auto kVignetteFeather =
    Param<float>{"u_vignette_feather", 80, {0, 100}, "width of the vignette's edge"}.undeclared();
constexpr auto kVignetteHighlights =
    Param<float>{"u_vignette_highlights", 50, {0, 100}, "light left in the vignette; 50 changes nothing"}
        .undeclared();
constexpr auto kVignetteSize =
    Param<float>{"u_vignette_size", 60, {0, 100}, "size of the part that is left alone"}.undeclared();
constexpr auto kVignetteRoundness =
    Param<float>{"u_vignette_roundness", 30, {0, 100}, "shape: 0 as the picture, 100 a circle"}.undeclared();
constexpr auto kVignetteExposure =
    Param<float>{"u_vignette_exposure", 0, {-100, 100}, "exposure inside the vignette"}.undeclared();

constexpr const char* kRunTag = "CLightRoomPlusEffect::run";

class CLightRoomPlusEffect final : public CPureCEffect {
public:
    CLightRoomPlusEffect(u32 w, u32 h) : CPureCEffect(w, h)
    {
        declare(kClarity, kSharpen, kColorEnable, kResolution, kDehaze, kDistort, kDiffuse, kTemperature,
            kTint, kExposure, kBrightness, kContrast, kVibrance, kSaturation, kHighLight, kShadow,
            kWhiteLevel, kBlackLevel, kVignetteAmount, kVignetteFeather, kVignetteHighlights, kVignetteSize,
            kVignetteRoundness, kVignetteExposure);
        const float size[2] = {float(w), float(h)};
        setParamFloatArrayValue(kResolution.name, size, 2);
        declareVolatile(kResolution.name);
        scratch_.allocate(std::size_t(w) * h);
    }

    void init() override
    {
        if (preferredForm() == EffectForm::gpu)
            prepareGpu();
    }

    void run() override
    {
        CEffectImage* const source = getInputImage(0);
        if (!source)
            return;
        // Hosts get their own picture back without haze: it is cleared in place, before everything else.
        if (const float dehaze = get(kDehaze); dehaze != 0)
            haze_.apply(source->viewToChange(), dehaze);
        if (!drawColours()) {
            CPureCEffect::run();
        } else if (changesDetail()) {
            u8* const picture = getOutputImage()->viewToChange().bytes();
            processFrame(picture, picture);
        }
    }

    void processFrame(const u8* src, u8* dst) override
    {
        // The picture changes places with the scratch memory once per step that cannot work in place; it
        // starts where it will end up in dst.
        const float distort = get(kDistort);
        const bool sharpens = get(kSharpen) != 0 && scratch_;
        const bool distorts = distort != 0 && scratch_ && lens_.prepare(distort, extent());
        pixels::View picture = output(dst);
        pixels::View other(reinterpret_cast<u8*>(scratch_.data()), extent());
        if (sharpens != distorts)
            std::swap(picture, other);

        // Where src and dst are one image, the colour steps are left out: they have no source to read.
        if (get(kColorEnable) != 0 && src != dst)
            colour_.apply(colourValues(), input(src), picture);
        else
            pixels::rows::copy(input(src), picture);
        if (scratch_)
            lightroom::clarity(picture, other, get(kClarity));
        if (sharpens) {
            lightroom::sharpen(picture, other, get(kSharpen));
            std::swap(picture, other);
        }
        if (distorts) {
            lens_.apply(picture, other);
            std::swap(picture, other);
        }
        if (const float amount = get(kDiffuse); amount != 0)
            lightroom::diffuse(picture, amount);
    }

private:
    void prepareGpu()
    {
        prepared_ = true;
        gpu_ = GpuEffect::create();
        if (!gpu_)
            return;
        gpu_->setShaderSource(lightroom::kColourShader, true, true);
        gpu_->setSize(width(), height());
        const auto driver = graphics().capabilities().driver;
        graphics().log("GL version is: " + std::to_string(driver.major) + "." + std::to_string(driver.minor)
            + "." + std::to_string(driver.release) + "." + std::to_string(driver.build));
        useCpuColour_ = driver.major < 3 || (driver.major == 3 && driver.minor < 2);
        if (driver.major <= 2)
            graphics().log("GL version is too low, Program requires OpenGL 2.0 or higherra. Please "
                           "upgrade the driver of your video card!");
        else if (useCpuColour_)
            graphics().log("Using C algorithm to running!");
    }

    /// Whether this frame is to be drawn. What earlier frames asked for does not count: clips are made in
    /// parts.
    bool prefersGpu()
    {
        const auto form = preferredForm();
        const auto stepsOfGpu = [this] {
            return get(kVibrance) != 0 || get(kHighLight) != 0 || get(kShadow) != 0 || get(kWhiteLevel) != 0
                || get(kBlackLevel) != 0;
        };
        return form == EffectForm::gpu || (form == EffectForm::completeOnCpu && stepsOfGpu());
    }

    /// The colour steps on the GPU. @return false when the CPU has to do them
    bool drawColours()
    {
        if (get(kColorEnable) == 0 || !prefersGpu() || !graphics().available())
            return false;
        if (!prepared_)
            prepareGpu();
        if (useCpuColour_)
            return false;
        boundInputs_.bind(*gpu_.get(), *this, inputs());
        setUniforms(*gpu_.get(), *this, kRunTag);
        if (gpu_.draw(*getOutputImage()))
            return true;
        logging::info(kRunTag, "Run filter with GPU failed, use C.");
        useCpuColour_ = true;
        return false;
    }

    bool changesDetail()
    {
        return get(kClarity) != 0 || get(kSharpen) != 0 || get(kDistort) != 0 || get(kDiffuse) != 0;
    }

    lightroom::ColourValues colourValues()
    {
        return {
            .temperature = get(kTemperature),
            .tint = get(kTint),
            .exposure = get(kExposure),
            .brightness = get(kBrightness),
            .contrast = get(kContrast),
            .saturation = get(kSaturation),
            .vignette =
                {
                    .amount = get(kVignetteAmount),
                    .feather = get(kVignetteFeather),
                    .highlights = get(kVignetteHighlights),
                    .size = get(kVignetteSize),
                    .roundness = get(kVignetteRoundness),
                    .exposure = get(kVignetteExposure),
                },
        };
    }

    GpuEffect gpu_;
    BoundInputs boundInputs_;
    bool prepared_ = false;
    bool useCpuColour_ = true; ///< for good, once the GPU has been prepared
    lightroom::ColourSteps colour_;
    lightroom::HazeRemoval haze_;
    lightroom::LensMap lens_;
    pixels::Buffer<pixels::Bgra> scratch_; ///< empty without memory: steps that need it are left out
};

const Registration<CLightRoomPlusEffect> registered{{
    .guid = "CB87BAF6-5462-4877-BE55-C2A95D8FAF2A",
    .name = "light-room",
    .title = "Light Room",
    .family = "colour",
    .summary = "White balance, exposure, contrast, saturation and vignette, with clarity, sharpness, lens "
               "distortion, glow and haze removal.",
    .writesInput = kDehaze.name,
}};

} // namespace
} // namespace KEXSDK
