// How clips of more than 8 bits a channel, and of high dynamic range, become the engine's pixels.
#pragma once

namespace CLI {
class App;
}

namespace tool {

/// The curve by which light of a high dynamic range comes into the ordinary one. The names are those of the
/// library's filter.
enum class ToneMapping { none, hable, mobius, reinhard, gamma, linear, clip };

struct DepthOptions {
    ToneMapping toneMapping = ToneMapping::none; ///< of clips in PQ or HLG; others stay as they are
    bool dither = false;                         ///< else each sample is rounded
};

/// Adds --tonemap and --dither to a verb for clips.
void addDepthOptions(CLI::App& command, DepthOptions& options);

/// The name of the curve on the command line.
const char* nameOf(ToneMapping curve);

} // namespace tool
