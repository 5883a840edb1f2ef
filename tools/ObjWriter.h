// Wavefront OBJ output of flat mesh arrays: x, y, z of one vertex after the other and the
// normal of each vertex at the same index, a fixed number of vertices a face (3 or 4).
#pragma once

#include <cstddef>
#include <functional>
#include <ostream>
#include <span>
#include <string>

namespace orvane::tools {

class TObjWriter {
public:
    // Writes to Out, which must outlive the writer.
    explicit TObjWriter(std::ostream& Out);

    // A comment line; line breaks in Text start new comment lines.
    void Comment(const std::string& Text);

    // One object "o Name": its vertices, normals and faces "f a//a b//b ...", numbered on
    // from the objects before it. Values are written so that they read back bit for bit.
    // Raises std::runtime_error when Tri and Norm differ in length or hold no whole faces.
    void AddMesh(const std::string& Name, std::span<const double> Tri, std::span<const double> Norm,
                 int VerticesPerFace);

    // Vertices written so far.
    std::size_t VertexCount() const noexcept { return FVertexCount; }

private:
    std::ostream& FOut;
    std::size_t FVertexCount = 0;
};

// Lets Fill write the file Path through a temporary file that replaces it once complete
// (io/AtomicFile.h); raises std::runtime_error naming the file when it cannot.
void WriteObjFile(const std::string& Path, const std::function<void(TObjWriter&)>& Fill);

}  // namespace orvane::tools
