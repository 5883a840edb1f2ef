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

// The format the file's first line announces; raises ECadFileError "cannot open <path>" or
// "<path> is not an IGES or STEP file".
CadFormat SniffCadFormat(const std::string& Path);

// Keeps OpenCASCADE's reports off standard output: the tool's output belongs to the user.
void SilenceOcctMessages();

class CadFileReader {
public:
    // Reads and translates the whole file; raises ECadFileError when it cannot.
    explicit CadFileReader(const std::string& Path);
    ~CadFileReader();
    CadFileReader(const CadFileReader&) = delete;
    CadFileReader& operator=(const CadFileReader&) = delete;

    CadFormat Format() const { return FFormat; }
    const char* FormatName() const { return FFormat == CadFormat::Iges ? "IGES" : "STEP"; }
    const TopoDS_Shape& Shape() const { return FShape; }
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

    CadFormat FFormat;
    std::unique_ptr<XSControl_Reader> FReader;
    TopoDS_Shape FShape;
    std::unordered_map<const void*, std::vector<Made>> FMade;
};

}  // namespace orvane::io
