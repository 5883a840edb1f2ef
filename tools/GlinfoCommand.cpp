// orvane glinfo: what a headless OpenGL 3.3 compatibility context of this machine offers, and
// which EGL display it was made on.
#include <cstdio>
#include <stdexcept>
#include <string>

#include "contracts/SysUtils.h"
#include "opengl/GlRegistry.h"
#include "opengl/Platform.h"
#include "opengl/dglOpenGL.h"
#include "tools/Commands.h"

namespace orvane::tools {

namespace {

using namespace dglOpenGL;

std::string GLText(GLenum name)
{
    const auto* text = glGetString ? glGetString(name) : nullptr;
    return text ? reinterpret_cast<const char*>(text) : "(none)";
}

void PrintInfo(TDisplayPath path)
{
    std::printf("display:  %s\n", DisplayPathName(path));
    std::printf("renderer: %s\n", GLText(GL_RENDERER).c_str());
    std::printf("vendor:   %s\n", GLText(GL_VENDOR).c_str());
    std::printf("version:  %s\n", GLText(GL_VERSION).c_str());
    std::printf("GLSL:     %s\n", GLText(GL_SHADING_LANGUAGE_VERSION).c_str());
    std::string versions;
    for (const auto& flag : VersionFlags())
        if (*flag.Value)
            versions += std::string(versions.empty() ? "" : " ") + flag.Name;
    std::printf("version flags: %s\n", versions.c_str());
    int set = 0;
    int total = 0;
    for (const auto& flag : registry::ExtensionFlags()) {
        ++total;
        set += *flag.Value ? 1 : 0;
    }
    std::printf("extension flags set: %d of %d\n", set, total);
}

int RunGlinfo()
{
    try {
        TOffscreenDC dc(1, 1);
        // A 24-bit depth buffer, as a host's 3D view asks for.
        HGLRC rc = CreateRenderingContextVersion(dc.Handle(), {}, 3, 3, false, 32, 24, 8, 0, 0, 0);
        ActivateRenderingContext(dc.Handle(), rc, true);
        PrintInfo(DisplayPath());
        DeactivateRenderingContext();
        DestroyRenderingContext(rc);
    } catch (const Exception& e) {
        throw std::runtime_error(e.Message());
    }
    return kExitDone;
}

}  // namespace

void AddGlinfoCommand(CLI::App& app, TToolRun& tool)
{
    CLI::App* glinfo = app.add_subcommand("glinfo", "Show the OpenGL context this machine gives headless");
    glinfo->callback([&tool] { tool.Command = [] { return RunGlinfo(); }; });
}

}  // namespace orvane::tools
