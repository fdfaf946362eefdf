// Textures of the numeric effect library: pictures that the engine finds by their names.
#include "gpu/OgreTest.h"
#include "hosting/Host.h"
#include "pictures/PictureCodecs.h"
#include "pixels/View.h"
#include "support/paths.h"

namespace {

using pixels::Bgra;

class TextureFilesTest : public OgreTest { };

TEST_F(TextureFilesTest, AreLoadedFromTheResourceLocationsAndStandTheRightWayUp)
{
    namespace fs = std::filesystem;
    for (const char* const name : {"resources.cfg", "plugins.cfg"})
        fs::copy_file(fs::path(test::kResourceDirectory) / name, path(name));
    fs::create_directory(path("Textures"));
    // Saved top row first: white above black.
    const Bgra canvas[] = {{255, 255, 255, 255}, {255, 255, 255, 255}, {0, 0, 0, 255}, {0, 0, 0, 255}};
    ASSERT_TRUE(
        pictures::save(path("Textures/AncientCanvas.png"), reinterpret_cast<const u8*>(canvas), 2, 2));

    const host::Engine engine(directory_, directory_.c_str());
    const host::Image photo(2, 2);
    std::ranges::fill(photo.bytes(), u8(200));
    host::Filter multiply("1C3593CE-611E-4718-A571-AC16D0675F57", 2, 2);
    multiply.setInput(photo);
    const auto bytes = host::bytesOf(multiply.run());
    const pixels::ConstView result(bytes.data(), {2, 2});
    for (int x = 0; x < 2; ++x) {
        EXPECT_EQ(result.pictureRow(0)[std::size_t(x)], (Bgra{200, 200, 200, 200}));
        EXPECT_EQ(result.pictureRow(1)[std::size_t(x)], (Bgra{0, 0, 0, 200}));
    }
}

} // namespace
