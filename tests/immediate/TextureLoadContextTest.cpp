// The texture entity in a real context: the texture holds the raster and stays bound.
#include <gtest/gtest.h>

#include <memory>

#include "immediate/TextRaster.h"
#include "immediate/TextureLoadUnit.h"
#include "opengl/dglOpenGL.h"
#include "tests/support/OffscreenGL.h"

namespace orvane {
namespace {

namespace gl = dglOpenGL;

gl::GLint LevelParameter(gl::GLint ALevel, gl::GLenum AName)
{
    gl::GLint value = -1;
    gl::glGetTexLevelParameteriv(gl::GL_TEXTURE_2D, ALevel, AName, &value);
    return value;
}

TEST(TextureLoadContext, TextureHoldsTheRasterBoundWithMipmapsAndGoesWithTheEntity)
{
    testing::OffscreenGL context(8, 8);
    auto entity = std::make_unique<TTextureEntity>();
    entity->AssignTextureContent("Tg", "DejaVu Sans");
    entity->AssignTextureAttrib(1, 7);
    ASSERT_TRUE(entity->LoadTexture());
    const gl::GLuint name = entity->GetTextureId();

    gl::GLint bound = 0;
    gl::glGetIntegerv(gl::GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(static_cast<gl::GLuint>(bound), name);

    const TTextRaster raster = RenderTextLine("Tg", "DejaVu Sans", 27);
    EXPECT_EQ(LevelParameter(0, gl::GL_TEXTURE_WIDTH), raster.Width);
    EXPECT_EQ(LevelParameter(0, gl::GL_TEXTURE_HEIGHT), raster.Height);
    EXPECT_EQ(LevelParameter(1, gl::GL_TEXTURE_WIDTH), raster.Width / 2) << "mipmaps were made";
    std::vector<std::uint8_t> pixels(raster.Pixels.size());
    gl::glPixelStorei(gl::GL_PACK_ALIGNMENT, 1);
    gl::glGetTexImage(gl::GL_TEXTURE_2D, 0, gl::GL_BGRA, gl::GL_UNSIGNED_BYTE, pixels.data());
    EXPECT_EQ(pixels, raster.Pixels);

    gl::GLint wrap = 0;
    gl::glGetTexParameteriv(gl::GL_TEXTURE_2D, gl::GL_TEXTURE_WRAP_T, &wrap);
    EXPECT_EQ(wrap, static_cast<gl::GLint>(gl::GL_CLAMP_TO_BORDER));

    entity.reset();
    EXPECT_EQ(gl::glIsTexture(name), gl::GL_FALSE);
}

}  // namespace
}  // namespace orvane
