// Example values from the parameters' metadata, and the lookup table that stands for files.
#include "hosting/exampleValues.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string_view>

namespace host {

namespace {

// A lookup table in a temporary file, which is removed when the process ends.
class ExampleTable {
public:
    ExampleTable()
        : file_(std::filesystem::temp_directory_path()
            / ("effectengine-example-" + std::to_string(getpid()) + ".cube"))
    {
        constexpr int kSize = 33;
        std::ofstream out(file_);
        out << "LUT_3D_SIZE " << kSize << '\n';
        for (int i = 0; i < kSize * kSize * kSize; ++i) {
            const auto level = [&](int step) { return double(i / step % kSize) / (kSize - 1); };
            const double r = level(1);
            const double g = level(kSize);
            const double b = level(kSize * kSize);
            out << r * r << ' ' << 0.8 * g + 0.2 * b << ' ' << 1 - (1 - b) * (1 - b) << '\n';
        }
    }
    ~ExampleTable()
    {
        std::error_code ignored;
        std::filesystem::remove(file_, ignored);
    }
    std::string path() const { return file_.string(); }

private:
    std::filesystem::path file_;
};

std::string exampleTable()
{
    static const ExampleTable table;
    return table.path();
}

} // namespace

ParameterValue exampleValue(const KEXSDK::ParamInfo& param, unsigned width, unsigned height)
{
    if (param.type == KEXSDK::ParamType::filePath)
        return *param.packExample ? std::string(param.packExample) : exampleTable();
    std::vector<double> numbers(param.value.begin(), param.value.begin() + param.elements);
    if (std::string_view(param.unit) == "pixels" && param.elements == 2) {
        numbers[0] *= width / 640.0;
        numbers[1] *= height / 480.0;
    }
    return numbers;
}

void setExampleValues(
    Filter& filter, std::span<const KEXSDK::ParamInfo* const> params, unsigned width, unsigned height)
{
    for (const KEXSDK::ParamInfo* param : params) {
        if (!param->declared)
            store(filter, *param, exampleValue(*param, width, height));
    }
}

} // namespace host
