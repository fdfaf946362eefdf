// The process-wide engine: directories, start-up order, and the way from a GUID to a filter node.
#pragma once

#include "descriptors/descriptorFiles.h"
#include "model/EffectRegistry.h"

#include <map>
#include <memory>
#include <string>

namespace KEXSDK {

class TovOgreRenderThread;

class CSimpleEffect;

/// One per process, made by InitializeEngine. Its tables are written during initialize() and only read
/// afterwards; all operations run on the host's calling thread.
class CEffectEngine {
public:
    CEffectEngine();
    /// Frees the tables. unInitialize() comes first and ends the render thread.
    virtual ~CEffectEngine();

    /// Opens the log, reads the environment variables, starts the GPU environment, unless that waits to be
    /// needed, and fills the tables. A GPU that cannot be brought up is one warning line, not a failure;
    /// shader effects are unknown then.
    /// @param resourceDir  prefix of effect data, with its trailing separator
    /// @param logDir       directory of "EffectEngine.log", or null for no log file
    /// @return always true
    bool initialize(const char* resourceDir, const char* logDir);

    /// Ends the render thread with its effects and the graphics system.
    void unInitialize();

    /// Writes a new node, initialised and owned by the caller, to *out, or null when no source knows the
    /// GUID. Throws std::bad_alloc.
    void createEffectFromGUID(const char* guid, u32 width, u32 height, CSimpleEffect** out);

private:
    using Node = std::unique_ptr<CSimpleEffect>;

    /// @return false when nothing can be drawn. A system that starts when it is needed counts as one that
    /// can.
    bool initOgreEnvirenment();
    bool canDraw() const;
    void initAmEffects();
    // Each of these three reads one directory of descriptor files.
    void initShaderEffects();
    void initColorTableShaderEffects();
    void initShaderTransitions();

    // The sources of effects, in the order in which they are asked; each answers null for a GUID it does not
    // know.
    Node makeShaderEffect(const char* guid, u32 width, u32 height) const;
    Node makeAmEffect(const char* guid, u32 width, u32 height) const;
    Node makeRegistered(const char* guid, u32 width, u32 height) const;
    Node makeTransition(const char* guid, u32 width, u32 height) const;

    std::unique_ptr<TovOgreRenderThread> renderThread_;
    std::string resourceDir_;
    std::string logDir_;
    bool startsLater_ = false; ///< the graphics system, when it is needed
    shader::DescriptorMap shaderDescriptorByGuid_;
    std::map<std::string, i32, std::less<>> amIdByGuid_;
    std::map<std::string, std::string, std::less<>> amTextureByGuid_;
};

} // namespace KEXSDK
