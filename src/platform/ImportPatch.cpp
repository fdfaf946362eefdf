// Import slots of an ELF object, found through its dynamic section.
#include "platform/ImportPatch.h"

#include <dlfcn.h>
#include <elf.h>
#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>

namespace platform {

namespace {

#if defined(__x86_64__)
constexpr unsigned kJumpSlot = R_X86_64_JUMP_SLOT;
constexpr unsigned kGlobalData = R_X86_64_GLOB_DAT;
#elif defined(__aarch64__)
constexpr unsigned kJumpSlot = R_AARCH64_JUMP_SLOT;
constexpr unsigned kGlobalData = R_AARCH64_GLOB_DAT;
#else
constexpr unsigned kJumpSlot = ~0u; // unknown processor: no slot is found, and the caller goes without
constexpr unsigned kGlobalData = ~0u;
#endif

struct DynamicSection {
    const ElfW(Sym) * symbols = nullptr;
    const char* strings = nullptr;
    const ElfW(Rela) * relocations[2] = {};
    std::size_t bytes[2] = {};

    explicit DynamicSection(const link_map& object)
    {
        // glibc has turned the section's offsets into addresses on most processors, not on all.
        const auto address = [&](ElfW(Addr) value) {
            return value < object.l_addr ? value + object.l_addr : value;
        };
        for (const ElfW(Dyn)* entry = object.l_ld; entry->d_tag != DT_NULL; ++entry)
            switch (entry->d_tag) {
            case DT_SYMTAB:
                symbols = reinterpret_cast<const ElfW(Sym)*>(address(entry->d_un.d_ptr));
                break;
            case DT_STRTAB:
                strings = reinterpret_cast<const char*>(address(entry->d_un.d_ptr));
                break;
            case DT_JMPREL:
                relocations[0] = reinterpret_cast<const ElfW(Rela)*>(address(entry->d_un.d_ptr));
                break;
            case DT_PLTRELSZ:
                bytes[0] = entry->d_un.d_val;
                break;
            case DT_RELA:
                relocations[1] = reinterpret_cast<const ElfW(Rela)*>(address(entry->d_un.d_ptr));
                break;
            case DT_RELASZ:
                bytes[1] = entry->d_un.d_val;
                break;
            default:
                break;
            }
    }
};

/// The memory of the object that the loader makes read-only after relocation.
std::string_view relocatedReadOnly(const link_map& object)
{
    struct Search {
        ElfW(Addr) base;
        std::string_view found;
    } search{object.l_addr, {}};
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* data) {
            auto& wanted = *static_cast<Search*>(data);
            if (info->dlpi_addr != wanted.base)
                return 0;
            for (int i = 0; i < info->dlpi_phnum; ++i)
                if (const auto& header = info->dlpi_phdr[i]; header.p_type == PT_GNU_RELRO)
                    wanted.found = {
                        reinterpret_cast<const char*>(info->dlpi_addr + header.p_vaddr), header.p_memsz};
            return 1;
        },
        &search);
    return search.found;
}

} // namespace

ImportPatch::ImportPatch(void* handle, const std::function<bool(std::string_view)>& wanted,
    const std::function<void*(std::string_view)>& replacement)
{
    link_map* object = nullptr;
    if (dlinfo(handle, RTLD_DI_LINKMAP, &object) != 0 || !object)
        return;
    const DynamicSection dynamic(*object);
    if (!dynamic.symbols || !dynamic.strings)
        return;
    for (int table = 0; table < 2; ++table) {
        const auto* const first = dynamic.relocations[table];
        const std::size_t count = first ? dynamic.bytes[table] / sizeof *first : 0;
        for (std::size_t i = 0; i < count; ++i) {
            const unsigned type = ELF64_R_TYPE(first[i].r_info);
            if (type != kJumpSlot && type != kGlobalData)
                continue;
            const std::string_view name =
                dynamic.strings + dynamic.symbols[ELF64_R_SYM(first[i].r_info)].st_name;
            if (!wanted(name))
                continue;
            void** const address = reinterpret_cast<void**>(object->l_addr + first[i].r_offset);
            slots_.push_back({address, *address, replacement(name)});
            if (!slots_.back().replacement && missing_.empty())
                missing_ = name;
        }
    }
    readOnly_ = relocatedReadOnly(*object);
}

bool ImportPatch::apply() const { return complete() && write(&Slot::replacement); }

bool ImportPatch::undo() const { return write(&Slot::original); }

bool ImportPatch::write(void* Slot::*value) const
{
    if (slots_.empty())
        return false;
    const auto [low, high] = std::ranges::minmax(slots_, {}, &Slot::address);
    const std::uintptr_t page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const std::uintptr_t begin = reinterpret_cast<std::uintptr_t>(low.address) / page * page;
    const std::uintptr_t end = (reinterpret_cast<std::uintptr_t>(high.address + 1) + page - 1) / page * page;
    if (mprotect(reinterpret_cast<void*>(begin), end - begin, PROT_READ | PROT_WRITE) != 0)
        return false;
    for (const Slot& slot : slots_)
        *slot.address = slot.*value;

    // Protects whole pages only, as the loader does: a page shared with writable data stays writable.
    const auto start = reinterpret_cast<std::uintptr_t>(readOnly_.data());
    const std::uintptr_t protectBegin = std::max(begin, start / page * page);
    const std::uintptr_t protectEnd = std::min(end, (start + readOnly_.size()) / page * page);
    if (protectBegin < protectEnd)
        mprotect(reinterpret_cast<void*>(protectBegin), protectEnd - protectBegin, PROT_READ);
    return true;
}

} // namespace platform
