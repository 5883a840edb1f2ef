#include "tools/ObjWriter.h"

#include <cstdio>
#include <sstream>
#include <stdexcept>

#include "io/AtomicFile.h"

namespace orvane::tools {

namespace {

// Three values a line; %.17g reads back as the same double.
void WriteTriples(std::ostream& Out, const char* Tag, std::span<const double> Values)
{
    char line[96];
    for (std::size_t i = 0; i + 2 < Values.size(); i += 3) {
        std::snprintf(line, sizeof line, "%s %.17g %.17g %.17g\n", Tag, Values[i], Values[i + 1], Values[i + 2]);
        Out << line;
    }
}

}  // namespace

TObjWriter::TObjWriter(std::ostream& Out) : FOut(Out) {}

void TObjWriter::Comment(const std::string& Text)
{
    std::istringstream lines(Text);
    std::string line;
    while (std::getline(lines, line)) FOut << "# " << line << '\n';
}

void TObjWriter::AddMesh(const std::string& Name, std::span<const double> Tri, std::span<const double> Norm,
                         int VerticesPerFace)
{
    if (VerticesPerFace < 3) throw std::runtime_error("OBJ faces need at least 3 vertices");
    const std::size_t perFace = 3 * static_cast<std::size_t>(VerticesPerFace);
    if (Tri.size() != Norm.size())
        throw std::runtime_error("mesh " + Name + ": " + std::to_string(Tri.size()) + " vertex values but " +
                                 std::to_string(Norm.size()) + " normal values");
    if (Tri.size() % perFace != 0)
        throw std::runtime_error("mesh " + Name + ": " + std::to_string(Tri.size()) + " values are no whole faces of " +
                                 std::to_string(VerticesPerFace) + " vertices");

    FOut << "o " << Name << '\n';
    WriteTriples(FOut, "v", Tri);
    WriteTriples(FOut, "vn", Norm);
    const std::size_t vertices = Tri.size() / 3;
    for (std::size_t v = 0; v < vertices; v += static_cast<std::size_t>(VerticesPerFace)) {
        FOut << 'f';
        for (std::size_t k = 0; k < static_cast<std::size_t>(VerticesPerFace); ++k) {
            const std::size_t index = FVertexCount + v + k + 1;  // OBJ counts from 1
            FOut << ' ' << index << "//" << index;
        }
        FOut << '\n';
    }
    FVertexCount += vertices;
}

void WriteObjFile(const std::string& Path, const std::function<void(TObjWriter&)>& Fill)
{
    io::WriteStreamAtomically(Path, [&](std::ostream& out) {
        TObjWriter writer(out);
        Fill(writer);
    });
}

}  // namespace orvane::tools
