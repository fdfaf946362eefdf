// Start and end of the engine, and the creation of effects.
#include "engine/CEffectEngine.h"

#include "EffectTovOgre/TovOgreRenderThread.h"
#include "core/Log.h"
#include "core/resourceDirectory.h"
#include "effects/am/library/CSimpleAmEffect.h"
#include "effects/am/library/amCatalog.h"
#include "effects/shader/CSimpleShaderEffect.h"
#include "effects/transitions/transitionTable.h"
#include "engine/environment.h"
#include "engine/seededRandom.h"
#include "model/CSimpleEffect.h"

namespace KEXSDK {

CEffectEngine::CEffectEngine() = default;
CEffectEngine::~CEffectEngine() = default;

bool CEffectEngine::initialize(const char* resourceDir, const char* logDir)
{
    resourceDir_ = resourceDir;
    core::setResourceDirectory(resourceDir_);
    logDir_ = logDir ? logDir : "";
    if (logDir && logging::open(logDir_ + "/EffectEngine.log"))
        logging::info("CEffectEngine::initialize", "TovEffectEngine version: 1, 1, 4, 0");
    seededRandom::set(environment::seed());
    startsLater_ = environment::graphicsWhenNeeded();
    const bool mayDraw = initOgreEnvirenment();
    preferForm(environment::chooseForm());
    if (!startsLater_)
        preferredForm(); // chosen, and in the log, from the start
    transitions::transitionMgrInit();
    initAmEffects();
    if (mayDraw) {
        initShaderEffects();
        initColorTableShaderEffects();
        initShaderTransitions();
    }
    return true;
}

bool CEffectEngine::initOgreEnvirenment()
{
    constexpr const char* kTag = "CEffectEngine::initOgreEnvirenment";
    logging::info(kTag, "initOgreEnvirenment");
    const char* const resources = resourceDir_.c_str();
    if (startsLater_) {
        renderThread_ = std::make_unique<TovOgreRenderThread>(
            TovOgreRenderThread::WhenNeeded{}, resources, resources, logDir_.c_str());
        return true;
    }
    renderThread_ = std::make_unique<TovOgreRenderThread>(resources, resources, logDir_.c_str());
    return canDraw();
}

bool CEffectEngine::canDraw() const
{
    const bool available = graphics().available();
    if (!available)
        logging::warning("CEffectEngine::initOgreEnvirenment", "Ogre envirenment init failed.");
    return available;
}

void CEffectEngine::initAmEffects()
{
    for (const auto& [effect, family] : amCatalog()) {
        amIdByGuid_[effect->entry.guid] = effect->id;
        if (effect->texture)
            amTextureByGuid_[effect->entry.guid] = effect->texture;
    }
}

void CEffectEngine::initShaderEffects()
{
    logging::info("CEffectEngine::initShaderEffects", "Load shader effects.");
    shader::scanDescriptors(resourceDir_ + shader::kShaderDirectory, shaderDescriptorByGuid_);
}

void CEffectEngine::initColorTableShaderEffects()
{
    logging::info("CEffectEngine::initColorTableShaderEffects", "Load color table lookup shader effects.");
    shader::scanDescriptors(resourceDir_ + shader::kLookupDirectory, shaderDescriptorByGuid_);
}

void CEffectEngine::initShaderTransitions()
{
    logging::info("CEffectEngine::initShaderTransitions", "Load shader transitions.");
    shader::scanDescriptors(resourceDir_ + shader::kTransitionDirectory, shaderDescriptorByGuid_);
}

void CEffectEngine::unInitialize()
{
    constexpr const char* kTag = "CEffectEngine::unInitialize";
    logging::info(kTag, "Uninitialze begin.");
    renderThread_.reset();
    logging::info(kTag, "Uninitialze end.");
}

void CEffectEngine::createEffectFromGUID(const char* guid, u32 width, u32 height, CSimpleEffect** out)
{
    constexpr const char* kTag = "CEffectEngine::createEffectFromGUID";
    *out = nullptr;
    Node node;
    for (const auto source : {&CEffectEngine::makeShaderEffect, &CEffectEngine::makeAmEffect,
             &CEffectEngine::makeRegistered, &CEffectEngine::makeTransition}) {
        node = (this->*source)(guid, width, height);
        if (node)
            break;
    }
    if (!node) {
        logging::info(kTag, std::string("Can't find filter GUID [") + guid + "]");
        return;
    }
    logging::info(kTag, std::string("Create Filter: [") + guid + "]");
    node->init();
    *out = node.release();
}

CEffectEngine::Node CEffectEngine::makeShaderEffect(const char* guid, u32 width, u32 height) const
{
    const auto descriptor = shaderDescriptorByGuid_.find(std::string_view(guid));
    if (descriptor == shaderDescriptorByGuid_.end() || (startsLater_ && !canDraw()))
        return nullptr;
    return std::make_unique<CPaticalUniverseEffect>(width, height, descriptor->second);
}

CEffectEngine::Node CEffectEngine::makeAmEffect(const char* guid, u32 width, u32 height) const
{
    const auto id = amIdByGuid_.find(std::string_view(guid));
    if (id == amIdByGuid_.end())
        return nullptr;
    const auto texture = amTextureByGuid_.find(std::string_view(guid));
    return std::make_unique<CSimpleAmEffect>(
        id->second, width, height, texture == amTextureByGuid_.end() ? nullptr : texture->second.c_str());
}

CEffectEngine::Node CEffectEngine::makeRegistered(const char* guid, u32 width, u32 height) const
{
    return Node(EffectRegistry::instance().create(guid, width, height));
}

CEffectEngine::Node CEffectEngine::makeTransition(const char* guid, u32 width, u32 height) const
{
    return transitions::createTransition(width, height, guid);
}

} // namespace KEXSDK
