// A track of sound that comes from a filter graph and is encoded.
#pragma once

#include "effectengine/media/SideTrack.h"

#include <functional>

namespace tool::media {

class EncodedTrack final : public SideTrack {
public:
    /// Builds the sources and filters in the graph and answers the one whose output is to be encoded.
    using Build = std::function<AVFilterContext*(AVFilterGraph&)>;

    /// Encodes in the container's own codec for sound. Throws std::runtime_error.
    EncodedTrack(const Build& build, const AVOutputFormat& container, const std::filesystem::path& outputName,
        TrackMarks marks = {});

    /// Has a function called when a source of the graph, an "abuffer", must be given more; it answers false
    /// when there is none now, and next() does, too.
    void feedWith(std::function<bool()> feed) { feed_ = std::move(feed); }

    const AVCodecParameters& parameters() const override { return *parameters_; }
    AVRational timeBase() const override { return encoder_->time_base; }
    bool next(AVPacket& packet) override;

private:
    Filters graph_;
    AVFilterContext* sink_ = nullptr;
    std::function<bool()> feed_;
    Codec encoder_;
    Parameters parameters_;
    Frame frame_;
};

/// Makes a filter of the graph with options given by name. Throws std::runtime_error.
AVFilterContext* addFilter(AVFilterGraph& graph, const char* kind, const char* name,
    const std::vector<std::pair<std::string, std::string>>& options);

/// Connects output 0 of one to an input of the other. Throws std::runtime_error.
void connect(AVFilterContext* from, AVFilterContext* to, unsigned input = 0);

} // namespace tool::media
