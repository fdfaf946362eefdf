// Calls of the public interface, with result codes turned into exceptions.
#include "hosting/Host.h"

namespace host {

namespace {

const char* meaningOf(unsigned result)
{
    switch (result) {
    case EFFECTENGINE_BAD_ARGUMENT:
        return "was called with a bad argument";
    case EFFECTENGINE_INIT_FAILED:
        return "could not start the engine";
    case EFFECTENGINE_ALREADY_INITIALIZED:
        return "met an engine that runs already";
    default:
        return "failed";
    }
}

void require(unsigned result, const std::string& what)
{
    if (result != EFFECTENGINE_OK)
        throw Failure(what + " " + meaningOf(result));
}

} // namespace

Engine::Engine(const std::string& resourceDirectory, const char* logDirectory)
{
    require(InitializeEngine(resourceDirectory.c_str(), logDirectory), "InitializeEngine");
}

Image::Image(unsigned width, unsigned height) : Image(nullptr, width, height) { }

Image::Image(void* pixels, unsigned width, unsigned height)
{
    const ImageCreateInfo info{width, height, {}, pixels};
    CEffectImage* image = nullptr;
    require(CreateImage(&info, &image), "CreateImage");
    if (!image)
        throw Failure("not enough memory for an image");
    handle_.reset(image);
}

Image Image::load(const std::string& path, unsigned width, unsigned height)
{
    const unsigned size[2] = {width, height};
    CEffectImage* image = nullptr;
    require(CreateImageFromFile(path.c_str(), size, &image), "CreateImageFromFile");
    return Image(image);
}

unsigned Image::width() const
{
    unsigned width = 0;
    require(GetImageWidth(handle(), &width), "GetImageWidth");
    return width;
}

unsigned Image::height() const
{
    unsigned height = 0;
    require(GetImageHeight(handle(), &height), "GetImageHeight");
    return height;
}

std::span<unsigned char> Image::bytes() const { return bytesOf(handle()); }

Filter::Filter(const std::string& guid, int width, int height)
{
    CSimpleEffect* filter = nullptr;
    require(GetFilter(guid.c_str(), width, height, &filter), "GetFilter(" + guid + ")");
    handle_.reset(filter);
}

void Filter::setInput(const Image& image, unsigned index)
{
    require(SetInputImage(handle(), image.handle(), index), "SetInputImage");
}

void Filter::connectFrom(const Filter& upstream, unsigned index)
{
    require(ConnectFilter(upstream.handle(), handle(), index), "ConnectFilter");
}

bool Filter::set(const std::string& name, int value)
{
    return setParamIntValue(handle(), name.c_str(), value) == EFFECTENGINE_OK;
}

bool Filter::set(const std::string& name, float value)
{
    return setParamFloatValue(handle(), name.c_str(), value) == EFFECTENGINE_OK;
}

bool Filter::set(const std::string& name, const std::vector<int>& values)
{
    return setParamIntArrayValue(handle(), name.c_str(), values.data(), int(values.size()))
        == EFFECTENGINE_OK;
}

bool Filter::set(const std::string& name, const std::vector<float>& values)
{
    return setParamFloatArrayValue(handle(), name.c_str(), values.data(), int(values.size()))
        == EFFECTENGINE_OK;
}

bool Filter::set(const std::string& name, const std::wstring& path)
{
    return setParamFilePathValue(handle(), name.c_str(), path.c_str()) == EFFECTENGINE_OK;
}

CEffectImage* Filter::run()
{
    CEffectImage* output = nullptr;
    require(DoFilter(handle(), &output), "DoFilter");
    return output;
}

void Filter::runInto(CEffectImage* target) { require(DoFilterEx(handle(), target), "DoFilterEx"); }

std::span<unsigned char> bytesOf(CEffectImage* image)
{
    unsigned width = 0;
    unsigned height = 0;
    void* pixels = nullptr;
    require(GetImageWidth(image, &width), "GetImageWidth");
    require(GetImageHeight(image, &height), "GetImageHeight");
    require(LockImageData(image, &pixels), "LockImageData");
    return {static_cast<unsigned char*>(pixels), std::size_t(width) * height * 4};
}

} // namespace host
