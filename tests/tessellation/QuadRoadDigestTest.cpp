// The quad road's output bit for bit: a digest of every array it writes, for every shape of the
// shape library and every face of the sample CAD files, against the digests recorded when the
// road last changed what it writes. A change meant only to make the road faster leaves them all;
// one that means to change the output records them anew (the failure prints the new values).
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <span>
#include <string>

#include "contracts/Shapes.h"
#include "io/CadModelReader.h"
#include "io/KernelFace.h"
#include "tessellation/uTessQuadsTriangulator.h"
#include "tests/support/MessageCapture.h"

namespace orvane {
namespace {

// FNV-1a, 64 bits, over raw bytes.
class Digest {
public:
    void Add(std::span<const std::byte> Bytes)
    {
        for (const std::byte b : Bytes) FValue = (FValue ^ static_cast<std::uint64_t>(b)) * 0x100000001b3ULL;
    }
    void Add(const TFloatDynArray& A)
    {
        const std::uint64_t size = A.size();
        Add(std::as_bytes(std::span(&size, 1)));
        Add(std::as_bytes(std::span(A)));
    }
    void Add(const std::string& S) { Add(std::as_bytes(std::span(S))); }
    std::uint64_t Value() const { return FValue; }

private:
    std::uint64_t FValue = 0xcbf29ce484222325ULL;
};

// Both operations of the road at its default tolerance and at a finer one; what either raises
// or shows counts too.
void AddRoad(Digest& D, const TGeSurface& Surface, std::initializer_list<double> Tolerances)
{
    testing::MessageCapture messages;
    for (const double tolerance : Tolerances) {
        const TInterfacePtr<IGeSurfaceTriangulator> service(new TQuadSurfaceTriangulator(tolerance));
        for (const bool quads : {false, true}) {
            TFloatDynArray tri, norm;
            try {
                if (quads)
                    service->Quadrilateral(&Surface, tri, norm);
                else
                    service->Triangulate(&Surface, tri, norm);
            } catch (const std::exception& e) {
                D.Add(std::string("raised ") + e.what());
            }
            D.Add(tri);
            D.Add(norm);
        }
    }
    for (const std::string& text : messages.Texts()) D.Add(text);
}

constexpr double kMostDomainArea = 40.0;

std::string Hex(std::uint64_t V)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%016llxULL", static_cast<unsigned long long>(V));
    return text;
}

TEST(QuadRoadDigest, EveryLibraryShapeGivesTheRecordedArrays)
{
    const std::map<std::string, std::uint64_t> recorded = {
        {"plane", 0x6f1b108aa9ad6bb5ULL},
        {"bilinear", 0x63690470689959b5ULL},
        {"cylinder", 0x3487ec29ca747a1dULL},
        {"cylinder-transposed", 0xdc3cba09dbec69e5ULL},
        {"partial-cylinder", 0x53ae227f10585bedULL},
        {"cone", 0xc43108f07a094a7dULL},
        {"sphere", 0xd2bf74b2b9aafbe5ULL},
        {"torus", 0x10631e255a6da735ULL},
        {"freeform", 0xbd2f20681c06dba6ULL},
        {"ruled-u", 0x7e03e9f2a4e5890dULL},
        {"ruled-v", 0xb51a76eddcd4bfbdULL},
        {"trimmed-circular-holes", 0x467bf115bb6da0b5ULL},
        {"trimmed-polygon-holes", 0x228871f01b8e4dc1ULL},
    };
    for (const std::string& name : ShapeNames()) {
        Digest d;
        AddRoad(d, *MakeShape(name), {DefaultSampleRange, DefaultSampleRange / 4});
        const auto it = recorded.find(name);
        EXPECT_TRUE(it != recorded.end() && it->second == d.Value()) << "{\"" << name << "\", " << Hex(d.Value()) << "},";
    }
}

// The road's rows are a fixed step of the parameters apart, so a face with a wide parameter
// range would take minutes: such faces are left out.
bool SmallDomain(const TGeSurface& Surface)
{
    const auto* trimmed = dynamic_cast<const TGeTrimmedSurface*>(&Surface);
    const auto* nurbs = dynamic_cast<const TGeNurbsSurface*>(trimmed ? trimmed->GetSurface() : &Surface);
    if (!nurbs) return true;
    const TRect2D d = nurbs->GetDomain();
    return d.Width() * d.Height() <= kMostDomainArea;
}

// Where ORVANE_CAD_SAMPLES names a folder of CAD files: each face with a small enough
// parameter range, built for the kernel as the mesher's GLU road builds it, all faces of a file
// in one digest. The digest covers the reader's conversion too: a change there records them anew.
// Files without a recorded digest are passed over.
TEST(QuadRoadDigest, EverySampleFileFaceGivesTheRecordedArrays)
{
    const char* folder = std::getenv("ORVANE_CAD_SAMPLES");
    if (!folder) GTEST_SKIP() << "ORVANE_CAD_SAMPLES names no folder of CAD files";
    const std::map<std::string, std::uint64_t> recorded = {
        {"build123d_m6_screw.step", 0x44815893dd31a270ULL},
        {"nist_ctc_02_asme1_rc.stp", 0x84a0ded5adc7341dULL},
        {"occt_alias_s1_spaceship.stp", 0xa6fc9705278f89c2ULL},
        {"occt_catia_v5r21_ick_0433.stp", 0x1dbcd130bb2961e1ULL},
        {"occt_inventor2011_spring.igs", 0xe9f0b80b92f3e1b6ULL},
        {"occt_solidedge_deflettore.igs", 0xd80213635a9b05e5ULL},
        {"occt_sw2010_tube.igs", 0x31f601c94d270f46ULL},
        {"occt_sw2012_valve.step", 0x42ad252ffd90d4c6ULL},
        {"occwl_fusion_screw.stp", 0x81e48aa182c006daULL},
        {"odri_pulley_at3_t10_motor.step", 0x8540442cf24c0811ULL},
    };
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::string ext = entry.path().extension().string();
        if (ext != ".stp" && ext != ".step" && ext != ".igs") continue;
        const std::string name = entry.path().filename().string();
        const io::CadModelData model = io::ReadCadModel(entry.path().string());
        Digest d;
        int used = 0;
        for (const io::FaceData& face : model.Faces) {
            try {
                const std::unique_ptr<TGeSurface> surface = io::CoversWholeDomain(face)
                                                                ? std::unique_ptr<TGeSurface>(io::BuildKernelSurface(face.Surface))
                                                                : io::BuildKernelFace(face);
                if (!SmallDomain(*surface)) continue;
                AddRoad(d, *surface, {DefaultSampleRange});
                ++used;
            } catch (const std::exception& e) {
                d.Add(std::string("no kernel face: ") + e.what());
            }
        }
        const auto it = recorded.find(name);
        if (it == recorded.end())
            std::printf("no recorded digest (%d of %zu faces): {\"%s\", %s},\n", used, model.Faces.size(), name.c_str(),
                        Hex(d.Value()).c_str());
        EXPECT_TRUE(it == recorded.end() || it->second == d.Value()) << "{\"" << name << "\", " << Hex(d.Value()) << "},";
    }
}

}  // namespace
}  // namespace orvane
