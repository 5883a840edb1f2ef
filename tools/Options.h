// The command line the commands share: each option spelled, checked and explained in one place,
// so that --size or --tolerance mean the same wherever they appear. A command adds an option by
// one row: one call of an Add function below.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace orvane::tools {

// What the tool's exit status means (README: "Exit codes").
enum TExitCode : int { kExitDone = 0, kExitFailed = 1, kExitUsage = 2, kExitFacesSkipped = 3 };

// A command line that asks for something the command cannot do, found after parsing: exit 2.
class EUsage : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

enum class TVerbosity { Quiet, Normal, Verbose };

// What main and the chosen command share: what the user wants to hear, and the command's run,
// set when the command is parsed and called once parsing is over.
struct TToolRun {
    TVerbosity Verbosity = TVerbosity::Normal;
    std::function<int()> Command;
};

inline constexpr int kMaxPixels = 16384;

struct TViewSize {
    int Width = 1024;
    int Height = 1024;
};

// A real number: finite, above Low and at most High, else refused with a short message.
CLI::Option* AddNumber(CLI::App& Command, const std::string& Name, double& Value, double Low, double High,
                       const std::string& Help);
// A whole number from Low to High.
CLI::Option* AddCount(CLI::App& Command, const std::string& Name, int& Value, int Low, int High, const std::string& Help);
// One of Choices.
CLI::Option* AddChoice(CLI::App& Command, const std::string& Name, std::string& Value,
                       const std::vector<std::string>& Choices, const std::string& Help);
// WIDTHxHEIGHT in pixels, each 1 to kMaxPixels.
CLI::Option* AddViewSize(CLI::App& Command, TViewSize& Value, const std::string& Help);
// Path's extension in lower case, with its dot (".stp").
std::string ExtensionOf(const std::string& Path);
// Whether Path's name ends in .igs, .iges, .stp or .step, in any case.
bool HasCadExtension(const std::string& Path);
// Empty when Path ends in one of Extensions (or Extensions is empty), else what is wrong with it.
std::string CheckExtension(const std::string& Path, const std::vector<std::string>& Extensions);
// A file the command writes, whose name must end in one of Extensions (any name where empty).
CLI::Option* AddOutput(CLI::App& Command, const std::string& Name, std::string& Value,
                       const std::vector<std::string>& Extensions, const std::string& Help);

// Half the machine's memory, at most 4096 MiB: what --max-memory is unless given.
double DefaultMaxMemoryMiB();

// The options of the commands that read IGES or STEP files.
struct TCadOptions {
    double Tolerance = 0.0;  // model units; 0: the model's default
    std::string Road = "quad";
    TViewSize Size;
    double TimeLimit = 120.0;  // seconds, the whole run
    double MaxMemoryMiB = DefaultMaxMemoryMiB();
    std::string Unit = "mm";
    int Threads = 0;  // 0: every core
};

// --tolerance, --road, --size, --time-limit, --max-memory, --unit and -j; SizeHelp says what
// --size is in this command.
void AddCadOptions(CLI::App& Command, TCadOptions& Options, const std::string& SizeHelp);

// Raises EUsage for an option given where it does nothing: --tolerance on the glu road, and
// --size on the quad road unless the command draws a picture of that size.
void CheckCadOptions(const CLI::App& Command, const TCadOptions& Options, bool SizeIsPicture);

// Raises EUsage "<name> <Why>" for the first of Names that was given.
void RefuseOptions(const CLI::App& Command, const std::vector<std::string>& Names, const std::string& Why);

}  // namespace orvane::tools
