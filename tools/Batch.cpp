#include "tools/Batch.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "tools/Options.h"

namespace fs = std::filesystem;

namespace orvane::tools {
namespace {

// Each input with the name its output takes below the output folder.
void AddFolder(const fs::path& folder, std::vector<std::pair<std::string, fs::path>>& inputs)
{
    std::vector<fs::path> found;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file() && HasCadExtension(entry.path().string())) found.push_back(entry.path());
    std::sort(found.begin(), found.end());
    for (const fs::path& file : found) inputs.emplace_back(file.string(), file.lexically_relative(folder));
}

void AddList(const std::string& list, std::vector<std::pair<std::string, fs::path>>& inputs)
{
    std::ifstream in(list);
    if (!in) throw std::invalid_argument("cannot open the list " + list);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line[0] == '#') continue;
        inputs.emplace_back(line, fs::path(line).filename());
    }
}

std::uint64_t Fnv1a(const std::string& text)
{
    std::uint64_t hash = 14695981039346656037ull;
    for (unsigned char c : text) hash = (hash ^ c) * 1099511628211ull;
    return hash;
}

nlohmann::json ToJson(const TFileReport& r)
{
    nlohmann::json skipped = nlohmann::json::array();
    for (const auto& [face, reason] : r.Skipped) skipped.push_back({{"face", face}, {"reason", reason}});
    nlohmann::json seconds = nlohmann::json::object();
    for (const auto& [stage, s] : r.Seconds) seconds[stage] = s;
    return {{"file", r.File},       {"output", r.Output},   {"status", r.Status},
            {"faces", r.Faces},     {"skipped", skipped},   {"triangles", r.Triangles},
            {"seconds", seconds},   {"error", r.Error.empty() ? nlohmann::json() : nlohmann::json(r.Error)}};
}

TFileReport FromJson(const nlohmann::json& j)
{
    TFileReport r;
    r.File = j.at("file");
    r.Output = j.at("output");
    r.Status = j.at("status");
    if (!j.at("error").is_null()) r.Error = j.at("error");
    r.Faces = j.at("faces");
    r.Triangles = j.at("triangles");
    for (const auto& s : j.at("skipped")) r.Skipped.emplace_back(s.at("face"), s.at("reason"));
    for (const auto& [stage, s] : j.at("seconds").items()) r.Seconds.emplace_back(stage, s);
    return r;
}

TFileReport Failed(const TBatchItem& item, const std::string& why)
{
    return {item.Input, item.Output, "failed", why, 0, 0, {}, {}};
}

// The child's side: its report, or a failed one, down the pipe; standard output stays the
// batch's report alone.
[[noreturn]] void RunChild(int out, pid_t parent, const TBatchItem& item, const std::function<TFileReport()>& work)
{
    // Ends with the batch, whatever ends it: SIGTERM, so that its temporary files go too (and
    // its reading process with it); the parent may be gone already, hence the look.
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != parent) _exit(1);
    const int null = open("/dev/null", O_WRONLY);
    if (null >= 0) dup2(null, STDOUT_FILENO);
    std::string line;
    try {
        line = ReportLine(work());
    } catch (const std::exception& e) {
        line = ReportLine(Failed(item, e.what()));
    }
    for (std::size_t done = 0; done < line.size();) {
        const ssize_t n = write(out, line.data() + done, line.size() - done);
        if (n <= 0) break;
        done += static_cast<std::size_t>(n);
    }
    _exit(0);
}

std::string HowItEnded(int status)
{
    if (WIFSIGNALED(status))
        return "the meshing process was stopped by signal " + std::to_string(WTERMSIG(status)) + " (" +
               strsignal(WTERMSIG(status)) + ")";
    return "the meshing process ended with code " + std::to_string(WEXITSTATUS(status)) + " and no report";
}

}  // namespace

TShard ParseShard(const std::string& Text)
{
    const auto slash = Text.find('/');
    const auto whole = [](const std::string& s) {
        if (s.empty() || s.size() > 7 || !std::all_of(s.begin(), s.end(), ::isdigit)) return -1;
        return std::stoi(s);
    };
    const int k = slash == std::string::npos ? -1 : whole(Text.substr(0, slash));
    const int n = slash == std::string::npos ? -1 : whole(Text.substr(slash + 1));
    if (k < 1 || n < k || n > 1000000) throw std::invalid_argument("--shard takes K/N with 1 <= K <= N <= 1000000");
    return {k, n};
}

std::vector<TBatchItem> PlanBatch(const std::vector<std::string>& Arguments, const std::string& Folder,
                                  const std::string& Extension)
{
    std::vector<std::pair<std::string, fs::path>> inputs;
    for (const std::string& argument : Arguments) {
        if (argument.size() > 1 && argument[0] == '@')
            AddList(argument.substr(1), inputs);
        else if (fs::is_directory(argument))
            AddFolder(argument, inputs);
        else
            inputs.emplace_back(argument, fs::path(argument).filename());
    }
    std::vector<TBatchItem> items;
    std::map<std::string, std::string> taken;
    for (auto& [input, name] : inputs) {
        const std::string output = (fs::path(Folder) / name.replace_extension(Extension)).string();
        const auto [at, fresh] = taken.emplace(output, input);
        if (!fresh) throw std::invalid_argument(input + " and " + at->second + " would both write " + output);
        items.push_back({input, output});
    }
    return items;
}

bool InShard(const std::string& Input, const TShard& Shard)
{
    return static_cast<int>(Fnv1a(Input) % static_cast<std::uint64_t>(Shard.Count)) == Shard.Index - 1;
}

bool IsUpToDate(const TBatchItem& Item)
{
    std::error_code error;
    const auto output = fs::last_write_time(Item.Output, error);
    if (error) return false;
    const auto input = fs::last_write_time(Item.Input, error);
    return !error && output >= input;
}

std::string ReportLine(const TFileReport& Report)
{
    return ToJson(Report).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

TFileReport RunInChild(const TBatchItem& Item, const std::function<TFileReport()>& Work)
{
    int pipeEnds[2];
    if (pipe2(pipeEnds, O_CLOEXEC) != 0) return Failed(Item, std::string("cannot make a pipe: ") + strerror(errno));
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child < 0) {
        close(pipeEnds[0]);
        close(pipeEnds[1]);
        return Failed(Item, std::string("cannot start a process: ") + strerror(errno));
    }
    if (child == 0) {
        close(pipeEnds[0]);
        RunChild(pipeEnds[1], parent, Item, Work);
    }
    close(pipeEnds[1]);
    std::string line;
    char buffer[4096];
    for (ssize_t n; (n = read(pipeEnds[0], buffer, sizeof buffer)) != 0;) {
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) break;
        line.append(buffer, static_cast<std::size_t>(n));
    }
    close(pipeEnds[0]);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    try {
        if (!line.empty()) return FromJson(nlohmann::json::parse(line));
    } catch (const nlohmann::json::exception&) {
    }
    return Failed(Item, HowItEnded(status));
}

int RunBatch(const std::vector<TBatchItem>& Items, const TShard& Shard, std::ostream& Report,
             const std::function<TFileReport(const TBatchItem&)>& MeshOne)
{
    bool failed = false, skipped = false;
    for (const TBatchItem& item : Items) {
        if (!InShard(item.Input, Shard)) continue;
        const TFileReport report = IsUpToDate(item) ? TFileReport{item.Input, item.Output, "up to date", {}, 0, 0, {}, {}}
                                                    : RunInChild(item, [&] { return MeshOne(item); });
        failed = failed || report.Status == "failed";
        skipped = skipped || report.Status == "faces skipped";
        Report << ReportLine(report) << std::endl;
    }
    return failed ? kExitFailed : skipped ? kExitFacesSkipped : kExitDone;
}

}  // namespace orvane::tools
