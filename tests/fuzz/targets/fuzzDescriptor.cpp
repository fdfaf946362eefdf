// Fuzzer of the descriptor loader.
#include "fuzz/examineDescriptor.h"

#include <cstddef>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const auto descriptor = shader::parseDescriptor({reinterpret_cast<const char*>(data), size});
    if (descriptor && fuzz::faultOf(*descriptor))
        __builtin_trap();
    return 0;
}
