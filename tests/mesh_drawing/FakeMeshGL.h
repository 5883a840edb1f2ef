// Recording fakes for every GL call that meshes and their shaders make, with a driver that
// always succeeds: vertex arrays are named from 100, buffers from 200, shaders from 20, the
// program is 7. Uniform locations are the order in which names were first asked for.
#pragma once

#include <array>
#include <map>
#include <string>
#include <vector>

#include "tests/support/GlRecorder.h"

namespace orvane::testing {

struct FakeMeshGL {
    FakeMeshGL();

    GlRecorder Rec;
    dglOpenGL::GLuint NextVertexArray = 100;
    dglOpenGL::GLuint NextBuffer = 200;
    dglOpenGL::GLuint NextShader = 20;
    // What glGetFloatv answers for the two matrices.
    std::array<float, 16> ModelView{};
    std::array<float, 16> Projection{};

    // Names asked of glGetUniformLocation, in order, and the values each location was given:
    // the numbers of glUniform3f and glUniform1i, or the floats a matrix call pointed at.
    std::vector<std::string> LocationNames;
    std::map<std::string, std::vector<float>> Uniforms;
    std::map<std::string, bool> Transposed;
    // The 16 floats of the latest glMultMatrixf.
    std::array<float, 16> Multiplied{};

    // The names of the recorded calls, without arguments, from the first call of name on.
    std::vector<std::string> NamesFrom(const std::string& name) const;

private:
    std::string NameAt(dglOpenGL::GLint location) const;
};

}  // namespace orvane::testing
