// The list of factories, and class names as the source spells them.
#include "core/DynClass.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>

namespace DYN_CLASS {

namespace {

// Constant-initialised: factories of other units link themselves before this unit's turn could come.
constinit CFactoryManager* head = nullptr;
constinit unsigned factoryCount = 0;

constexpr std::string_view kEngineNamespace = "KEXSDK::";

} // namespace

CFactoryManager::CFactoryManager(CAbstractFactory& factory) : factory_(&factory), next_(head)
{
    head = this;
    ++factoryCount;
}

CFactoryManager::~CFactoryManager()
{
    for (CFactoryManager** link = &head; *link; link = &(*link)->next_)
        if (*link == this) {
            *link = next_;
            break;
        }
    if (--factoryCount == 0)
        head = nullptr;
}

unsigned CFactoryManager::count() { return factoryCount; }

bool hasClassName(const std::type_info& type, std::string_view name)
{
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> own(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
    if (!own)
        return false;
    std::string_view fullName = own.get();
    if (fullName.starts_with(kEngineNamespace))
        fullName.remove_prefix(kEngineNamespace.size());
    return name == fullName;
}

KEXSDK::TovEffectBase* create(const char* className)
{
    for (const CFactoryManager* link = head; link; link = link->next_)
        if (KEXSDK::TovEffectBase* const made = link->factory_->create(className))
            return made;
    return nullptr;
}

} // namespace DYN_CLASS
