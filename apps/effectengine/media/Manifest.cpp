// The manifest's JSON, its journal, and the hash of a frame.
#include "effectengine/media/Manifest.h"

#include "effectengine/PartialFile.h"
#include "effectengine/ToolError.h"

#include <json/json.h>
#include <nettle/base16.h>
#include <nettle/sha2.h>

#include <cerrno>
#include <sstream>

namespace fs = std::filesystem;

namespace tool::media {

namespace {

constexpr const char* kFormat = "effectengine-frames";
constexpr int kVersion = 1;

std::string text(const Json::Value& value, const char* indentation)
{
    Json::StreamWriterBuilder writer;
    writer["indentation"] = indentation;
    writer["precision"] = 9;
    return Json::writeString(writer, value) + "\n";
}

bool parse(const std::string& line, Json::Value& value)
{
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    return reader->parse(line.data(), line.data() + line.size(), &value, nullptr) && value.isObject();
}

Json::Value toJson(const RenderedFrame& frame)
{
    Json::Value value;
    value["frame"] = Json::Int64(frame.number);
    value["time"] = frame.seconds;
    value["file"] = frame.file;
    value["sha256"] = frame.sha256;
    if (frame.damaged)
        value["damaged"] = true;
    return value;
}

// The frame that a line of the journal notes; no value for a line that is cut short or notes none.
std::optional<RenderedFrame> frameOf(const Json::Value& value)
{
    if (!value.isObject() || !value["frame"].isInt64() || !value["time"].isNumeric()
        || !value["file"].isString() || !value["sha256"].isString())
        return {};
    return RenderedFrame{value["frame"].asInt64(), value["time"].asDouble(), value["file"].asString(),
        value["sha256"].asString(), value["damaged"] == true};
}

} // namespace

Manifest::Manifest(fs::path file, const Json::Value& settings)
    : file_(std::move(file)),
      journalFile_(file_.string() + ".partial")
{
    // Written and read again, so that numbers compare equal to those of a file.
    parse(text(settings, ""), settings_);
}

void Manifest::load()
{
    if (fs::exists(file_))
        loadManifest();
    if (fs::exists(journalFile_))
        loadJournal();
}

void Manifest::loadManifest()
{
    std::ifstream stream(file_, std::ios::binary);
    std::ostringstream content;
    content << stream.rdbuf();
    Json::Value value;
    if (!stream || !parse(content.str(), value) || value["format"] != kFormat || !value["frames"].isArray())
        throw ToolError(ExitCode::unreadable, "not a manifest of frames: " + file_.string());
    checkSettings(value["settings"]);
    for (const Json::Value& entry : value["frames"])
        if (const auto frame = frameOf(entry))
            frames_[frame->number] = *frame;
}

void Manifest::loadJournal()
{
    std::ifstream stream(journalFile_, std::ios::binary);
    std::string line;
    Json::Value value;
    if (!stream)
        throw ToolError(ExitCode::unreadable, "cannot read " + journalFile_.string());
    if (!std::getline(stream, line) || !parse(line, value))
        return; // the earlier run ended before it noted anything
    checkSettings(value["settings"]);
    while (std::getline(stream, line))
        if (parse(line, value))
            if (const auto frame = frameOf(value))
                frames_[frame->number] = *frame;
}

void Manifest::checkSettings(const Json::Value& before) const
{
    for (const std::string& name : settings_.getMemberNames())
        if (before[name] != settings_[name])
            throw ToolError(ExitCode::usage,
                "cannot resume: " + file_.filename().string() + " was begun with another " + name
                    + "; leave out --resume to start again");
}

void Manifest::begin()
{
    std::error_code ignored;
    fs::remove(file_, ignored);
    // The journal appears whole, so a kill at this moment does not lose the frames of the earlier run.
    Json::Value head;
    head["format"] = kFormat;
    head["settings"] = settings_;
    std::string lines = text(head, "");
    for (const auto& [number, frame] : frames_)
        lines += text(toJson(frame), "");
    writeTextFile(journalFile_, lines);
    errno = 0;
    journal_.open(journalFile_, std::ios::binary | std::ios::app);
    if (!journal_)
        throwCannotWrite(journalFile_, errno);
}

void Manifest::add(const RenderedFrame& frame)
{
    frames_[frame.number] = frame;
    note(toJson(frame));
}

void Manifest::note(const Json::Value& line)
{
    errno = 0;
    journal_ << text(line, "") << std::flush;
    if (!journal_)
        throwCannotWrite(journalFile_, errno);
}

void Manifest::finish()
{
    journal_.close();
    Json::Value value;
    value["format"] = kFormat;
    value["version"] = kVersion;
    value["settings"] = settings_;
    value["frames"] = Json::Value(Json::arrayValue);
    for (const auto& [number, frame] : frames_)
        value["frames"].append(toJson(frame));
    writeTextFile(file_, text(value, " "));
    std::error_code ignored;
    fs::remove(journalFile_, ignored);
}

std::string pixelHash(const AVFrame& rgba)
{
    sha256_ctx hash;
    sha256_init(&hash);
    for (int row = 0; row < rgba.height; ++row)
        sha256_update(
            &hash, std::size_t(rgba.width) * 4, rgba.data[0] + std::ptrdiff_t(rgba.linesize[0]) * row);
    std::uint8_t digest[SHA256_DIGEST_SIZE];
    sha256_digest(&hash, sizeof digest, digest);
    std::string hex(BASE16_ENCODE_LENGTH(sizeof digest), '0');
    base16_encode_update(hex.data(), sizeof digest, digest);
    return hex;
}

} // namespace tool::media
