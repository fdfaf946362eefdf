// The named, typed parameters of every node.
#pragma once

#include "model/ParamVariant.h"

#include <atomic>
#include <map>
#include <string>
#include <vector>

namespace KEXSDK {

/// Names are compared byte by byte and enumerated in that order. One thread uses a node at a time.
class CEffectBaseParam {
public:
    CEffectBaseParam() = default;
    CEffectBaseParam(const CEffectBaseParam&) = delete;
    CEffectBaseParam& operator=(const CEffectBaseParam&) = delete;
    virtual ~CEffectBaseParam();

    virtual u32 GetParamCount();

    /// Copies the name at `index` with its NUL into `name`, which has room for the longest name.
    /// False when index >= count.
    virtual bool enumParamName(u32 index, char* name);

    /// Stores a value under a name. Override it when a parameter needs work at once, and call this one for
    /// the storing. While paramsChanged is 0, a value of another type than the stored one is refused with
    /// one log line, and a different value raises paramsChanged; volatile names are never compared.
    /// @param value  taken (left null) when the answer is true, otherwise still the caller's
    /// @return false for a null or refused value
    virtual bool setParamVariant(const char* name, std::unique_ptr<ParamVariant>& value);

    // Typed setters: make a variant and hand it to setParamVariant. A path is a NUL-terminated wide string.
    virtual bool setParamFilePathValue(const char* name, const wchar_t* path);
    virtual bool setParamFloatArrayValue(const char* name, const float* values, int count);
    virtual bool setParamIntArrayValue(const char* name, const int* values, int count);
    virtual bool setParamFloatValue(const char* name, float value);
    virtual bool setParamIntValue(const char* name, int value);

    /// The stored value, valid until the next store under that name; null and false without one.
    virtual bool getParamVariant(const char* name, ParamVariant** out);

    /// Array getters: on entry *count is the room in `values`, in elements; on return the stored count.
    /// min(room, stored) elements are copied. False, writing nothing, when no such array is stored.
    virtual bool getParamIntArrayValue(const char* name, int* values, int* count);
    virtual bool getParamFloatArrayValue(const char* name, float* values, int* count);

    /// The stored number or, when it is missing or of another type, the default. The first two answer whether
    /// it is the stored one.
    virtual bool getParamIntValue(const char* name, int* value, int defaultValue);
    virtual bool getParamFloatValue(const char* name, float* value, float defaultValue);
    virtual float getParamFloat(const char* name, float defaultValue);
    virtual int getParamInt(const char* name, int defaultValue);

    /// What the node reads, in the order of declaration; the objects live at least as long as the node.
    const std::vector<const ParamInfo*>& described() const { return described_; }

protected:
    /// Constructors name their parameters here: each is remembered for tools, and stored with its initial
    /// value unless it is undeclared. The objects must outlive the node; most are constants.
    template <class... Params> void declare(const Params&... params) { (declareOne(params), ...); }

    /// Remembers a parameter for tools; stores nothing.
    void describe(const ParamInfo& param) { described_.push_back(&param); }

    /// Calls fn(name, value) for every stored parameter, in the order of names.
    template <class Fn> void forEachParam(Fn&& fn) const
    {
        for (const auto& [name, value] : parameters_)
            fn(name, *value);
    }

    /// Makes a name volatile: later changes of its value do not raise paramsChanged.
    void declareVolatile(const char* name);

    int get(const Param<int>& param) { return getParamInt(param.name, param.fallback); }
    float get(const Param<float>& param) { return getParamFloat(param.name, param.fallback); }
    /// The stored array, or an empty span.
    std::span<const float> get(const ArrayParam<float>& param);
    std::span<const i32> get(const ArrayParam<int>& param);

    /// Non-zero when a parameter was added or a non-volatile value changed since the last run. Read it at
    /// the start of a run to know whether tables must be rebuilt; evaluation clears it after the run.
    /// (Atomic, because effects that load files may be handed one while another thread evaluates them.)
    std::atomic<u32> paramsChanged = 0;

private:
    void declareOne(const ParamInfo& param);
    const ParamVariant* find(const char* name, ParamType type) const;

    std::map<std::string, std::unique_ptr<ParamVariant>, std::less<>> parameters_;
    std::map<std::string, u32, std::less<>> volatileParams_;
    std::vector<const ParamInfo*> described_;
};

} // namespace KEXSDK
