// Fuzzer of the host library's C interface. EFFECTENGINE_RESOURCES names the resource directory.
#include "fuzz/targets/CallPlayer.h"

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    static fuzz::CallPlayer player(
        std::getenv("EFFECTENGINE_RESOURCES") ? std::getenv("EFFECTENGINE_RESOURCES") : ".");
    const std::string fault = player.play({data, size});
    if (!fault.empty()) {
        std::fprintf(stderr, "%s\n", fault.c_str());
        __builtin_trap();
    }
    return 0;
}
