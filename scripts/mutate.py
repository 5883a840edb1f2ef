#!/usr/bin/env python3
"""Measures what the test suite catches: applies a fixed list of small faults, one at a time, to a
copy of the sources in a separate git worktree, rebuilds only the test binary of the folder that
should notice, runs it, and counts the faults that made it fail. The survivors are printed.

    scripts/mutate.py [--worktree /tmp/mutants] [--build DIR] [--only TEXT] [--list]

The worktree is made at HEAD when missing and must be clean; the checkout this script lives in is
never touched. Every mutated file is written back afterwards, also on an interrupt.
"""
import argparse
import os
import shutil
import signal
import subprocess
import sys
import time
from pathlib import Path

# (test folder, file, exact text, its replacement): each text occurs exactly once in its file.
MUTANTS = [
    # contracts: the kernel's own arithmetic and checks
    ("contracts", "contracts/Cadtypes.cpp", "{ return A - B > Tol; }", "{ return A - B < Tol; }"),
    ("contracts", "contracts/Cadtypes.cpp", "X * B.Y - Y * B.X}", "X * B.Y + Y * B.X}"),
    ("contracts", "contracts/DPSimplify.cpp", "if (points[i].DistanceTo(kept.back()) > Tol)",
     "if (points[i].DistanceTo(kept.back()) < Tol)"),
    ("contracts", "contracts/GeBasis.cpp", "if (U >= Knots[n]) return n - 1;", "if (U >= Knots[n]) return n;"),
    ("contracts", "contracts/GeBasis.cpp", "if (!last && mult > Degree)", "if (!last && mult > Degree + 1)"),
    # tessellation: the quad road
    ("tessellation", "tessellation/QuadNormals.cpp", "return UnitOf(Cross(UnitOf(B - A), C - A));",
     "return UnitOf(Cross(C - A, UnitOf(B - A)));"),
    ("tessellation", "tessellation/QuadNormals.cpp", "if (IsZero(n) && !normals->IsEmpty()) n = normals->Last();",
     "if (IsZero(n) && !normals->IsEmpty()) (void)0;"),
    ("tessellation", "tessellation/SurfaceTriangulatorChecker.cpp", "if (vStraight && uStraight)",
     "if (vStraight || uStraight)"),
    ("tessellation", "tessellation/TempNurbsPointEval.cpp", "if (s.GetRational()) result = result / w;",
     "if (false) result = result / w;"),
    ("tessellation", "tessellation/SurfacePoints.cpp", "if (s.GetRational()) result = result / w;",
     "if (false) result = result / w;"),
    ("tessellation", "tessellation/TessQuadsInvoker.cpp", "kFewestPointsOfCircleHole = 21;",
     "kFewestPointsOfCircleHole = 22;"),
    ("tessellation", "tessellation/SurfaceNormals.cpp", "Unit.Points2D[Unit.Points2D.Count() - 2]",
     "Unit.Points2D[Unit.Points2D.Count() - 1]"),
    ("tessellation", "tessellation/uTessQuadsTriangulator.cpp", "FExtrusionType == TExtrusionType::UDir, expected)",
     "FExtrusionType == TExtrusionType::VDir, expected)"),
    # glu_triangulation: the GLU road
    ("glu_triangulation", "glu_triangulation/TrimTriangulate.cpp", "kLoopClosureTol = 0.01;", "kLoopClosureTol = 0.1;"),
    ("glu_triangulation", "glu_triangulation/TrimTriangulate.cpp", "kStraightSamples = 10;", "kStraightSamples = 11;"),
    ("glu_triangulation", "glu_triangulation/TrimTriangulate.cpp", "if (Length > 1000.0)", "if (Length < 1000.0)"),
    ("glu_triangulation", "glu_triangulation/TrimTriangulate.cpp", "Surf.CtrlCountU == 2 && Surf.CtrlCountV == 2",
     "Surf.CtrlCountU == 2"),
    ("glu_triangulation", "glu_triangulation/RecTriangles.cpp", "case GL_TRIANGLE_STRIP: TriStrip2Triangles(",
     "case GL_TRIANGLE_STRIP: FanData2Triangles("),
    ("glu_triangulation", "glu_triangulation/uTriangulate.cpp", "Data.CountV * 4, 4,", "Data.CountU * 4, 4,"),
    # gl_objects: GL names and programs
    ("gl_objects", "gl_objects/uGLHandleObj.cpp", "kShaderLogLimit = 512;", "kShaderLogLimit = 511;"),
    ("gl_objects", "gl_objects/uGLHandleObj.cpp", "GL_LINK_STATUS, &status);\n    return status != 0;",
     "GL_LINK_STATUS, &status);\n    return status == 0;"),
    ("gl_objects", "gl_objects/uGLHandleObj.cpp", "    if (FHandle != 0) return;\n    FHandle = DoAllocateHandle();",
     "    FHandle = DoAllocateHandle();"),
    ("gl_objects", "gl_objects/GLBufferObjects.cpp", "glBindBuffer(Target(), 0);", "glBindBuffer(Target(), FHandle);"),
    ("gl_objects", "gl_objects/GLBufferObjects.cpp", "FSize = Size;", "FSize = Size / 2;"),
    # mesh_drawing and the shaders it embeds
    ("mesh_drawing", "mesh_drawing/GLVAODraw.cpp", "glUniformMatrix4fv(at, 1, GL_TRUE, simuRot.data());",
     "glUniformMatrix4fv(at, 1, GL_FALSE, simuRot.data());"),
    ("mesh_drawing", "mesh_drawing/GLVAODraw.cpp", "FVBOVert->Size() / 12.0", "FVBOVert->Size() / 4.0"),
    ("mesh_drawing", "mesh_drawing/GLVAODraw.cpp", "ColorChannel(FColor, 0), ColorChannel(FColor, 8), ColorChannel(FColor, 16)",
     "ColorChannel(FColor, 16), ColorChannel(FColor, 8), ColorChannel(FColor, 0)"),
    ("mesh_drawing", "mesh_drawing/GLVAOManager.cpp", "if (count > 0) return;", "if (count > 1) return;"),
    ("mesh_drawing", "mesh_drawing/GLVAOManager.cpp", "mesh->SetHeadDir(HeadDir.Normal());", "mesh->SetHeadDir(HeadDir);"),
    ("mesh_drawing", "mesh_drawing/CollectedTri.cpp", "FTriOut.size() > 2 || FTriIn.size() > 2",
     "FTriOut.size() > 2 && FTriIn.size() > 2"),
    ("mesh_drawing", "shaders/FragShader.glsl", "const float PI = 3.14158265359;", "const float PI = 3.14159265359;"),
    ("mesh_drawing", "shaders/FragShader.glsl", "float metallic = 0.6;", "float metallic = 0.5;"),
    ("mesh_drawing", "shaders/VertShader.glsl", "norm = normalize(NormTransMat * VertexNormal);",
     "norm = normalize(VertexNormal);"),
    # immediate: drawing functions, triangle lists, view units
    ("immediate", "immediate/zqglUtils.cpp", "static_cast<float>(value / 255.0)", "static_cast<float>(value / 256.0)"),
    ("immediate", "immediate/zqglUtils.cpp", "closed ? GL_LINE_LOOP : GL_LINE_STRIP", "closed ? GL_LINE_STRIP : GL_LINE_LOOP"),
    ("immediate", "immediate/zqglUtils.cpp", "glDrawArrays(mode, 0, static_cast<GLsizei>(copy.size() / 3));",
     "glDrawArrays(mode, 0, static_cast<GLsizei>((copy.size() + 2) / 3));"),
    ("immediate", "immediate/zqglUtils.cpp", "    glBindTexture(GL_TEXTURE_2D, 0);\n", ""),
    ("immediate", "immediate/zqglUtils.cpp", "g + 4 <= points.size()", "g + 4 < points.size()"),
    ("immediate", "immediate/GLTriangles.cpp", "normalMatrix.ReflexY();", "normalMatrix.ReflexXOZ();"),
    ("immediate", "immediate/UDrawViewUnitTool.cpp", "glPointSize(3.0f);", "glPointSize(2.0f);"),
    # coordinates
    ("coordinates", "coordinates/GLMatrix.cpp", "double x = AClip[0] / AClip[3] * 0.5 + 0.5;",
     "double x = AClip[0] / AClip[3] * 0.5 - 0.5;"),
    ("coordinates", "coordinates/GLMatrix.cpp", "if (det == 0.0) return false;", "if (false) return false;"),
    ("coordinates", "coordinates/GLMatrix.cpp", "* Minor(AMatrix, j, i);", "* Minor(AMatrix, i, j);"),
    ("coordinates", "coordinates/GLMatrix.cpp", "static_cast<float>(AViewport[2])", "static_cast<float>(AViewport[3])"),
    # opengl: loading, flags, contexts
    ("opengl", "opengl/ImplementationProperties.cpp", "GL_VERSION_3_3 = v.Minor >= 3;", "GL_VERSION_3_3 = v.Minor >= 2;"),
    ("opengl", "opengl/ImplementationProperties.cpp", 'text += " " + Text(glGetStringi(', "text += Text(glGetStringi("),
    ("opengl", "opengl/ImplementationProperties.cpp", "stop + 1 >= text.size()", "stop + 2 >= text.size()"),
    ("opengl", "opengl/RenderingContexts.cpp", "pfd.dwFlags |= PFD_STEREO;", "pfd.dwFlags |= PFD_DOUBLEBUFFER;"),
    ("opengl", "opengl/dglOpenGL.cpp", "command.Version != 11;", "command.Version != 12;"),
    ("opengl", "opengl/dglOpenGL.cpp", "if (!glGenBuffers || !glGenerateMipmap)", "if (!glGenBuffers && !glGenerateMipmap)"),
    ("opengl", "opengl/PlatformWgl.cpp", "{EGL_CONTEXT_OPENGL_FORWARD_COMPATIBLE, EGL_TRUE}",
     "{EGL_CONTEXT_OPENGL_FORWARD_COMPATIBLE, EGL_FALSE}"),
    # package: unit start and stop
    ("package", "package/Package.cpp", "for (std::size_t i = ACount; i-- > 0;)", "for (std::size_t i = 0; i < ACount; ++i)"),
    ("package", "package/Package.cpp", "StopFirst(AUnits, i);", "StopFirst(AUnits, i + 1);"),
    # io: reading, welding and writing meshes
    ("io", "io/MeshWelding.cpp", "c.Seed.DotMul(n) >= smooth", "c.Seed.DotMul(n) <= smooth"),
    ("io", "io/FaceValidation.cpp", "if (count < degree + 1)", "if (count < degree)"),
    ("io", "io/MeshWriters.cpp", "if (count < 3) return;", "if (count < 2) return;"),
]


class Interrupted(Exception):
    pass


def on_signal(signum, _frame):
    raise Interrupted(f"signal {signum}")


def run(cmd, cwd=None, timeout=None):
    return subprocess.run(cmd, cwd=cwd, timeout=timeout, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)


def git(*args, cwd):
    return run(["git", *args], cwd=cwd).stdout.strip()


def prepare_worktree(repo, worktree):
    if worktree.resolve() == repo.resolve():
        sys.exit("the worktree must not be this checkout")
    if not worktree.exists():
        result = run(["git", "worktree", "add", "--detach", str(worktree), "HEAD"], cwd=repo)
        if result.returncode != 0:
            sys.exit(result.stdout)
    if git("status", "--porcelain", "--untracked-files=no", cwd=worktree):
        sys.exit(f"{worktree} has changes; a run that was killed may have left a mutant there")


def configure(worktree, build):
    if (build / "build.ninja").exists():
        return
    cmd = ["cmake", "-S", str(worktree), "-B", str(build), "-G", "Ninja", "-DCMAKE_BUILD_TYPE=RelWithDebInfo",
           "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O2 -DNDEBUG", "-DORVANE_WERROR=ON"]
    if shutil.which("ccache"):
        cmd.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
    result = run(cmd)
    if result.returncode != 0:
        sys.exit(result.stdout)


def build_tests(build, folder):
    return run(["cmake", "--build", str(build), "--parallel", "2", "--target", f"orvane_{folder}_tests"]).returncode == 0


def test_binary(build, folder):
    return build / "tests" / folder / f"orvane_{folder}_tests"


def run_tests(build, folder, timeout):
    """True when the folder's tests pass; a run past the time limit counts as a failure."""
    try:
        result = run([str(test_binary(build, folder)), "--gtest_fail_fast", "--gtest_brief=1"],
                     cwd=build / "tests" / folder, timeout=timeout)
    except subprocess.TimeoutExpired:
        return False
    return result.returncode == 0


# Bytes, so that the line ends of a file come back as they were.
def apply(path, old, new):
    text = path.read_bytes()
    if text.count(old.encode()) != 1:
        return None
    path.write_bytes(text.replace(old.encode(), new.encode()))
    return text


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--worktree", default="/tmp/mutants", type=Path)
    parser.add_argument("--build", type=Path, help="build directory (default: WORKTREE/build/mutants)")
    parser.add_argument("--only", default="", help="run only the mutants whose file contains this text")
    parser.add_argument("--list", action="store_true", help="print the mutants and stop")
    args = parser.parse_args()
    mutants = [m for m in MUTANTS if args.only in m[1]]
    if args.list:
        for i, (folder, path, old, new) in enumerate(mutants, 1):
            print(f"{i:2} {folder:17} {path}: {old!r} -> {new!r}")
        return 0

    repo = Path(__file__).resolve().parent.parent
    worktree = args.worktree
    build = args.build or worktree / "build" / "mutants"
    prepare_worktree(repo, worktree)
    configure(worktree, build)
    for sig in (signal.SIGTERM, signal.SIGHUP, signal.SIGINT):
        signal.signal(sig, on_signal)

    # Each folder's tests must pass before a fault in it can mean anything; a run of a mutant
    # may take four times as long as that, plus a minute.
    limits = {}
    for folder in sorted({m[0] for m in mutants}):
        start = time.monotonic()
        if not build_tests(build, folder) or not run_tests(build, folder, None):
            sys.exit(f"the {folder} tests do not build or pass unmutated")
        limits[folder] = 60 + 4 * (time.monotonic() - start)

    killed, survivors, stillborn, stale = 0, [], [], []
    for i, (folder, name, old, new) in enumerate(mutants, 1):
        path = worktree / name
        original = None
        try:
            original = apply(path, old, new)
            if original is None:
                stale.append((name, old))
                verdict = "stale"
            elif not build_tests(build, folder):
                stillborn.append((name, old))
                verdict = "does not build"
            elif run_tests(build, folder, limits[folder]):
                survivors.append((folder, name, old, new))
                verdict = "SURVIVED"
            else:
                killed += 1
                verdict = "killed"
        finally:
            if original is not None:
                path.write_bytes(original)
        print(f"[{i}/{len(mutants)}] {verdict:14} {name}: {old.strip()!r}", flush=True)

    counted = killed + len(survivors)
    print(f"\n{killed} of {counted} mutants killed; {len(stillborn)} did not build, {len(stale)} stale")
    for folder, name, old, new in survivors:
        print(f"survivor ({folder} tests): {name}: {old.strip()!r} -> {new.strip()!r}")
    for name, old in stale:
        print(f"stale: {name}: {old.strip()!r}")
    return 0 if not stale else 1


if __name__ == "__main__":
    try:
        sys.exit(main())
    except Interrupted as e:
        sys.exit(f"interrupted ({e}); the mutated file was written back")
