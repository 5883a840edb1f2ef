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
    } catch (const Standard_Failure& e) {
        throw ECadFileError(Path + ": the " + FormatName() + " reader failed (" + e.DynamicType()->Name() + ")");
    }
}

CadFileReader::~CadFileReader() = default;

std::string CadFileReader::EntityLabel(const TopoDS_Shape& S) const
{
    const Handle(XSControl_TransferReader) transfer = FReader->WS()->TransferReader();
    const Handle(Standard_Transient) entity = transfer.IsNull() ? nullptr : transfer->EntityFromShapeResult(S, 1);
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
