// TTextureEntity: an OpenGL 2D texture whose image is a line of text. The entity keeps the text
// and the font name, draws the text into a raster and uploads it when asked, and keeps its
// description in an XML node of the host's document; after reading it back, LoadTexture inside
// a GL context builds the texture again.
#pragma once

#include <pugixml.hpp>

#include <string>

#include "contracts/Export.h"
#include "contracts/SysUtils.h"

namespace orvane {

class ORVANE_API TTextureEntity {
public:
    TTextureEntity() = default;
    // Deletes the texture name the entity holds (0 included), where glDeleteTextures is loaded.
    ~TTextureEntity();
    TTextureEntity(const TTextureEntity&) = delete;
    TTextureEntity& operator=(const TTextureEntity&) = delete;

    // The arguments carry the text and the font name, not a path or style; no file is read.
    // Neither touches an existing texture or clears TextureValid.
    void AssignTextureContent(const std::string& ATexturePath);
    void AssignTextureContent(const std::string& ATexturePath, const std::string& ATextureStyle);
    void AssignTextureAttrib(double AWidth, double AHeight);

    // Draws the text and uploads it, once: False without trying when the entity is already
    // valid or the text is empty. Afterwards the entity is valid whatever the result, so a
    // failed drawing (a missing font) is not tried again and leaves TextureId at 0.
    bool LoadTexture();
    // Stores AContent as the text, then as LoadTexture().
    bool LoadTexture(const std::string& AContent);

    void BindTexture() const;
    void UnBindTexture() const;

    // Raises Exception "Texture Invalid!!!" while the name is 0 or the entity is not valid.
    Cardinal GetTextureId() const;
    // Takes over an outside texture name, which the entity then deletes; 0 is ignored.
    void SetTextureId(Cardinal AValue);

    // Under ANode, the child element "TextureContent" with the named values "TextureContent",
    // "TextureStyle", "Width" and "Height". A second write reuses the first such child.
    void WriteToXMLNode(pugi::xml_node ANode) const;
    // From the first child "TextureContent"; without one the entity stays as it was, and a
    // missing value gives its default ("" or 0.0). Loads nothing; TextureId and TextureValid stay.
    void ReadFromXMLNode(pugi::xml_node ANode);

    const std::string& TextureContent() const { return FTextureContent; }
    Cardinal TextureId() const { return GetTextureId(); }
    bool TextureValid() const { return FTextureValid; }
    double Width() const { return FTextureWidth; }
    double Height() const { return FTextureHeight; }

private:
    void DeleteTexture();
    bool TextToImgLoad(const std::string& AText, const std::string& AFontName);
    void GenerateTextureProperty(int AWidth, int AHeight, int AFormat, const void* APixels);

    Cardinal FTextureID = 0;
    bool FTextureValid = false;
    double FTextureWidth = 0.0;
    double FTextureHeight = 0.0;
    std::string FTextureContent;
    std::string FTextureContentStyle;
};

inline constexpr const char* STextureInvalid = "Texture Invalid!!!";
inline constexpr const char* SErrorLoadFile = "Error load file";

}  // namespace orvane
