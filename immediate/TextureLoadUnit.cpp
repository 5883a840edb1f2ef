#include "immediate/TextureLoadUnit.h"

#include <exception>

#include "contracts/AppSystem.h"
#include "immediate/TextRaster.h"
#include "immediate/XmlNamedValues.h"
#include "opengl/dglOpenGL.h"

namespace orvane {

namespace {

using namespace dglOpenGL;

constexpr const char* kNodeName = "TextureContent";
// Format codes of GenerateTextureProperty; the text raster is always 4 bytes blue, green, red, alpha.
constexpr int kFormatRgb = 3;
constexpr int kFormatRgba = 4;
constexpr int kFormatBgra = 10;

// An entry point that is not loaded raises, as a call through a nil address would, so that
// TextToImgLoad fails instead of the process.
template <typename F>
F Loaded(F AEntry, const char* AName)
{
    if (AEntry == nullptr) throw Exception(std::string("OpenGL entry point not loaded: ") + AName);
    return AEntry;
}
#define ORVANE_GL(name) Loaded(dglOpenGL::name, #name)

struct TPixelFormat {
    GLint Internal;
    GLenum Format;
    GLenum Type;
};

bool PixelFormatOf(int ACode, TPixelFormat& AFormat)
{
    switch (ACode) {
        case kFormatRgb: AFormat = {GL_RGB, GL_RGB, GL_UNSIGNED_BYTE}; return true;
        case kFormatRgba: AFormat = {GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE}; return true;
        case kFormatBgra: AFormat = {GL_RGBA, GL_BGRA, GL_UNSIGNED_BYTE}; return true;
        default: return false;
    }
}

}  // namespace

TTextureEntity::~TTextureEntity()
{
    DeleteTexture();
}

void TTextureEntity::AssignTextureContent(const std::string& ATexturePath)
{
    FTextureContent = ATexturePath;
}

void TTextureEntity::AssignTextureContent(const std::string& ATexturePath, const std::string& ATextureStyle)
{
    FTextureContent = ATexturePath;
    FTextureContentStyle = ATextureStyle;
}

void TTextureEntity::AssignTextureAttrib(double AWidth, double AHeight)
{
    FTextureWidth = AWidth;
    FTextureHeight = AHeight;
}

bool TTextureEntity::LoadTexture()
{
    if (FTextureValid || FTextureContent.empty()) return false;
    const bool loaded = TextToImgLoad(FTextureContent, FTextureContentStyle);
    FTextureValid = true;
    return loaded;
}

bool TTextureEntity::LoadTexture(const std::string& AContent)
{
    FTextureContent = AContent;
    return LoadTexture();
}

void TTextureEntity::BindTexture() const
{
    ORVANE_GL(glBindTexture)(GL_TEXTURE_2D, FTextureID);
}

void TTextureEntity::UnBindTexture() const
{
    ORVANE_GL(glBindTexture)(GL_TEXTURE_2D, 0);
}

Cardinal TTextureEntity::GetTextureId() const
{
    if (FTextureID == 0 || !FTextureValid) throw Exception(STextureInvalid);
    return FTextureID;
}

void TTextureEntity::SetTextureId(Cardinal AValue)
{
    if (AValue == 0) return;
    FTextureID = AValue;
    FTextureValid = true;
}

void TTextureEntity::DeleteTexture()
{
    // Also with the name 0, which GL ignores; without the entry point there is nothing to delete.
    if (dglOpenGL::glDeleteTextures != nullptr) dglOpenGL::glDeleteTextures(1, &FTextureID);
}

bool TTextureEntity::TextToImgLoad(const std::string& AText, const std::string& AFontName)
{
    try {
        const TTextRaster raster = RenderTextLine(AText, AFontName, TextureFontSize(FTextureHeight));
        GenerateTextureProperty(raster.Width, raster.Height, kFormatBgra, raster.Pixels.data());
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

void TTextureEntity::GenerateTextureProperty(int AWidth, int AHeight, int AFormat, const void* APixels)
{
    ORVANE_GL(glGenTextures)(1, &FTextureID);
    BindTexture();
    const GLfloat border[4] = {1.0f, 1.0f, 1.0f, 1.0f};
    ORVANE_GL(glTexParameterfv)(GL_TEXTURE_2D, GL_TEXTURE_BORDER_COLOR, border);
    const auto texParameteri = ORVANE_GL(glTexParameteri);
    texParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_BORDER);
    texParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_BORDER);
    texParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    texParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    QuickReadExtensions();

    TPixelFormat format{};
    if (!PixelFormatOf(AFormat, format)) {
        AppSys.ShowMsg(SErrorLoadFile, 0);
        return;
    }
    ORVANE_GL(glTexImage2D)(GL_TEXTURE_2D, 0, format.Internal, AWidth, AHeight, 0, format.Format,
                            format.Type, APixels);
    if (dglOpenGL::glGenerateMipmap != nullptr) dglOpenGL::glGenerateMipmap(GL_TEXTURE_2D);
}

void TTextureEntity::WriteToXMLNode(pugi::xml_node ANode) const
{
    pugi::xml_node child = ANode.child(kNodeName);
    if (!child) child = ANode.append_child(kNodeName);
    WriteNamedString(child, "TextureContent", FTextureContent, "");
    WriteNamedString(child, "TextureStyle", FTextureContentStyle, "");
    WriteNamedFloat(child, "Width", FTextureWidth, 0.0);
    WriteNamedFloat(child, "Height", FTextureHeight, 0.0);
}

void TTextureEntity::ReadFromXMLNode(pugi::xml_node ANode)
{
    const pugi::xml_node child = ANode.child(kNodeName);
    if (!child) return;
    FTextureContent = ReadNamedString(child, "TextureContent", "");
    FTextureContentStyle = ReadNamedString(child, "TextureStyle", "");
    FTextureWidth = ReadNamedFloat(child, "Width", 0.0);
    FTextureHeight = ReadNamedFloat(child, "Height", 0.0);
}

}  // namespace orvane
