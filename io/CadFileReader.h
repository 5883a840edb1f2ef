// Reads an IGES or STEP file with OpenCASCADE into one shape, and names the file's entities.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

#include <Standard_Transient.hxx>
#include <TopoDS_Shape.hxx>

class XSControl_Reader;

namespace orvane::io {

// A file that cannot be read; the text is one line that names the file.
class ECadFileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

enum class CadFormat { Iges, Step };

// The format the file's first bytes announce (a bounded prefix, whatever the file holds after
// it); raises ECadFileError "cannot open <path>" or "<path> is not an IGES or STEP file".
CadFormat SniffCadFormat(const std::string& Path);

// Keeps OpenCASCADE's reports off standard output: the tool's output belongs to the user.
void SilenceOcctMessages();

// A length unit the model's coordinates can be given in, by its short name ("mm", "in", "m",
// ...); Millimetres: its length in millimetres.
struct LengthUnit {
    const char* Name;
    double Millimetres;
};

// The unit by its short name; raises ECadFileError for a name it does not know.
LengthUnit LengthUnitNamed(const std::string& Name);

class CadFileReader {
public:
    // Reads and translates the whole file, its coordinates in Unit: "file" for the file's own
    // length unit (millimetres where the file names none the reader knows), else a short name
    // of LengthUnitNamed. Raises ECadFileError when it cannot.
    explicit CadFileReader(const std::string& Path, const std::string& Unit = "mm");
    ~CadFileReader();
    CadFileReader(const CadFileReader&) = delete;
    CadFileReader& operator=(const CadFileReader&) = delete;

    CadFormat Format() const { return FFormat; }
    const char* FormatName() const { return FFormat == CadFormat::Iges ? "IGES" : "STEP"; }
    const TopoDS_Shape& Shape() const { return FShape; }
    // The unit the shape's coordinates are in.
    const LengthUnit& Unit() const { return FUnit; }
    // The file's label of the entity a shape came from, e.g. `#345 "top"` or `D57`; empty
    // when the file has none.
    std::string EntityLabel(const TopoDS_Shape& S) const;

private:
    // A shape the transfer made, and the entity it came from.
    struct Made {
        TopoDS_Shape Shape;
        Handle(Standard_Transient) Entity;
    };
    // Every shape of the transfer by its TShape and location, in the transfer's order, so that
    // a label costs one look-up rather than a walk of the whole transfer.
    void IndexTransfer();
    Handle(Standard_Transient) EntityOf(const TopoDS_Shape& S) const;

    // The unit the file gives its lengths in.
    LengthUnit FileUnit() const;
    // Tells the reader's transfer to give the shape in FUnit.
    void ConvertTo(const LengthUnit& unit);

    CadFormat FFormat;
    LengthUnit FUnit{"mm", 1.0};
    std::unique_ptr<XSControl_Reader> FReader;
    TopoDS_Shape FShape;
    std::unordered_map<const void*, std::vector<Made>> FMade;
};

}  // namespace orvane::io
