// Plays bytes as calls of the host library's C interface: in any order that the contract allows, with
// arguments as wild as bytes can make them. Handles are always null or alive, and pictures that can be have
// the memory that they describe.
#pragma once

#include "EffectEngine/EffectEngineHost.h"
#include "fuzz/targets/Bytes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace fuzz {

class CallPlayer {
public:
    /// Opens the library and writes some files into a new directory. Ends the process when that fails.
    /// @param resources  the resource directory
    explicit CallPlayer(std::string resources);
    ~CallPlayer();
    CallPlayer(const CallPlayer&) = delete;
    CallPlayer& operator=(const CallPlayer&) = delete;

    /// Plays until the bytes are used up, then releases everything.
    /// @return what the library did wrong, or nothing
    std::string play(std::span<const unsigned char> bytes);

    std::uint64_t calls() const { return calls_; }
    std::uint64_t frames() const { return frames_; } ///< that were run with success
    std::uint64_t failures() const { return failures_; }

private:
    struct Run {
        EffectHostRun* handle = nullptr;
        int width = 0;
        int height = 0;
        std::size_t inputs = 0;
        bool gpu = false;
        std::vector<std::string> ids; ///< of the nodes, with their effects
        std::vector<const EffectHostEffect*> effects;
    };

    /// Notes and checks a call's result: a known code, never an internal fault, and words in one line.
    bool succeeded(EffectHostResult result, const char* call);
    void wrong(const std::string& words);

    void openAndClose(Bytes& in);
    void ask(Bytes& in);
    void createLook(Bytes& in);
    void changeLook(Bytes& in);
    void describe(EffectHostLook* look);
    void startRun(Bytes& in);
    void setAndGet(Bytes& in);
    void setCurve(Bytes& in);
    void runFrame(Bytes& in);
    void releaseOne(Bytes& in);
    void releaseAll();

    std::string effectWord(Bytes& in) const;
    std::string parameterWord(Bytes& in, const EffectHostEffect* effect) const;
    std::string valueWord(Bytes& in) const;
    std::string fileWord(Bytes& in) const;
    std::string graphText(Bytes& in) const;

    std::string resources_;
    std::string directory_;
    std::vector<const EffectHostEffect*> onCpu_;
    std::vector<const EffectHostEffect*> onGpu_;
    int opened_ = 1;
    std::array<EffectHostLook*, 3> looks_{};
    std::array<Run, 3> runs_{};
    std::string fault_;
    std::uint64_t calls_ = 0;
    std::uint64_t frames_ = 0;
    std::uint64_t failures_ = 0;
};

} // namespace fuzz
