// The manifest of a rendering run: a hash for each finished frame, by which a killed run can go on.
#pragma once

#include "effectengine/media/ffmpeg.h"

#include <json/value.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <optional>

namespace tool::media {

/// A finished frame.
struct RenderedFrame {
    long long number = 0; ///< in the clip, from 0
    double seconds = 0;   ///< since the clip's first frame
    std::string file;     ///< name within the manifest's directory
    std::string sha256;   ///< of the pixels: red, green, blue, alpha, top row first
    bool damaged = false; ///< in the clip; the picture shows what could be decoded
};

/// A JSON file that appears when all frames are complete. Until then a journal beside it holds a line per
/// frame, so whatever ends the run loses nothing but the frames under way.
class Manifest {
public:
    /// @param settings  everything that the pixels depend on
    Manifest(std::filesystem::path file, const Json::Value& settings);

    /// Takes over the frames that an earlier run noted. Throws ToolError when it ran with other settings, or
    /// when its notes cannot be read.
    void load();

    const std::map<long long, RenderedFrame>& frames() const { return frames_; }
    void drop(long long frame) { frames_.erase(frame); }

    /// Begins the journal with the settings and the frames known so far. Throws ToolError.
    void begin();
    /// Notes a frame whose file is complete. Throws ToolError.
    void add(const RenderedFrame& frame);
    /// Writes the manifest and removes the journal. Throws ToolError.
    void finish();

private:
    void loadManifest();
    void loadJournal();
    void checkSettings(const Json::Value& before) const;
    void note(const Json::Value& line);

    std::filesystem::path file_;
    std::filesystem::path journalFile_;
    Json::Value settings_;
    std::map<long long, RenderedFrame> frames_;
    std::ofstream journal_;
};

/// SHA-256 of an RGBA frame's pixels, as `ffmpeg -f framehash -pix_fmt rgba` tells it.
std::string pixelHash(const AVFrame& rgba);

} // namespace tool::media
