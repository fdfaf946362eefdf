// Redirects functions that one loaded object imports, and nobody else's.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// Import slots of a loaded object, chosen by name, each with the function that it held and its replacement.
class ImportPatch {
public:
    /// Looks through the object's imports; nothing is written yet.
    /// @param handle       from dlopen with RTLD_NOW, to stay open as long as the patch is used
    /// @param wanted       true for the names to redirect
    /// @param replacement  function for such a name, or null: there is none
    ImportPatch(void* handle, const std::function<bool(std::string_view)>& wanted,
        const std::function<void*(std::string_view)>& replacement);

    /// True when there are imports to redirect and each has its replacement.
    bool complete() const { return !slots_.empty() && missing_.empty(); }
    /// First wanted name without a replacement, empty when there is none.
    const std::string& missing() const { return missing_; }

    /// Points the slots at the replacements. False, with nothing changed, when the memory cannot be written.
    bool apply() const;
    /// Points the slots back at what they held.
    bool undo() const;

private:
    struct Slot {
        void** address;
        void* original;
        void* replacement;
    };

    bool write(void* Slot::*value) const;

    std::vector<Slot> slots_;
    std::string missing_;
    std::string_view readOnly_; ///< memory that the loader protected after it had relocated the object
};

} // namespace platform
