// The parts the io tests read: made with OpenCASCADE and written to IGES and STEP files in a
// temporary folder, so that no CAD file is kept in the repository.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <TopoDS_Shape.hxx>

namespace orvane::io::testing {

struct TestShape {
    std::string Name;
    TopoDS_Shape Shape;
    bool Solid = true;
};

TopoDS_Shape BoxWithHole();
TopoDS_Shape Cylinder();
TopoDS_Shape Sphere();
TopoDS_Shape Torus();
TopoDS_Shape FilletedBox();
TopoDS_Shape PlateWithHoles();
TopoDS_Shape LoftedFreeform();

// A 40 x 30 x 20 box without its top face: an open shell whose rim lies at z = 20.
TopoDS_Shape OpenBox();
inline constexpr double kOpenBoxHeight = 20.0;
inline constexpr double kOpenBoxRim = 140.0;

// All seven, named as above in lower case with underscores.
std::vector<TestShape> AllTestShapes();

// A folder of its own under the system's temporary folder, removed with the object.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    std::filesystem::path Path() const { return FPath; }
    std::string File(const std::string& name) const { return (FPath / name).string(); }

private:
    std::filesystem::path FPath;
};

// The file's bytes; empty when it cannot be read.
std::string Slurp(const std::string& path);

// Writes the shape; IGES as solids (BRep entities), so that reading gives solids back.
void WriteIges(const TopoDS_Shape& shape, const std::string& path);
void WriteStep(const TopoDS_Shape& shape, const std::string& path);

double ExactArea(const TopoDS_Shape& shape);
double ExactVolume(const TopoDS_Shape& shape);

}  // namespace orvane::io::testing
