#include "io/CadFileReader.h"

#include <cmath>
#include <fstream>
#include <sstream>

#include <IGESControl_Reader.hxx>
#include <IGESData_IGESEntity.hxx>
#include <IGESData_GlobalSection.hxx>
#include <IGESData_IGESModel.hxx>
#include <Interface_Static.hxx>
#include <Message.hxx>
#include <Message_Messenger.hxx>
#include <Message_PrinterOStream.hxx>
#include <STEPControl_Reader.hxx>
#include <StepData_StepModel.hxx>
#include <StepRepr_RepresentationItem.hxx>
#include <TColStd_SequenceOfAsciiString.hxx>
#include <Standard_Failure.hxx>
#include <TCollection_HAsciiString.hxx>
#include <TransferBRep.hxx>
#include <Transfer_TransientProcess.hxx>
#include <XSControl_TransferReader.hxx>
#include <XSControl_WorkSession.hxx>

#include "io/Printable.h"

namespace orvane::io {
namespace {

// The units the readers know: short name, length in millimetres, the name OpenCASCADE's unit
// setting takes, and the name a STEP file gives it.
struct KnownUnit {
    LengthUnit Unit;
    const char* Cascade;
    const char* Step;
};
constexpr KnownUnit kUnits[] = {
    {{"mm", 1.0}, "MM", "millimetre"},     {{"in", 25.4}, "INCH", "inch"},      {{"m", 1000.0}, "M", "metre"},
    {{"cm", 10.0}, "CM", "centimetre"},    {{"ft", 304.8}, "FT", "foot"},       {{"km", 1e6}, "KM", "kilometre"},
    {{"mil", 0.0254}, "MIL", "mil"},       {{"um", 1e-3}, "UM", "micrometre"}, {{"mi", 1609344.0}, "MI", "mile"},
    {{"uin", 2.54e-5}, "UIN", "microinch"},
};

const KnownUnit& Known(const LengthUnit& unit)
{
    for (const KnownUnit& k : kUnits)
        if (std::string(k.Unit.Name) == unit.Name) return k;
    return kUnits[0];
}

// A file's header is read this far and no further, whatever the file holds.
constexpr std::size_t kSniffBytes = 4096;

bool StartsWithStep(const std::string& line)
{
    const auto first = line.find_first_not_of(" \t\r\xEF\xBB\xBF");
    return first != std::string::npos && line.compare(first, 12, "ISO-10303-21") == 0;
}

// An IGES file is lines of 80 columns whose 73rd names the section; it opens with 'S' (or 'F'
// or 'C' for the binary and compressed forms, which the reader does not take).
bool StartsWithIges(const std::string& line)
{
    return line.size() >= 73 && line[72] == 'S';
}

// The file's name of an entity, escaped: it may hold any bytes.
std::string Quoted(const Handle(TCollection_HAsciiString)& s)
{
    if (s.IsNull() || s->IsEmpty()) return {};
    const std::string text = s->ToCString();
    return text == "NONE" ? std::string() : " \"" + Printable(text) + "\"";
}

}  // namespace

CadFormat SniffCadFormat(const std::string& Path)
{
    std::ifstream in(Path, std::ios::binary);
    if (!in) throw ECadFileError("cannot open " + Path);
    std::string head(kSniffBytes, '\0');
    in.read(head.data(), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<std::size_t>(in.gcount()));
    const std::string line = head.substr(0, head.find('\n'));
    if (StartsWithStep(line)) return CadFormat::Step;
    if (StartsWithIges(line)) return CadFormat::Iges;
    throw ECadFileError(Path + " is not an IGES or STEP file");
}

void SilenceOcctMessages()
{
    static const bool done = [] {
        Message::DefaultMessenger()->RemovePrinters(STANDARD_TYPE(Message_PrinterOStream));
        return true;
    }();
    (void)done;
}

LengthUnit LengthUnitNamed(const std::string& Name)
{
    for (const KnownUnit& k : kUnits)
        if (Name == k.Unit.Name) return k.Unit;
    throw ECadFileError("no length unit is called \"" + Printable(Name) + "\"");
}

CadFileReader::CadFileReader(const std::string& Path, const std::string& Unit) : FFormat(SniffCadFormat(Path))
{
    SilenceOcctMessages();
    if (FFormat == CadFormat::Iges)
        FReader = std::make_unique<IGESControl_Reader>();
    else
        FReader = std::make_unique<STEPControl_Reader>();
    try {
        if (FReader->ReadFile(Path.c_str()) != IFSelect_RetDone)
            throw ECadFileError(Path + ": the " + FormatName() + " reader cannot make sense of it");
        ConvertTo(Unit == "file" ? FileUnit() : LengthUnitNamed(Unit));
        FReader->TransferRoots();
        FShape = FReader->OneShape();
        IndexTransfer();
    } catch (const Standard_Failure& e) {
        throw ECadFileError(Path + ": the " + FormatName() + " reader failed (" + e.DynamicType()->Name() + ")");
    }
}

CadFileReader::~CadFileReader() = default;

LengthUnit CadFileReader::FileUnit() const
{
    if (const auto iges = Handle(IGESData_IGESModel)::DownCast(FReader->Model())) {
        const double mm = iges->GlobalSection().UnitValue();
        for (const KnownUnit& k : kUnits)
            if (std::abs(k.Unit.Millimetres - mm) <= 1e-9 * mm) return k.Unit;
        return kUnits[0].Unit;
    }
    TColStd_SequenceOfAsciiString lengths, angles, solidAngles;
    static_cast<STEPControl_Reader&>(*FReader).FileUnits(lengths, angles, solidAngles);
    if (lengths.IsEmpty()) return kUnits[0].Unit;
    for (const KnownUnit& k : kUnits)
        if (lengths.First().IsEqual(k.Step)) return k.Unit;
    return kUnits[0].Unit;
}

// IGES takes the unit from its model's global section, fixed when the file was read; STEP
// from the setting, when it transfers. This runs between the two, in the reading process.
void CadFileReader::ConvertTo(const LengthUnit& unit)
{
    FUnit = unit;
    if (const auto iges = Handle(IGESData_IGESModel)::DownCast(FReader->Model())) {
        IGESData_GlobalSection section = iges->GlobalSection();
        section.SetCascadeUnit(unit.Millimetres);
        iges->SetGlobalSection(section);
    }
    Interface_Static::SetCVal("xstep.cascade.unit", Known(unit).Cascade);
}

void CadFileReader::IndexTransfer()
{
    const Handle(XSControl_TransferReader) transfer = FReader->WS()->TransferReader();
    const Handle(Transfer_TransientProcess) process = transfer.IsNull() ? nullptr : transfer->TransientProcess();
    if (process.IsNull()) return;
    for (int i = 1; i <= process->NbMapped(); ++i) {
        const Handle(Standard_Transient) entity = process->Mapped(i);
        const TopoDS_Shape shape = TransferBRep::ShapeResult(process, entity);
        if (!shape.IsNull()) FMade[shape.TShape().get()].push_back({shape, entity});
    }
}

// The entity whose result is this very shape, orientation included; else the last one whose
// result is the same shape in another orientation.
Handle(Standard_Transient) CadFileReader::EntityOf(const TopoDS_Shape& S) const
{
    const auto found = S.IsNull() ? FMade.end() : FMade.find(S.TShape().get());
    if (found == FMade.end()) return nullptr;
    Handle(Standard_Transient) same;
    for (const Made& m : found->second) {
        if (m.Shape.IsEqual(S)) return m.Entity;
        if (m.Shape.IsSame(S)) same = m.Entity;
    }
    return same;
}

std::string CadFileReader::EntityLabel(const TopoDS_Shape& S) const
{
    const Handle(Standard_Transient) entity = EntityOf(S);
    if (entity.IsNull()) return {};
    std::ostringstream label;
    if (auto step = Handle(StepData_StepModel)::DownCast(FReader->Model())) {
        const auto item = Handle(StepRepr_RepresentationItem)::DownCast(entity);
        label << '#' << step->IdentLabel(entity) << (item.IsNull() ? "" : Quoted(item->Name()));
        return label.str();
    }
    const auto iges = Handle(IGESData_IGESEntity)::DownCast(entity);
    const int number = FReader->Model()->Number(entity);
    if (iges.IsNull() || number <= 0) return {};
    label << 'D' << 2 * number - 1 << (iges->HasName() ? Quoted(iges->NameValue()) : "");
    return label.str();
}

}  // namespace orvane::io
