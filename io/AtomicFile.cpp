#include "io/AtomicFile.h"

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace orvane::io {
namespace {

// The temporary files being written, for the signal handler. A handler can reach only what is
// static, and may neither allocate nor lock: so fixed slots, each claimed by an atomic flag.
struct PendingSlot {
    std::atomic<bool> Used{false};
    std::atomic<bool> Ready{false};
    std::array<char, 4096> Path{};
};
std::array<PendingSlot, 16> gPending;

void RemoveAllAndReraise(int signal)
{
    RemovePendingTemporaries();
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

void InstallHandlersOnce()
{
    static const bool installed = [] {
        for (const int s : {SIGINT, SIGTERM, SIGHUP}) {
            struct sigaction now {};
            struct sigaction before {};
            ::sigaction(s, nullptr, &before);
            if (before.sa_handler == SIG_IGN) continue;  // e.g. under nohup: keep ignoring it
            now.sa_handler = RemoveAllAndReraise;
            ::sigemptyset(&now.sa_mask);
            ::sigaction(s, &now, nullptr);
        }
        return true;
    }();
    (void)installed;
}

// Registers a temporary file for removal on a signal while it lives.
class PendingTemporary {
public:
    explicit PendingTemporary(const std::string& path)
    {
        InstallHandlersOnce();
        if (path.size() >= PendingSlot{}.Path.size()) return;
        for (PendingSlot& s : gPending) {
            bool expected = false;
            if (!s.Used.compare_exchange_strong(expected, true)) continue;
            std::memcpy(s.Path.data(), path.c_str(), path.size() + 1);
            s.Ready = true;
            FSlot = &s;
            return;
        }
    }
    ~PendingTemporary()
    {
        if (!FSlot) return;
        FSlot->Ready = false;
        FSlot->Used = false;
    }
    PendingTemporary(const PendingTemporary&) = delete;
    PendingTemporary& operator=(const PendingTemporary&) = delete;

private:
    PendingSlot* FSlot = nullptr;
};

// A new, empty file beside Path that nobody else can be using.
std::string MakeTemp(const std::string& path)
{
    std::string name = path + ".tmp-XXXXXX";
    const int fd = ::mkstemp(name.data());
    if (fd < 0) throw std::runtime_error("cannot write " + path + ": " + std::strerror(errno));
    // mkstemp makes the file private; the result gets the permissions any new file would.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(fd, 0666 & ~mask);
    ::close(fd);
    return name;
}

}  // namespace

void RemovePendingTemporaries() noexcept
{
    for (PendingSlot& s : gPending)
        if (s.Ready) ::unlink(s.Path.data());
}

void WriteFileAtomically(const std::string& Path, const std::function<void(const std::string& TempPath)>& Write)
{
    if (std::filesystem::is_directory(Path)) throw std::runtime_error("cannot write " + Path + ": it is a folder");
    const std::string temp = MakeTemp(Path);
    const PendingTemporary pending(temp);
    try {
        Write(temp);
        if (std::rename(temp.c_str(), Path.c_str()) != 0)
            throw std::runtime_error("cannot write " + Path + ": " + std::strerror(errno));
    } catch (const std::exception& e) {
        std::remove(temp.c_str());
        std::string text = e.what();
        for (auto at = text.find(temp); at != std::string::npos; at = text.find(temp)) text.replace(at, temp.size(), Path);
        throw std::runtime_error(text.rfind("cannot write ", 0) == 0 ? text : "cannot write " + Path + ": " + text);
    }
}

void WriteStreamAtomically(const std::string& Path, const std::function<void(std::ostream& Out)>& Fill)
{
    WriteFileAtomically(Path, [&](const std::string& temp) {
        std::ofstream out(temp, std::ios::binary | std::ios::trunc);
        errno = 0;
        Fill(out);
        out.close();
        if (!out) throw std::runtime_error("cannot write " + temp + ": " + (errno ? std::strerror(errno) : "incomplete"));
    });
}

void RefuseToWriteOverInputs(const std::string& Output, const std::vector<std::string>& Inputs)
{
    struct stat out {};
    if (::stat(Output.c_str(), &out) != 0) return;
    for (const std::string& input : Inputs) {
        struct stat in {};
        if (::stat(input.c_str(), &in) == 0 && in.st_dev == out.st_dev && in.st_ino == out.st_ino)
            throw std::runtime_error(Output + " is the input " + input + ": refusing to write over it");
    }
}

}  // namespace orvane::io
