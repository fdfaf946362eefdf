// Copies of attachments, whose content stands in the header, and of covers, which are a packet.
#include "effectengine/media/AttachedTrack.h"

#include <algorithm>
#include <cstring>

namespace tool::media {

namespace {

bool isNamed(const Notes& notes, const char* name)
{
    return std::ranges::any_of(notes, [&](const auto& note) { return note.first == name; });
}

void name(Notes& notes, const char* name, const char* value)
{
    if (!isNamed(notes, name))
        notes.push_back({name, value});
}

} // namespace

AttachedTrack::AttachedTrack(const AVStream& stream)
    : SideTrack(marksOf(stream)),
      parameters_(copyOf(*stream.codecpar)),
      picture_(makePacket())
{
    if (isCover(stream))
        require(av_packet_ref(picture_.get(), &stream.attached_pic), "cover picture");
    else
        name(marks_.notes, "mimetype", "application/octet-stream"); // Matroska wants one
}

void AttachedTrack::becomeFile()
{
    const auto size = std::size_t(picture_->size);
    auto* const content = static_cast<std::uint8_t*>(av_mallocz(size + AV_INPUT_BUFFER_PADDING_SIZE));
    if (!content)
        throw std::bad_alloc();
    std::memcpy(content, picture_->data, size);
    av_freep(&parameters_->extradata);
    parameters_->extradata = content;
    parameters_->extradata_size = int(size);
    parameters_->codec_type = AVMEDIA_TYPE_ATTACHMENT;
    av_packet_unref(picture_.get());
    const bool png = parameters_->codec_id == AV_CODEC_ID_PNG;
    name(marks_.notes, "filename", png ? "cover.png" : "cover.jpg");
    name(marks_.notes, "mimetype", png ? "image/png" : "image/jpeg");
    marks_.disposition = 0;
}

bool AttachedTrack::next(AVPacket& packet)
{
    if (!picture_->data)
        return false;
    av_packet_unref(&packet);
    av_packet_move_ref(&packet, picture_.get());
    packet.pts = packet.dts = 0;
    return true;
}

} // namespace tool::media
