// Random calls of the host library's C interface that any compiler's sanitizers can watch:
//     hostCalls CALLS SEED RESOURCES
// Calls come in sequences, each from a seed of its own: what goes wrong in one happens again with
// `hostCalls 1 SEED_OF_THE_SEQUENCE RESOURCES`.
#include "fuzz/targets/CallPlayer.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#include <sanitizer/common_interface_defs.h>
#endif

namespace {

constexpr std::size_t kBytes = 4096; // of a sequence

unsigned long currentSeed = 0;

[[maybe_unused]] void sayWhere() { std::fprintf(stderr, "in the sequence with seed %lu\n", currentSeed); }

double secondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::fprintf(stderr, "usage: hostCalls CALLS SEED RESOURCES\n");
        return 2;
    }
    const std::uint64_t wanted = std::strtoull(argv[1], nullptr, 10);
    currentSeed = std::strtoul(argv[2], nullptr, 10);
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    __sanitizer_set_death_callback(sayWhere);
#endif
    fuzz::CallPlayer player(argv[3]);
    const auto start = std::chrono::steady_clock::now();
    double longest = 0;
    unsigned long longestSeed = 0;
    for (; player.calls() < wanted; ++currentSeed) {
        std::mt19937 random{std::uint32_t(currentSeed)};
        std::vector<unsigned char> bytes(kBytes);
        for (unsigned char& byte : bytes)
            byte = static_cast<unsigned char>(random() >> 24);
        const auto begin = std::chrono::steady_clock::now();
        const std::string fault = player.play(bytes);
        if (!fault.empty()) {
            std::fprintf(stderr, "%s\n", fault.c_str());
            sayWhere();
            return 1;
        }
        if (secondsSince(begin) > longest) {
            longest = secondsSince(begin);
            longestSeed = currentSeed;
        }
    }
    std::printf("%lu calls, %lu of them refused, %lu frames, %.0f calls a second; the longest sequence took "
                "%.2f s (%lu)\n",
        static_cast<unsigned long>(player.calls()), static_cast<unsigned long>(player.failures()),
        static_cast<unsigned long>(player.frames()), double(player.calls()) / secondsSince(start), longest,
        longestSeed);
    return player.frames() == 0; // then the calls did not get far
}
