#include "tests/mesh_drawing/FakeMeshGL.h"

#include <algorithm>

namespace orvane::testing {

using namespace dglOpenGL;

FakeMeshGL::FakeMeshGL()
{
    for (int i = 0; i < 16; ++i) {
        ModelView[static_cast<std::size_t>(i)] = static_cast<float>(i + 1);
        Projection[static_cast<std::size_t>(i)] = static_cast<float>(101 + i);
    }
    Rec.Record<&glGenVertexArrays>([this](GLsizei, GLuint* names) { names[0] = NextVertexArray++; });
    Rec.Record<&glGenBuffers>([this](GLsizei, GLuint* names) { names[0] = NextBuffer++; });
    // Set, so that loading the extensions finds nothing to do.
    Rec.Record<&glGenerateMipmap>();
    Rec.Record<&glDeleteVertexArrays>();
    Rec.Record<&glDeleteBuffers>();
    Rec.Record<&glBindVertexArray>();
    Rec.Record<&glBindBuffer>();
    Rec.Record<&glBufferData>();
    Rec.Record<&glVertexAttribPointer>();
    Rec.Record<&glEnableVertexAttribArray>();

    Rec.Record<&glCreateShader>([this](GLenum) { return NextShader++; });
    Rec.Record<&glDeleteShader>();
    Rec.Record<&glShaderSource>();
    Rec.Record<&glCompileShader>();
    Rec.Record<&glGetShaderiv>([](GLuint, GLenum, GLint* status) { *status = 1; });
    Rec.Record<&glGetShaderInfoLog>();
    Rec.Record<&glCreateProgram>([] { return 7u; });
    Rec.Record<&glDeleteProgram>();
    Rec.Record<&glGetAttachedShaders>([](GLuint, GLsizei, GLsizei* count, GLuint*) { *count = 0; });
    Rec.Record<&glAttachShader>();
    Rec.Record<&glDetachShader>();
    Rec.Record<&glLinkProgram>();
    Rec.Record<&glGetProgramiv>([](GLuint, GLenum, GLint* status) { *status = 1; });
    Rec.Record<&glGetProgramInfoLog>();
    Rec.Record<&glUseProgram>();

    Rec.Record<&glGetUniformLocation>([this](GLuint, const GLchar* name) {
        auto at = std::find(LocationNames.begin(), LocationNames.end(), name);
        if (at == LocationNames.end()) at = LocationNames.insert(at, name);
        return static_cast<GLint>(at - LocationNames.begin());
    });
    Rec.Record<&glUniform3f>([this](GLint at, GLfloat x, GLfloat y, GLfloat z) { Uniforms[NameAt(at)] = {x, y, z}; });
    Rec.Record<&glUniform1i>([this](GLint at, GLint v) { Uniforms[NameAt(at)] = {static_cast<float>(v)}; });
    Rec.Record<&glUniformMatrix4fv>([this](GLint at, GLsizei, GLboolean transpose, const GLfloat* m) {
        Uniforms[NameAt(at)] = std::vector<float>(m, m + 16);
        Transposed[NameAt(at)] = transpose != 0;
    });
    Rec.Record<&glUniformMatrix3fv>([this](GLint at, GLsizei, GLboolean transpose, const GLfloat* m) {
        Uniforms[NameAt(at)] = std::vector<float>(m, m + 9);
        Transposed[NameAt(at)] = transpose != 0;
    });
    Rec.Record<&glMatrixMode>();
    Rec.Record<&glPushMatrix>();
    Rec.Record<&glPopMatrix>();
    Rec.Record<&glMultMatrixf>([this](const GLfloat* m) { std::copy(m, m + 16, Multiplied.begin()); });
    Rec.Record<&glGetFloatv>([this](GLenum which, GLfloat* m) {
        const auto& source = which == GL_PROJECTION_MATRIX ? Projection : ModelView;
        std::copy(source.begin(), source.end(), m);
    });
    Rec.Record<&glDrawArrays>();
    Rec.Record<&glDrawElements>();
}

std::string FakeMeshGL::NameAt(GLint location) const
{
    if (location < 0 || static_cast<std::size_t>(location) >= LocationNames.size()) return "?";
    return LocationNames[static_cast<std::size_t>(location)];
}

std::vector<std::string> FakeMeshGL::NamesFrom(const std::string& name) const
{
    std::vector<std::string> names = Rec.Names();
    auto first = std::find(names.begin(), names.end(), name);
    return std::vector<std::string>(first, names.end());
}

}  // namespace orvane::testing
