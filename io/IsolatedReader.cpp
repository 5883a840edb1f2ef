#include "io/IsolatedReader.h"

#include <poll.h>
#include <sys/prctl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <sstream>

#include "io/CadFileReader.h"
#include "io/ModelStream.h"

namespace orvane::io {
namespace {

// Frames on the pipe: one byte of kind, eight of length, then the payload.
constexpr char kProgress = 'P';
constexpr char kModel = 'M';
constexpr char kError = 'E';

bool WriteAll(int fd, const char* data, std::size_t size)
{
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        data += n;
        size -= static_cast<std::size_t>(n);
    }
    return true;
}

void SendFrame(int fd, char kind, const std::string& payload)
{
    const std::uint64_t size = payload.size();
    std::string frame(1, kind);
    frame.append(reinterpret_cast<const char*>(&size), sizeof size);
    frame += payload;
    WriteAll(fd, frame.data(), frame.size());
}

// The child must not outlive the tool: killed with its parent, whatever kills the parent. The
// parent may have died before the request was made, hence the look at who the parent is now.
void DieWithParent(pid_t parent)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent) ::_exit(1);
}

[[noreturn]] void RunChild(int fd, pid_t parent, const std::function<CadModelData(const ProgressFn&)>& work)
{
    DieWithParent(parent);
    // The parent's handlers (removing its temporary files, its time limit) are not the child's.
    for (const int s : {SIGINT, SIGTERM, SIGHUP, SIGALRM}) ::signal(s, SIG_DFL);
    ::signal(SIGPIPE, SIG_IGN);
    const ProgressFn progress = [fd](int done, int total) {
        const std::int32_t values[2] = {done, total};
        SendFrame(fd, kProgress, std::string(reinterpret_cast<const char*>(values), sizeof values));
    };
    try {
        SendFrame(fd, kModel, EncodeModel(work(progress)));
    } catch (const std::exception& e) {
        SendFrame(fd, kError, e.what());
    } catch (...) {
        SendFrame(fd, kError, "the reader failed");
    }
    ::close(fd);
    ::_exit(0);  // no exit handlers: they belong to the parent
}

// Collects the child's frames until it closes the pipe or the time is up.
class ChildListener {
public:
    ChildListener(int fd, const ProgressFn& progress) : FFd(fd), FProgress(progress) {}

    // False when the time ran out first.
    bool Listen(std::chrono::steady_clock::time_point deadline)
    {
        char buffer[65536];
        for (;;) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
            if (left.count() <= 0) return false;
            pollfd p{FFd, POLLIN, 0};
            const int ready = ::poll(&p, 1, static_cast<int>(std::min<long long>(left.count(), 1000)));
            if (ready < 0 && errno == EINTR) continue;
            if (ready <= 0) continue;
            const ssize_t n = ::read(FFd, buffer, sizeof buffer);
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) return true;
            FBytes.append(buffer, static_cast<std::size_t>(n));
            TakeFrames();
        }
    }
    bool HasAnswer() const { return FHasAnswer; }
    char Kind() const { return FKind; }
    const std::string& Payload() const { return FPayload; }

private:
    void TakeFrames()
    {
        constexpr std::size_t head = 1 + sizeof(std::uint64_t);
        while (FBytes.size() - FPos >= head) {
            std::uint64_t size;
            std::memcpy(&size, FBytes.data() + FPos + 1, sizeof size);
            if (FBytes.size() - FPos - head < size) break;
            const char kind = FBytes[FPos];
            std::string payload = FBytes.substr(FPos + head, static_cast<std::size_t>(size));
            FPos += head + static_cast<std::size_t>(size);
            Take(kind, std::move(payload));
        }
        FBytes.erase(0, FPos);
        FPos = 0;
    }
    void Take(char kind, std::string payload)
    {
        if (kind == kProgress && payload.size() == 2 * sizeof(std::int32_t)) {
            std::int32_t values[2];
            std::memcpy(values, payload.data(), sizeof values);
            if (FProgress) FProgress(values[0], values[1]);
        } else if (kind == kModel || kind == kError) {
            FHasAnswer = true;
            FKind = kind;
            FPayload = std::move(payload);
        }
    }

    int FFd;
    const ProgressFn& FProgress;
    std::string FBytes;
    std::size_t FPos = 0;
    bool FHasAnswer = false;
    char FKind = 0;
    std::string FPayload;
};

std::string Seconds(double s)
{
    std::ostringstream out;
    out << s;
    return out.str();
}

// Waits for the child and turns how it ended into the error to raise, if any.
void ReapChild(pid_t pid, bool timedOut, const ChildListener& listener, const std::string& label, double limit)
{
    if (timedOut) ::kill(pid, SIGKILL);
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (timedOut) throw ECadFileError(label + ": reading took longer than " + Seconds(limit) + " s and was stopped");
    if (listener.HasAnswer()) return;
    if (WIFSIGNALED(status))
        throw ECadFileError(label + ": the reader crashed (signal " + std::to_string(WTERMSIG(status)) + ")");
    throw ECadFileError(label + ": the reader ended without an answer (exit code " +
                        std::to_string(WIFEXITED(status) ? WEXITSTATUS(status) : -1) + ")");
}

}  // namespace

CadModelData RunIsolated(const std::function<CadModelData(const ProgressFn&)>& Work, const std::string& Label,
                         double TimeLimitSeconds, const ProgressFn& Progress)
{
    int fds[2];
    if (::pipe(fds) != 0) throw ECadFileError(Label + ": cannot start the reader (" + std::strerror(errno) + ")");
    const pid_t parent = ::getpid();
    const pid_t pid = ::fork();
    if (pid < 0) {
        ::close(fds[0]);
        ::close(fds[1]);
        throw ECadFileError(Label + ": cannot start the reader (" + std::strerror(errno) + ")");
    }
    if (pid == 0) {
        ::close(fds[0]);
        RunChild(fds[1], parent, Work);
    }
    ::close(fds[1]);
    ChildListener listener(fds[0], Progress);
    const auto deadline = std::chrono::steady_clock::now() +
        std::chrono::milliseconds(static_cast<long long>(std::ceil(TimeLimitSeconds * 1000.0)));
    const bool done = listener.Listen(deadline);
    ::close(fds[0]);
    ReapChild(pid, !done, listener, Label, TimeLimitSeconds);
    if (listener.Kind() == kError) throw ECadFileError(listener.Payload());
    return DecodeModel(listener.Payload());
}

CadModelData ReadCadModelIsolated(const std::string& Path, double TimeLimitSeconds, const ProgressFn& Progress,
                                  double Tolerance, const std::string& Unit, int Threads, bool Volumes)
{
    return RunIsolated(
        [&](const ProgressFn& progress) { return ReadCadModel(Path, progress, Tolerance, Unit, Threads, Volumes); }, Path,
                       TimeLimitSeconds, Progress);
}

}  // namespace orvane::io
