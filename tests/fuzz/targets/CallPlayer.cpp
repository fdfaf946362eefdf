// The calls, and the words and numbers that go into them.
#include "fuzz/targets/CallPlayer.h"

#include "fuzz/targets/FramePictures.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>

namespace fs = std::filesystem;

namespace fuzz {

namespace {

constexpr int kLargestSide = 48; // of most runs
constexpr double kFarthestGpu =
    100; // seconds: a particle scene simulates every frame before the one asked for

constexpr const char* kGraphs[]{
    R"({"effectengine": 1, "nodes": [{"id": "a", "effect": "hue-shift", "parameters": {"Hue": 20}}, {"effect": "blur"}]})",
    R"({"effectengine": 1, "title": "t", "nodes": [{"id": "a", "effect": "hue-shift", "parameters": {"Hue": {"keyframes":
        [{"time": 0, "value": 1, "interpolation": "smooth"}, {"time": 2.5, "value": 90}]}}},
        {"id": "b", "effect": "push", "inputs": ["a", "source-2"], "start": 1, "duration": 2}], "output": "b"})",
    R"({"effectengine": 2, "nodes": [{"id": "a", "effect": "glow", "mix": 0.5, "mask": {"picture": "dot.bmp", "invert": true,
        "feather": 3}}, {"id": "b", "effect": "am-cold", "inputs": ["source"], "mask": {"node": "a"}}]})",
    R"({"effectengine": 2, "nodes": [{"id": "a", "effect": "highlight", "parameters": {"Enable": 1, "Opacity": 0.5,
        "Radius": {"keyframes": [{"frame": 0, "value": 0.2, "interpolation": "bounce-out"},
        {"frame": 5, "value": 1.2, "interpolation": {"bezier": [0.3, -0.4, 0.2, 1.6]}}, {"frame": 9, "value": 0.6}],
        "repeat": "ping-pong", "times": 3}, "iMouse": {"components": [{"keyframes": [{"percent": 0, "value": 8},
        {"percent": 100, "value": 30}]}, 12]}}}]})",
    R"({"effectengine": 2, "nodes": [{"effect": "hue-shift", "mix": {"audio": {"band": "bass", "to": [0, 1]}},
        "parameters": {"Hue": {"audio": {"band": [200, 400], "to": [0, 100], "smooth": 0.1}}}}]})",
    R"({"effectengine": 1, "nodes": [{"effect": "cube-lut", "parameters": {"CubeLutFile": "two.cube"}}, {"effect": "echo"}]})",
};

// Pieces that mutated texts get.
constexpr const char* kPieces[]{"{", "}", "[", "]", "\"", ":", ",", "null", "true", "-1", "1e999", "-0",
    "NaN", "1e300", "99999999999999999999", "\"source\"", "\"source-2\"", "\"source-7\"", "\"source-999\"",
    "\"a\"", "\"b\"", "\"mix\": 2", "\"mask\": \"dot.bmp\"", "\"effect\"", "\"inputs\"", "\"parameters\"",
    "\"keyframes\"", "\"value\"", "\"time\"", "\"start\"", "\"hold\"", "//", "/*", "\\u0000", "\\ud800",
    "\xff\xfe", "\n", "=", "[[[[[[[[", "{\"a\":{\"a\":{\"a\":"};

constexpr const char* kAssignments[]{"Hue=20", "=", "Hue=", "=20", "Hue", "Hue=nan", "mix=0.5",
    "kex_effect_enable=0", "u_global_time=1e30", "u_total_time=0"};

std::string mutated(Bytes& in, std::string text)
{
    for (std::size_t i = in.pick(4); i > 0; --i) {
        const std::size_t at = in.pick(text.size() + 1);
        const std::size_t length = std::min(text.size() - at, in.pick(12));
        switch (in.pick(6)) {
        case 0:
            text.erase(at, length);
            break;
        case 1:
            text.insert(at, text.substr(at, length));
            break;
        case 2:
            text.insert(at, in.of(std::span<const char* const>(kPieces)));
            break;
        case 3:
            text.replace(at, length, in.of(std::span<const char* const>(kPieces)));
            break;
        case 4:
            text.insert(at, in.text(6));
            break;
        default: {
            const std::string piece = in.of(std::span<const char* const>(kPieces));
            std::string many;
            for (std::size_t count = in.pick(3000); count > 0; --count)
                many += piece;
            text.insert(at, many);
        }
        }
    }
    return text;
}

const char* orNull(Bytes& in, const std::string& text) { return in.oneIn(40) ? nullptr : text.c_str(); }

bool isAlive(const EffectHostLook* look) { return look != nullptr; }
template <class Run> bool isAlive(const Run& run) requires requires { run.handle; }
{
    return run.handle;
}

/// One of some looks or runs, and seldom one that is null while others are not.
template <class Slots> auto& mostlyAlive(Bytes& in, Slots& slots)
{
    std::size_t at = in.pick(slots.size());
    for (std::size_t i = 0; !in.empty() && i < slots.size() && !isAlive(slots[at]) && !in.oneIn(12); ++i)
        at = (at + 1) % slots.size();
    return slots[at];
}

std::size_t lengthOf(const char* text) { return text ? std::strlen(text) : 0; }

} // namespace

CallPlayer::CallPlayer(std::string resources) : resources_(std::move(resources))
{
    directory_ = (fs::temp_directory_path() / "hostCalls-XXXXXX").string();
    if (!mkdtemp(directory_.data())) {
        std::perror("mkdtemp");
        std::abort();
    }
    const auto write = [&](const char* name, const std::string& bytes) {
        std::ofstream(directory_ + "/" + name, std::ios::binary) << bytes;
    };
    write("look.json", kGraphs[0]);
    write("cut.json", std::string(kGraphs[1]).substr(0, 90));
    write("two.cube", "LUT_3D_SIZE 2\n0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n1 1 1\n");
    using namespace std::string_literals;
    write("dot.bmp",
        "BM\x3e\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\2\0\0\0\1\0\0\0\1\0\x18\0\0\0\0\0\x08\0\0\0\0\0\0\0\0\0\0\0"
        "\0\0\0\0\0\0\0\0"
        "\x0a\x14\x1e\xc8\x64\x32\0\0"s);
    const EffectHostEffect* const* effects = nullptr;
    std::size_t count = 0;
    if (EffectHostOpen(resources_.c_str(), nullptr) != EFFECTHOST_OK
        || EffectHostGetEffects(&effects, &count) != EFFECTHOST_OK) {
        std::fprintf(stderr, "%s\n", EffectHostLastError());
        std::abort();
    }
    for (const EffectHostEffect* const effect : std::span(effects, count))
        (effect->needsGpu ? onGpu_ : onCpu_).push_back(effect);
}

CallPlayer::~CallPlayer()
{
    releaseAll();
    for (; opened_ > 0; --opened_)
        EffectHostClose();
    std::error_code ignored;
    fs::remove_all(directory_, ignored);
}

std::string CallPlayer::play(std::span<const unsigned char> bytes)
{
    Bytes in(bytes);
    fault_.clear();
    while (!in.empty() && fault_.empty()) {
        const std::size_t kind = in.pick(32);
        if (kind == 0)
            openAndClose(in);
        else if (kind < 3)
            ask(in);
        else if (kind < 7)
            createLook(in);
        else if (kind < 10)
            changeLook(in);
        else if (kind < 14)
            startRun(in);
        else if (kind < 21)
            setAndGet(in);
        else if (kind < 22)
            setCurve(in);
        else if (kind < 31)
            runFrame(in);
        else
            releaseOne(in);
    }
    releaseAll();
    return fault_;
}

bool CallPlayer::succeeded(EffectHostResult result, const char* call)
{
    ++calls_;
    const bool done = result == EFFECTHOST_OK;
    failures_ += !done;
    const char* const words = EffectHostLastError();
    const std::string place =
        std::string(call) + " answered " + std::to_string(int(result)) + ", \"" + words + '"';
    if (result < EFFECTHOST_OK || result >= EFFECTHOST_INTERNAL)
        wrong(place);
    if (!done && (!*words || std::strpbrk(words, "\n\r")))
        wrong(place + ": not one line");
    if (result == EFFECTHOST_NO_ENGINE)
        wrong(place + " although the library is open");
    return done;
}

void CallPlayer::wrong(const std::string& words)
{
    if (fault_.empty())
        fault_ = words;
}

void CallPlayer::openAndClose(Bytes& in)
{
    if (in.oneIn(200)) { // the library ends and begins again
        releaseAll();
        for (; opened_ > 0; --opened_)
            EffectHostClose();
        if (succeeded(EffectHostOpen(resources_.c_str(), nullptr), "EffectHostOpen"))
            opened_ = 1;
        else
            wrong("the library does not open again");
        return;
    }
    if (in.pick(2) == 0 && opened_ > 1) {
        EffectHostClose();
        --opened_;
        return;
    }
    const std::string places[]{resources_, resources_ + "/", directory_, "/no/such/place", "", in.text(20)};
    const std::string& place = in.of(std::span<const std::string>(places));
    opened_ += succeeded(EffectHostOpen(orNull(in, place), nullptr), "EffectHostOpen");
}

void CallPlayer::ask(Bytes& in)
{
    const std::string word = effectWord(in);
    if (in.pick(2) == 0) {
        const EffectHostEffect* effect = nullptr;
        if (succeeded(EffectHostFindEffect(orNull(in, word), &effect), "EffectHostFindEffect")
            != (effect != nullptr))
            wrong("EffectHostFindEffect wrote an effect without success");
    } else {
        const char* json = nullptr;
        if (succeeded(EffectHostGetCatalogue(orNull(in, word), &json), "EffectHostGetCatalogue")
            && lengthOf(json) < 2)
            wrong("EffectHostGetCatalogue gave nothing");
    }
}

void CallPlayer::createLook(Bytes& in)
{
    EffectHostLook*& look = looks_[in.pick(looks_.size())];
    EffectHostReleaseLook(look);
    look = nullptr;
    const auto source = EffectHostLookSource(in.pick(4));
    const std::string text = source == EFFECTHOST_LOOK_EFFECT ? effectWord(in)
        : source == EFFECTHOST_LOOK_FILE                      ? fileWord(in)
                                                              : graphText(in);
    const std::string place = in.pick(4) == 0 ? in.text(20) : directory_;
    if (succeeded(
            EffectHostCreateLook(source, orNull(in, text), orNull(in, place), &look), "EffectHostCreateLook")
        != (look != nullptr))
        wrong("EffectHostCreateLook wrote a look without success");
    if (look && in.pick(2) == 0)
        describe(look);
}

void CallPlayer::changeLook(Bytes& in)
{
    EffectHostLook* const look = mostlyAlive(in, looks_);
    if (in.pick(2) == 0) {
        succeeded(EffectHostAppendEffect(look, orNull(in, effectWord(in))), "EffectHostAppendEffect");
    } else {
        const std::string assignment = in.pick(3) == 0
            ? mutated(in, in.of(std::span<const char* const>(kAssignments)))
            : parameterWord(in, in.of(std::span<const EffectHostEffect* const>(onCpu_))) + "="
                + valueWord(in);
        succeeded(EffectHostAssign(look, orNull(in, assignment)), "EffectHostAssign");
    }
    if (look && in.pick(2) == 0)
        describe(look);
}

void CallPlayer::describe(EffectHostLook* look)
{
    const EffectHostLookInfo* info = nullptr;
    if (!succeeded(EffectHostGetLookInfo(look, &info), "EffectHostGetLookInfo"))
        return;
    std::size_t read = lengthOf(info->title) + lengthOf(info->output);
    for (const EffectHostNode& node : std::span(info->nodes, info->nodeCount))
        read += lengthOf(node.id) + lengthOf(node.effect->name);
    for (const EffectHostBand& band : std::span(info->bands, info->bandCount))
        read += lengthOf(band.name);
    for (const char* const line : std::span(info->warnings, info->warningCount))
        read += lengthOf(line);
    for (const char* const line : std::span(info->fromStart, info->fromStartCount))
        read += lengthOf(line);
    if (read == 0 || info->inputs < 1 || lengthOf(info->json) == 0)
        wrong("EffectHostGetLookInfo describes nothing");
    // What was written is read as the same look.
    EffectHostLook* again = nullptr;
    const std::string json = info->json;
    if (!succeeded(EffectHostCreateLook(EFFECTHOST_LOOK_JSON, json.c_str(), nullptr, &again),
            "EffectHostCreateLook")) {
        wrong("the library cannot read what it wrote: " + json);
        return;
    }
    if (succeeded(EffectHostGetLookInfo(again, &info), "EffectHostGetLookInfo") && json != info->json)
        wrong("a look read again is another one: " + json + " / " + info->json);
    EffectHostReleaseLook(again);
}

void CallPlayer::startRun(Bytes& in)
{
    Run& run = runs_[in.pick(runs_.size())];
    EffectHostLook* const look = mostlyAlive(in, looks_);
    EffectHostReleaseRun(run.handle);
    run = {};
    std::uint32_t width = 1 + std::uint32_t(in.pick(kLargestSide));
    std::uint32_t height = 1 + std::uint32_t(in.pick(kLargestSide));
    constexpr std::uint32_t kSides[]{0, 4097, 0x80000000u, 0xFFFFFFFFu, 1};
    if (in.oneIn(12))
        width = in.of(std::span<const std::uint32_t>(kSides));
    if (in.oneIn(200)) {
        width = 4096;
        height = 1;
    }
    if (!succeeded(EffectHostStartRun(look, width, height, &run.handle), "EffectHostStartRun")) {
        if (run.handle)
            wrong("EffectHostStartRun wrote a run without success");
        return;
    }
    const EffectHostLookInfo* info = nullptr;
    if (!succeeded(EffectHostGetLookInfo(look, &info), "EffectHostGetLookInfo")) {
        wrong("a look that runs has no description");
        return;
    }
    run.width = int(width);
    run.height = int(height);
    run.inputs = info->inputs;
    run.gpu = info->needsGpu;
    for (const EffectHostNode& node : std::span(info->nodes, info->nodeCount)) {
        run.ids.push_back(node.id);
        run.effects.push_back(node.effect);
    }
}

void CallPlayer::setAndGet(Bytes& in)
{
    Run& run = mostlyAlive(in, runs_);
    const bool known = !run.ids.empty() && in.pick(8) != 0;
    const std::size_t index = known ? in.pick(run.ids.size()) : 0;
    const std::string node = known ? run.ids[index] : in.text(8);
    const std::string name = parameterWord(
        in, known ? run.effects[index] : in.of(std::span<const EffectHostEffect* const>(onCpu_)));
    const char* const id = orNull(in, node);
    const char* const parameter = orNull(in, name);
    switch (in.pick(5)) {
    case 0:
    case 1: {
        std::vector<double> values(in.pick(6) == 0 ? in.pick(40) : 1 + in.pick(4));
        std::ranges::generate(values, [&] { return in.number(); });
        succeeded(EffectHostSetNumbers(run.handle, id, parameter, values.data(), values.size()),
            "EffectHostSetNumbers");
        break;
    }
    case 2:
        succeeded(
            EffectHostSetText(run.handle, id, parameter, orNull(in, valueWord(in))), "EffectHostSetText");
        break;
    case 3: {
        std::vector<double> values(in.pick(20)); // exactly as long as is said
        std::size_t count = values.size();
        succeeded(
            EffectHostGetNumbers(run.handle, id, parameter, values.data(), &count), "EffectHostGetNumbers");
        break;
    }
    default: {
        const char* text = nullptr;
        if (succeeded(EffectHostGetText(run.handle, id, parameter, &text), "EffectHostGetText") && !text)
            wrong("EffectHostGetText gave no text");
    }
    }
}

void CallPlayer::setCurve(Bytes& in)
{
    constexpr const char* kBands[]{"bass", "mid", "treble", "all", "200-400", "-", "1e9-2e9", "400-200", ""};
    std::vector<float> samples(in.pick(200));
    std::ranges::generate(samples, [&] { return float(in.pick(4) ? double(in.byte()) / 255 : in.number()); });
    const double rate = in.pick(2) ? 100 : in.number();
    const std::string band = mutated(in, in.of(std::span<const char* const>(kBands)));
    succeeded(
        EffectHostSetCurve(mostlyAlive(in, runs_).handle, band.c_str(), samples.data(), samples.size(), rate),
        "EffectHostSetCurve");
}

void CallPlayer::runFrame(Bytes& in)
{
    Run& run = mostlyAlive(in, runs_);
    if (in.oneIn(20)) {
        succeeded(EffectHostResetRun(run.handle), "EffectHostResetRun");
        return;
    }
    const std::size_t inputs = in.oneIn(30) ? in.pick(5) : run.inputs;
    FramePictures pictures(in, std::max(run.width, 1), std::max(run.height, 1), inputs);
    EffectHostFrame frame{};
    frame.inputs = pictures.input();
    frame.inputCount = pictures.inputs();
    frame.output = pictures.output();
    frame.rate = in.oneIn(10) ? in.number() : 25;
    frame.duration = in.oneIn(10) ? in.number() : 4;
    frame.seconds = in.oneIn(10) ? in.number() : double(in.pick(100)) / 25;
    if (run.gpu && (std::abs(frame.seconds) > kFarthestGpu || frame.rate > 1000))
        frame.seconds = 0;
    frame.flags = in.oneIn(8) ? unsigned(EFFECTHOST_COMPARE) : in.oneIn(30) ? in.word() & ~1u : 0;
    frame.unchanged = nullptr;
    if (succeeded(EffectHostRunFrame(run.handle, &frame), "EffectHostRunFrame")) {
        ++frames_;
        if ((frame.flags & EFFECTHOST_COMPARE) && !frame.unchanged)
            wrong("EffectHostRunFrame compared and did not answer");
        lengthOf(frame.unchanged);
    }
    if (pictures.end())
        wrong("EffectHostRunFrame wrote to an input or behind a row");
}

void CallPlayer::releaseOne(Bytes& in)
{
    if (in.pick(2) == 0) {
        EffectHostLook*& look = looks_[in.pick(looks_.size())];
        EffectHostReleaseLook(look);
        look = nullptr;
    } else {
        Run& run = runs_[in.pick(runs_.size())];
        EffectHostReleaseRun(run.handle);
        run = {};
    }
    ++calls_;
}

void CallPlayer::releaseAll()
{
    for (Run& run : runs_)
        EffectHostReleaseRun(run.handle);
    runs_ = {};
    for (EffectHostLook* const look : looks_)
        EffectHostReleaseLook(look);
    looks_ = {};
}

std::string CallPlayer::effectWord(Bytes& in) const
{
    const bool drawn = !onGpu_.empty() && in.oneIn(60);
    const EffectHostEffect& effect =
        *in.of(std::span<const EffectHostEffect* const>(drawn ? onGpu_ : onCpu_));
    switch (in.pick(12)) {
    case 0:
        return effect.guid;
    case 1:
        return effect.title;
    case 2:
        return mutated(in, effect.name);
    case 3:
        return in.text(12);
    default:
        return effect.name;
    }
}

std::string CallPlayer::parameterWord(Bytes& in, const EffectHostEffect* effect) const
{
    if (in.oneIn(8) || effect->parameterCount == 0)
        return "mix";
    const EffectHostParameter& parameter = effect->parameters[in.pick(effect->parameterCount)];
    switch (in.pick(12)) {
    case 0:
        return parameter.title;
    case 1:
        return mutated(in, parameter.name);
    default:
        return parameter.name;
    }
}

std::string CallPlayer::valueWord(Bytes& in) const
{
    switch (in.pick(5)) {
    case 0:
        return mutated(in, "0.5,1,2");
    case 1:
        return fileWord(in);
    case 2:
        return in.text(10);
    default:
        return std::to_string(in.number());
    }
}

std::string CallPlayer::fileWord(Bytes& in) const
{
    constexpr const char* kFiles[]{
        "look.json", "cut.json", "two.cube", "dot.bmp", "", "missing", "dot.bmp/inside"};
    std::string file = directory_ + "/" + in.of(std::span<const char* const>(kFiles));
    switch (in.pick(10)) {
    case 0:
        return in.text(20);
    case 1:
        return file + std::string(in.pick(6000), 'n'); // longer than any path
    case 2:
        return file + "\n" + in.text(4);
    default:
        return file;
    }
}

std::string CallPlayer::graphText(Bytes& in) const
{
    std::string text = in.of(std::span<const char* const>(kGraphs));
    if (in.pick(2) == 0) { // another effect in the place of one
        const std::size_t at = text.find("\"hue-shift\"");
        if (at != std::string::npos)
            text.replace(at + 1, std::strlen("hue-shift"), effectWord(in));
    }
    return in.pick(3) == 0 ? text : mutated(in, text);
}

} // namespace fuzz
