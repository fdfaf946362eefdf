// Creation of GPU effects by class name: each factory links itself into one process-wide list.
#pragma once

#include <string_view>
#include <typeinfo>

namespace KEXSDK {
class TovEffectBase;
}

namespace DYN_CLASS {

class CAbstractFactory {
public:
    /// A new object that the caller owns, or null when the name is not this factory's.
    virtual KEXSDK::TovEffectBase* create(const char* className) = 0;
    virtual ~CAbstractFactory() = default;
};

/// The link of one factory. Links are made and removed during static initialisation and at exit, so the list
/// has no lock; the newest factory stands first.
class CFactoryManager {
public:
    explicit CFactoryManager(CAbstractFactory& factory);
    CFactoryManager(const CFactoryManager&) = delete;
    CFactoryManager& operator=(const CFactoryManager&) = delete;
    virtual ~CFactoryManager();

    static unsigned count();

private:
    friend KEXSDK::TovEffectBase* create(const char* className);

    CAbstractFactory* factory_;
    CFactoryManager* next_;
};

/// True when the type is called exactly that, namespaces included: all but the engine's own one.
bool hasClassName(const std::type_info& type, std::string_view name);

template <class T> class CFactory : public CAbstractFactory {
public:
    KEXSDK::TovEffectBase* create(const char* className) override
    {
        return className && hasClassName(typeid(T), className) ? new T : nullptr;
    }

private:
    CFactoryManager link_{*this};
};

/// The first object that a factory of the list makes for the name, or null. The caller owns it.
KEXSDK::TovEffectBase* create(const char* className);

} // namespace DYN_CLASS
