// The version and extension flags of the current context.
#include <cctype>
#include <charconv>

#include "opengl/GlRegistry.h"
#include "opengl/dglOpenGL.h"

namespace dglOpenGL {

bool GL_VERSION_1_0 = false, GL_VERSION_1_1 = false, GL_VERSION_1_2 = false,
     GL_VERSION_1_3 = false, GL_VERSION_1_4 = false, GL_VERSION_1_5 = false,
     GL_VERSION_2_0 = false, GL_VERSION_2_1 = false, GL_VERSION_3_0 = false,
     GL_VERSION_3_1 = false, GL_VERSION_3_2 = false, GL_VERSION_3_3 = false,
     GL_VERSION_4_0 = false, GL_VERSION_4_1 = false, GL_VERSION_4_2 = false,
     GL_VERSION_4_3 = false, GL_VERSION_4_4 = false, GL_VERSION_4_5 = false,
     GL_VERSION_4_6 = false;
bool GLU_VERSION_1_1 = false, GLU_VERSION_1_2 = false, GLU_VERSION_1_3 = false;
bool ImplementationRead = false;

namespace {

const TVersionFlag kVersionFlags[] = {
    {"GL_VERSION_1_0", &GL_VERSION_1_0}, {"GL_VERSION_1_1", &GL_VERSION_1_1},
    {"GL_VERSION_1_2", &GL_VERSION_1_2}, {"GL_VERSION_1_3", &GL_VERSION_1_3},
    {"GL_VERSION_1_4", &GL_VERSION_1_4}, {"GL_VERSION_1_5", &GL_VERSION_1_5},
    {"GL_VERSION_2_0", &GL_VERSION_2_0}, {"GL_VERSION_2_1", &GL_VERSION_2_1},
    {"GL_VERSION_3_0", &GL_VERSION_3_0}, {"GL_VERSION_3_1", &GL_VERSION_3_1},
    {"GL_VERSION_3_2", &GL_VERSION_3_2}, {"GL_VERSION_3_3", &GL_VERSION_3_3},
    {"GL_VERSION_4_0", &GL_VERSION_4_0}, {"GL_VERSION_4_1", &GL_VERSION_4_1},
    {"GL_VERSION_4_2", &GL_VERSION_4_2}, {"GL_VERSION_4_3", &GL_VERSION_4_3},
    {"GL_VERSION_4_4", &GL_VERSION_4_4}, {"GL_VERSION_4_5", &GL_VERSION_4_5},
    {"GL_VERSION_4_6", &GL_VERSION_4_6},
};

bool IsDigit(char c)
{
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

// Looks a variable up through dglGetProcAddress when it is still nil.
template <typename T>
void LookUp(T& variable, const char* name)
{
    if (!variable)
        variable = reinterpret_cast<T>(dglGetProcAddress(name));
}

std::string Text(const GLubyte* text)
{
    return text ? reinterpret_cast<const char*>(text) : "";
}

void SetVersionFlags(TGLVersion v)
{
    for (const auto& flag : kVersionFlags)
        *flag.Value = false;
    GL_VERSION_1_0 = true;
    if (v.Major == 1) {
        bool* minorFlags[] = {&GL_VERSION_1_1, &GL_VERSION_1_2, &GL_VERSION_1_3,
                              &GL_VERSION_1_4, &GL_VERSION_1_5};
        for (int i = 0; i < 5; ++i)
            *minorFlags[i] = v.Minor >= i + 1;
    }
    if (v.Major >= 2) {
        GL_VERSION_1_1 = GL_VERSION_1_2 = GL_VERSION_1_3 = GL_VERSION_1_4 = GL_VERSION_1_5 = true;
        GL_VERSION_2_0 = true;
        GL_VERSION_2_1 = v.Minor >= 1;
    }
    if (v.Major >= 3) {
        GL_VERSION_2_1 = GL_VERSION_3_0 = true;
        GL_VERSION_3_1 = v.Minor >= 1;
        GL_VERSION_3_2 = v.Minor >= 2;
        GL_VERSION_3_3 = v.Minor >= 3;
    }
    if (v.Major >= 4) {
        GL_VERSION_3_1 = GL_VERSION_3_2 = GL_VERSION_3_3 = GL_VERSION_4_0 = true;
        bool* minorFlags[] = {&GL_VERSION_4_1, &GL_VERSION_4_2, &GL_VERSION_4_3,
                              &GL_VERSION_4_4, &GL_VERSION_4_5, &GL_VERSION_4_6};
        for (int i = 0; i < 6; ++i)
            *minorFlags[i] = v.Minor >= i + 1;
    }
}

void ReadGLVersion()
{
    LookUp(glGetString, "glGetString");
    SetVersionFlags(ParseGLVersion(glGetString ? Text(glGetString(GL_VERSION)) : ""));
}

void ReadGLUVersion()
{
    GLU_VERSION_1_1 = GLU_VERSION_1_2 = GLU_VERSION_1_3 = false;
    if (!gluGetString)
        return;
    const auto v = ParseGLVersion(Text(gluGetString(GLU_VERSION)));
    GLU_VERSION_1_1 = true;
    GLU_VERSION_1_2 = v.Minor >= 2;
    GLU_VERSION_1_3 = v.Minor >= 3;
}

std::string GLExtensionText()
{
    if (GL_VERSION_3_0) {
        LookUp(glGetIntegerv, "glGetIntegerv");
        LookUp(glGetStringi, "glGetStringi");
        if (!glGetIntegerv || !glGetStringi)
            return "";
        GLint count = 0;
        glGetIntegerv(GL_NUM_EXTENSIONS, &count);
        std::string text;
        for (GLint i = 0; i < count; ++i)
            text += " " + Text(glGetStringi(GL_EXTENSIONS, static_cast<GLuint>(i)));
        return text;
    }
    LookUp(glGetString, "glGetString");
    return glGetString ? Text(glGetString(GL_EXTENSIONS)) : "";
}

// EGL's client and display extensions stand where the WGL extension strings stand.
std::string PlatformExtensionText()
{
    std::string text;
    LookUp(wglGetExtensionsStringEXT, "wglGetExtensionsStringEXT");
    if (wglGetExtensionsStringEXT) {
        const char* ext = wglGetExtensionsStringEXT();
        text += " " + std::string(ext ? ext : "");
    }
    LookUp(wglGetExtensionsStringARB, "wglGetExtensionsStringARB");
    if (wglGetExtensionsStringARB) {
        const char* ext = wglGetExtensionsStringARB(wglGetCurrentDC ? wglGetCurrentDC() : nullptr);
        text += " " + std::string(ext ? ext : "");
    }
    return text;
}

}  // namespace

std::span<const TVersionFlag> VersionFlags()
{
    return kVersionFlags;
}

TGLVersion ParseGLVersion(std::string_view text)
{
    const auto stop = text.find('.');
    if (stop == std::string_view::npos || stop == 0 || stop + 1 >= text.size() ||
        !IsDigit(text[stop - 1]) || !IsDigit(text[stop + 1]))
        return {};
    auto first = stop;
    while (first > 0 && IsDigit(text[first - 1]))
        --first;
    TGLVersion version;
    const auto [end, error] = std::from_chars(text.data() + first, text.data() + stop,
                                              version.Major);
    if (error != std::errc() || end != text.data() + stop)
        return {};
    version.Minor = text[stop + 1] - '0';
    return version;
}

std::string ReadExtensionText()
{
    std::string text = GLExtensionText();
    if (GL_LibHandle)
        text += PlatformExtensionText();
    return " " + text + " ";
}

bool ExtensionInText(std::string_view text, std::string_view extension)
{
    std::string word;
    word.reserve(extension.size() + 2);
    word.append(" ").append(extension).append(" ");
    return text.find(word) != std::string_view::npos;
}

bool dglCheckExtension(const std::string& extension)
{
    return ExtensionInText(ReadExtensionText(), extension);
}

void ReadImplementationProperties()
{
    ReadGLVersion();
    ReadGLUVersion();
    const std::string text = ReadExtensionText();
    for (const auto& flag : registry::ExtensionFlags())
        *flag.Value = ExtensionInText(text, flag.Name);
    ImplementationRead = true;
}

TRCOptions::TRCOptions(std::initializer_list<TRCOption> options)
{
    for (const auto option : options)
        FBits |= 1u << option;
}

}  // namespace dglOpenGL
