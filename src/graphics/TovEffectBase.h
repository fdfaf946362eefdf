// What nodes see of a GPU effect, whatever graphics system draws it.
#pragma once

#include "core/Types.h"
#include "descriptors/DescriptorPass.h"
#include "graphics/ImageParam.h"
#include "graphics/ShaderParameter.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace KEXSDK {

/// How a frame comes into memory: straight, or through a buffer of OpenGL's.
enum class ReadBackMode : u32 { direct = 1, packBuffer = 2 };

/// Where the picture plane stands; neutral as constructed.
struct PictureTransform {
    float axis[3] = {0, 1, 0};
    float angle = 0;                  ///< degrees, about the axis
    float translation[3] = {0, 0, 0}; ///< x and y in output pixels, z in scene units
    float scale[3] = {1, 1, 1};

    friend bool operator==(const PictureTransform&, const PictureTransform&) = default;
};

/// An off-screen scene that draws its inputs, through a fragment program of its own or as they are, into a
/// texture of the effect's size. The graphics system makes, draws and ends effects on a thread of its own,
/// the render thread.
///
/// Set-up calls only store values. They come from the requesting thread, while no request for the same effect
/// is under way; on an effect whose scene has ended they do nothing that could be seen.
class TovEffectBase {
public:
    TovEffectBase();
    TovEffectBase(const TovEffectBase&) = delete;
    TovEffectBase& operator=(const TovEffectBase&) = delete;
    virtual ~TovEffectBase();

    /// Size of the pictures that the effect draws, in pixels; 800 x 600 at first.
    virtual void setSize(u32 width, u32 height);

    /// Draws one frame and copies it into the record's pixel memory. Render thread only.
    /// @param output  variable with the output record; when it holds null, put the effect's own record there
    /// @param buffer  memory of the output's size to read the frame into, or null for the record's own
    virtual void render(_ImageParam** output, u8* buffer, u32 channels) = 0;

    /// Copies the latest frame into the record's pixel memory, or into `buffer` when given; a record that
    /// does not hold this effect's texture stays as it is. Render thread only.
    virtual void getPixels(_ImageParam* record, u8* buffer, u32 channels) = 0;

    // Inputs. Pixels are 4 bytes each, rows packed, and stay the caller's: they are read by every render
    // until the input is set again or removed.

    /// Decodes a picture file of the resource locations into an input that the effect keeps; its top row
    /// comes first. @return false, with a line in the graphics system's log, when that is not possible
    virtual bool loadPicture(const char* path, i32 index);
    /// Takes the record's texture if it has one, which spares the way through memory, else its pixels.
    virtual void setInput(const _ImageParam* record, i32 index);
    virtual void setInputTexture(std::shared_ptr<Ogre::Texture> texture, i32 index);
    virtual void setInputPixels(
        const u8* pixels, u32 width, u32 height, i32 index, RecordFormat format = RecordFormat::A8R8G8B8);
    /// Takes pixels; a depth above 1 is a 3D texture, its slices packed.
    virtual void setInputData(
        const u8* pixels, u32 width, u32 height, u32 depth, i32 index, RecordFormat format);
    /// Reverses the rows of every frame read back.
    virtual void setFlipVertical(bool flip);

    /// True once the window that the effect draws into has been closed; the render thread then ends.
    virtual bool isWindowClosed();

    /// The uniforms of the effect's own programs with their current values, valid as long as the effect; null
    /// when its scene has ended. The first call makes the programs, as a request to the render thread.
    virtual ShaderParameters* getShaderParameters() = 0;
    /// Sends every value to its uniform on each render from now on. An override calls this version first,
    /// which keeps the values.
    virtual void setShaderParameters(const ShaderParameters& parameters);

    /// Number that no other living effect has.
    virtual u32 getId();

    /// Sets the index of the frame that the next render draws. @return the index before
    virtual u32 setFrameIndex(u32 index);
    /// 25 frames per second at first; anything but a positive number is ignored.
    virtual void setFrameRate(float framesPerSecond);

    /// Replaces the effect's own record.
    virtual void createOutputRecord(u32 width, u32 height);
    /// Puts the effect's own record into an empty slot. A record that is there already receives that
    /// record's texture, format and size.
    virtual void copyOutput(_ImageParam** slot);
    /// Swaps the rows top to bottom.
    virtual void flipVertical(u8* pixels, u32 width, u32 height);

    /// Chooses how frames come into memory, from the next render on.
    virtual void setReadBackMode(ReadBackMode mode) = 0;

    /// Hides everything but the picture plane.
    virtual void setPictureOnly(bool pictureOnly) = 0;

    // Programs. Each is made once, by the first render or getShaderParameters.

    /// @param text  GLSL, or the name of a file of it in the resource locations; null for the default
    ///              program, which shows input 0
    virtual void setShaderSource(const char* text, bool isFragment, bool isSourceText) = 0;

    /// Fragment programs that are drawn one after another in the place of the one of setShaderSource; empty
    /// for that one. Set before the first render, as descriptors/descriptorPasses.h reads them.
    std::vector<shader::DescriptorPass> passes;
    /// Lets the next render begin with persistent passes as they were first: transparent black.
    void forgetFrames() { forgetful_ = true; }

    /// Removes an input, whose pixels may go away then. The effect goes on showing the input's last picture;
    /// of a texture that someone else draws it takes a copy with the next frame.
    void removeInput(i32 index);

    PictureTransform transform;

    /// Name of the particle template drawn in front of the picture; empty for none. Set before the first
    /// render.
    std::string particleTemplate;

    /// True when the latest render drew its frame.
    bool drewFrame() const { return drewFrame_; }
    /// Why programs or pictures cannot be used: file and the driver's message; empty when all is well. Known
    /// after getShaderParameters or a render.
    const std::string& problem() const { return problem_; }

protected:
    struct Input {
        const u8* pixels = nullptr;
        std::shared_ptr<Ogre::Texture> texture; ///< empty for an input in memory
        RecordFormat format = RecordFormat::A8R8G8B8;
        u32 width = 0; ///< this and the following for pixels only
        u32 height = 0;
        u32 depth = 1;
        bool changed = true;   ///< the pixels wait to be uploaded
        bool constant = false; ///< pixels of the effect's own that need one upload only
    };

    std::map<i32, Input> inputs_;
    std::set<i32> removedInputs_; ///< whose pictures are still to be copied
    u32 width_ = 800;
    u32 height_ = 600;
    bool sizeChanged_ = true;
    std::unique_ptr<_ImageParam> output_;
    bool windowClosed_ = false;
    ShaderParameters shaderParameters_;
    u32 id_ = 0;
    std::map<i32, std::vector<u8>> loadedPictures_;
    bool flip_ = false;
    u32 previousFrame_ = 0;
    u32 currentFrame_ = 0;
    float frameDuration_ = 0.04f; ///< seconds
    bool drewFrame_ = false;
    bool forgetful_ = false; ///< persistent passes are to begin anew
    std::string problem_;
};

} // namespace KEXSDK
