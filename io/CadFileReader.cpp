#include "io/CadFileReader.h"

#include <fstream>
#include <sstream>

#include <IGESControl_Reader.hxx>
#include <IGESData_IGESEntity.hxx>
#include <IGESData_IGESModel.hxx>
#include <Message.hxx>
#include <Message_Messenger.hxx>
#include <Message_PrinterOStream.hxx>
#include <STEPControl_Reader.hxx>
#include <StepData_StepModel.hxx>
#include <StepRepr_RepresentationItem.hxx>
#include <Standard_Failure.hxx>
#include <TCollection_HAsciiString.hxx>
#include <TransferBRep.hxx>
#include <Transfer_TransientProcess.hxx>
#include <XSControl_TransferReader.hxx>
#include <XSControl_WorkSession.hxx>

namespace orvane::io {
namespace {

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

std::string Quoted(const Handle(TCollection_HAsciiString)& s)
{
    if (s.IsNull() || s->IsEmpty()) return {};
    const std::string text = s->ToCString();
    return text == "NONE" ? std::string() : " \"" + text + "\"";
}

}  // namespace

CadFormat SniffCadFormat(const std::string& Path)
{
    std::ifstream in(Path, std::ios::binary);
    if (!in) throw ECadFileError("cannot open " + Path);
    std::string line;
    std::getline(in, line);
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

CadFileReader::CadFileReader(const std::string& Path) : FFormat(SniffCadFormat(Path))
{
    SilenceOcctMessages();
    if (FFormat == CadFormat::Iges)
        FReader = std::make_unique<IGESControl_Reader>();
    else
        FReader = std::make_unique<STEPControl_Reader>();
    try {
        if (FReader->ReadFile(Path.c_str()) != IFSelect_RetDone)
            throw ECadFileError(Path + ": the " + FormatName() + " reader cannot make sense of it");
        FReader->TransferRoots();
        FShape = FReader->OneShape();
        IndexTransfer();
    } catch (const Standard_Failure& e) {
        throw ECadFileError(Path + ": the " + FormatName() + " reader failed (" + e.DynamicType()->Name() + ")");
    }
}

CadFileReader::~CadFileReader() = default;

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
