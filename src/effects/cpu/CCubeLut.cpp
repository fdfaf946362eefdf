// Recolours a picture through a three-dimensional lookup table from a file.
#include "core/Log.h"
#include "effects/gpu/GpuEffect.h"
#include "effects/gpu/preferredForm.h"
#include "effects/gpu/uniforms.h"
#include "effects/lut/LutTable.h"
#include "effects/lut/lutShader.h"
#include "graphics/GraphicsService.h"
#include "lut/LutFile.h"
#include "lut/lutTiles.h"
#include "model/CRowEffect.h"
#include "model/EffectRegistry.h"
#include "pixels/rows.h"
#include "platform/CriticalSection.h"
#include "text/Text.h"

#include <fstream>
#include <optional>

namespace KEXSDK {
namespace {

constexpr auto kCubeLutFile =
    PathParam{"CubeLutFile", "lookup table, a .cube or .3dl file"}.titled("Lookup Table");
constexpr const char* kSetterTag = "CCubeLut::setParamVariant";

class CCubeLut final : public CRowEffect {
public:
    CCubeLut(u32 w, u32 h) : CRowEffect(w, h) { declare(kCubeLutFile); }

    /// A table file is read at once; the answer is whether it was. One thread may store such files while
    /// another runs the node.
    bool setParamVariant(const char* name, std::unique_ptr<ParamVariant>& value) override
    {
        if (std::string_view(name) != kCubeLutFile.name)
            return CRowEffect::setParamVariant(name, value);
        if (!value || !value->holds(ParamType::filePath) || !value->value.text
            || !load(text::utf8(value->path())))
            return false;
        const platform::MyCSingleLock lock(lock_);
        return CRowEffect::setParamVariant(name, value);
    }

    /// Evaluation asks here whether the node is enabled, perhaps while the first file is being stored.
    int getParamInt(const char* name, int defaultValue) override
    {
        const platform::MyCSingleLock lock(lock_);
        return CRowEffect::getParamInt(name, defaultValue);
    }

    void run() override
    {
        const platform::MyCSingleLock lock(lock_);
        if (!drawOnGpu())
            CRowEffect::run();
    }

    bool beginRows() override
    {
        rowsLock_.emplace(lock_);
        if (!drawsOnGpu() && CRowEffect::beginRows())
            return true;
        rowsLock_.reset();
        return false;
    }

    /// With the lock held by the evaluating thread.
    void processRows(pixels::ConstView src, pixels::View dst, int) const override
    {
        if (table_.size() > 0)
            table_.apply(src, dst);
        else
            pixels::rows::copy(src, dst);
    }

    void endRows() override { rowsLock_.reset(); }

private:
    /// With the lock held: whether a frame should go to the GPU.
    bool drawsOnGpu() const
    {
        return lut::tileLayoutOf(table_.size()) && preferredForm() == EffectForm::gpu
            && graphics().available();
    }

    /// With the lock held. @return false when the CPU has to do it
    bool drawOnGpu()
    {
        const CEffectImage* const source = getInputImage(0);
        if (!source || !drawsOnGpu())
            return false;
        if (lookup_.pixels.empty())
            prepareGpu(*lut::tileLayoutOf(table_.size()));
        if (!gpu_ || !gpu_->problem().empty())
            return false;
        bindInput(*gpu_.get(), *this, *source, 0);
        setUniforms(*gpu_.get(), *this, "CCubeLut::run");
        return gpu_.draw(*getOutputImage());
    }

    void prepareGpu(const lut::TileLayout& layout)
    {
        lookup_ = lut::lookupTexture(table_, layout);
        gpu_ = {};
        gpu_ = GpuEffect::create();
        if (!gpu_)
            return;
        gpu_->setSize(width(), height());
        gpu_->setShaderSource(lut::lookupShader(layout).c_str(), true, true);
        gpu_->setInputPixels(lookup_.pixels.data(), lookup_.width, lookup_.height, 1);
        setParamIntValue("mSample1", 1);
    }

    bool load(const std::string& path)
    {
        if (path.find('.') == std::string::npos)
            return refuse(path, 0, "the name has no extension");
        std::ifstream stream;
        if (!lut::openLut(path, stream)) {
            // The one refusal that keeps the previous table.
            logRefusal(path, 0, "the file cannot be opened");
            return false;
        }
        lut::LutFile file;
        switch (lut::formatOf(path)) {
        case lut::LutFormat::cube:
            file = lut::parseCube(stream);
            break;
        case lut::LutFormat::threeDl:
            file = lut::parse3dl(stream);
            break;
        case lut::LutFormat::none:
            return refuse(path, 0, "the extension is neither .cube nor .3dl");
        }
        if (file.status != lut::LutStatus::success)
            return refuse(
                path, file.line, file.reason + " (status " + std::to_string(int(file.status)) + ")");

        const platform::MyCSingleLock lock(lock_);
        table_.set(file);
        lookup_ = {};
        gpu_ = {};
        const bool drawn = lut::tileLayoutOf(file.size) && preferredForm() == EffectForm::gpu;
        logging::info(
            kSetterTag, (drawn ? "Render 3D lut with GPU -> " : "Render 3D lut with c algorithm -> ") + path);
        return true;
    }

    bool refuse(const std::string& path, int line, const std::string& reason)
    {
        logRefusal(path, line, reason);
        const platform::MyCSingleLock lock(lock_);
        table_.clear();
        return false;
    }

    static void logRefusal(const std::string& path, int line, const std::string& reason)
    {
        const std::string place = line > 0 ? path + ", line " + std::to_string(line) : path;
        logging::info(kSetterTag, "Refused 3D lut [" + place + "]: " + reason);
    }

    platform::CriticalSection lock_; ///< guards everything below, and the stored file
    lut::LutTable table_;
    lut::LookupTexture lookup_; ///< empty until the GPU needs it; its effect reads it on every frame
    GpuEffect gpu_;
    std::optional<platform::MyCSingleLock> rowsLock_; ///< from the first to the last row of a frame
};

const Registration<CCubeLut> registered{{
    .guid = "BCEC4998-CB63-4c7d-9DCC-B76E6ACC6BB8",
    .name = "cube-lut",
    .title = "Cube LUT",
    .family = "colour",
    .summary = "Recolours the picture through a three-dimensional lookup table from a .cube or .3dl file.",
    .byRows = true,
}};

} // namespace
} // namespace KEXSDK
