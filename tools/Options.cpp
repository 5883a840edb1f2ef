#include "tools/Options.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "io/Printable.h"

namespace orvane::tools {
namespace {

// The text as given, quoted; a number's text cut short where it runs long.
std::string Shown(const std::string& text, std::size_t cap = 40)
{
    const std::string printable = io::Printable(text);
    return "\"" + (printable.size() > cap ? printable.substr(0, cap) + "..." : printable) + "\"";
}

std::string Number(double x)
{
    std::ostringstream s;
    s << x;
    return s.str();
}

// "" for a finite number above low and at most high; else what is wrong with the text.
std::string CheckNumber(const std::string& text, double low, double high)
{
    errno = 0;
    char* end = nullptr;
    const double x = std::strtod(text.c_str(), &end);
    if (text.empty() || end != text.c_str() + text.size() || std::isspace(static_cast<unsigned char>(text[0])))
        return "not a number: " + Shown(text);
    if (std::isnan(x) || (std::isinf(x) && errno != ERANGE)) return "not a finite number: " + Shown(text);
    if (std::isinf(x)) return "too large: " + Shown(text);
    if (!(x > low)) return "must be above " + Number(low) + ", not " + Shown(text);
    if (x > high) return "must be at most " + Number(high) + ", not " + Shown(text);
    return {};
}

std::string CheckCount(const std::string& text, int low, int high)
{
    errno = 0;
    char* end = nullptr;
    const long long n = std::strtoll(text.c_str(), &end, 10);
    if (text.empty() || end != text.c_str() + text.size() || std::isspace(static_cast<unsigned char>(text[0])))
        return "not a whole number: " + Shown(text);
    if (errno == ERANGE || n < low || n > high)
        return "must be " + std::to_string(low) + " to " + std::to_string(high) + ", not " + Shown(text);
    return {};
}

std::string CheckViewSize(const std::string& text, TViewSize* size)
{
    const std::size_t x = text.find('x');
    const std::string wrong = "WIDTHxHEIGHT in pixels, each 1 to " + std::to_string(kMaxPixels) + ", not " + Shown(text);
    if (x == std::string::npos) return wrong;
    const std::string w = text.substr(0, x), h = text.substr(x + 1);
    for (const std::string& part : {w, h})
        if (part.empty() || part.size() > 5 || !std::all_of(part.begin(), part.end(), [](char c) { return c >= '0' && c <= '9'; })) return wrong;
    const int width = std::stoi(w), height = std::stoi(h);
    if (width < 1 || height < 1 || width > kMaxPixels || height > kMaxPixels) return wrong;
    if (size) *size = {width, height};
    return {};
}

}  // namespace

std::string ExtensionOf(const std::string& Path)
{
    std::string ext = std::filesystem::path(Path).extension().string();
    for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return ext;
}

bool HasCadExtension(const std::string& Path)
{
    const std::string ext = ExtensionOf(Path);
    return ext == ".igs" || ext == ".iges" || ext == ".stp" || ext == ".step";
}

std::string CheckExtension(const std::string& path, const std::vector<std::string>& extensions)
{
    const std::string ext = ExtensionOf(path);
    if (extensions.empty() || std::find(extensions.begin(), extensions.end(), ext) != extensions.end()) return {};
    std::string list;
    for (std::size_t i = 0; i < extensions.size(); ++i)
        list += (i == 0 ? "" : i + 1 == extensions.size() ? " or " : ", ") + extensions[i];
    return "the name must end in " + list + ": " + Shown(path, std::string::npos);
}

CLI::Option* AddNumber(CLI::App& Command, const std::string& Name, double& Value, double Low, double High,
                       const std::string& Help)
{
    return Command.add_option(Name, Value, Help)->check(CLI::Validator(
        [Low, High](std::string& text) { return CheckNumber(text, Low, High); }, "NUMBER"));
}

CLI::Option* AddCount(CLI::App& Command, const std::string& Name, int& Value, int Low, int High, const std::string& Help)
{
    return Command.add_option(Name, Value, Help)->check(CLI::Validator(
        [Low, High](std::string& text) { return CheckCount(text, Low, High); }, "N"));
}

CLI::Option* AddChoice(CLI::App& Command, const std::string& Name, std::string& Value,
                       const std::vector<std::string>& Choices, const std::string& Help)
{
    std::string list;
    for (const std::string& c : Choices) list += (list.empty() ? "" : "|") + c;
    return Command.add_option(Name, Value, Help)
        ->check(CLI::Validator(
            [Choices, list](std::string& text) {
                return std::find(Choices.begin(), Choices.end(), text) != Choices.end()
                           ? std::string()
                           : "one of " + list + ", not " + Shown(text);
            },
            list))
        ->capture_default_str();
}

CLI::Option* AddViewSize(CLI::App& Command, TViewSize& Value, const std::string& Help)
{
    return Command.add_option_function<std::string>(
                      "--size", [&Value](const std::string& text) { CheckViewSize(text, &Value); }, Help)
        ->check(CLI::Validator([](std::string& text) { return CheckViewSize(text, nullptr); }, "WIDTHxHEIGHT"))
        ->default_str(std::to_string(Value.Width) + "x" + std::to_string(Value.Height));
}

CLI::Option* AddOutput(CLI::App& Command, const std::string& Name, std::string& Value,
                       const std::vector<std::string>& Extensions, const std::string& Help)
{
    return Command.add_option(Name, Value, Help)
        ->check(CLI::Validator([Extensions](std::string& text) { return CheckExtension(text, Extensions); }, "FILE"));
}

double DefaultMaxMemoryMiB()
{
    const double bytes = static_cast<double>(::sysconf(_SC_PHYS_PAGES)) * static_cast<double>(::sysconf(_SC_PAGESIZE));
    return bytes > 0.0 ? std::min(4096.0, std::floor(bytes / 2.0 / 1048576.0)) : 4096.0;
}

void AddCadOptions(CLI::App& Command, TCadOptions& O, const std::string& SizeHelp)
{
    AddNumber(Command, "--tolerance", O.Tolerance, 0.0, 1e300,
              "quad road: the largest distance of the mesh from the surfaces, in model units (the length unit "
              "--unit gives; default 1/2500 of the model's box diagonal)");
    AddChoice(Command, "--road", O.Road, {"quad", "glu"},
              "quad: the quad tessellation road; glu: the GLU NURBS renderer, sampling in pixels of --size");
    AddViewSize(Command, O.Size, SizeHelp);
    AddNumber(Command, "--time-limit", O.TimeLimit, 0.0, 1e6,
              "seconds the whole run may take, reading and meshing; stopped with a message after that")
        ->capture_default_str();
    AddNumber(Command, "--max-memory", O.MaxMemoryMiB, 0.0, 1 << 24,
              "MiB the meshes and the picture may take: a model whose planned mesh needs more is refused before "
              "it is made (default: half the machine's memory, at most 4096)");
    AddChoice(Command, "--unit", O.Unit, {"file", "mm", "in", "m"},
              "the length unit of the model's coordinates and --tolerance: the file's own, millimetres (the "
              "default, as OpenCASCADE reads every file), inches or metres");
    AddCount(Command, "-j,--threads", O.Threads, 1, 4096,
             "threads that read and mesh the model (default: one per core); the output is the same for any number");
}

void RefuseOptions(const CLI::App& Command, const std::vector<std::string>& Names, const std::string& Why)
{
    for (const std::string& name : Names)
        if (Command.count(name) > 0) throw EUsage(name + " " + Why);
}

void CheckCadOptions(const CLI::App& Command, const TCadOptions& O, bool SizeIsPicture)
{
    if (O.Road == "glu") RefuseOptions(Command, {"--tolerance"}, "steers the quad road only; the glu road samples in pixels of --size");
    if (O.Road == "quad" && !SizeIsPicture)
        RefuseOptions(Command, {"--size"}, "sets the view of the glu road only; the quad road does not use it");
}

}  // namespace orvane::tools
