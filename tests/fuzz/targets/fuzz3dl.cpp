// Fuzzer of the 3DL parser.
#include "fuzz/examine.h"

#include <sstream>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    std::istringstream stream(std::string(reinterpret_cast<const char*>(data), size));
    if (fuzz::faultOf(lut::parse3dl(stream)))
        __builtin_trap();
    return 0;
}
