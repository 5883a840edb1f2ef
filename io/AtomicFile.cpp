#include "io/AtomicFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

namespace orvane::io {
namespace {

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

void WriteFileAtomically(const std::string& Path, const std::function<void(const std::string& TempPath)>& Write)
{
    if (std::filesystem::is_directory(Path)) throw std::runtime_error("cannot write " + Path + ": it is a folder");
    const std::string temp = MakeTemp(Path);
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

}  // namespace orvane::io
