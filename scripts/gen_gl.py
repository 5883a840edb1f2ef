#!/usr/bin/env python3
"""Generates the OpenGL, EGL and GLU entry-point tables of opengl/.

Reads the Khronos GL registry (gl.xml), the EGL headers (<EGL/egl.h>, <EGL/eglext.h>) and the
GLU header (<GL/glu.h>, for its constants only; the GLU function types are written below by
hand), and writes into the output folder:

  GlApi.h        types, constexpr constants, function types and extern variables of the
                 namespace dglOpenGL, the extension flags and the Read_ operations
  GlApi.cpp      the variables, the flags, the Read_ operations and the name tables
  GlUnits.h/.cpp the variables of the namespaces GL and GLu with their name tables

Usage: gen_gl.py --gl-xml PATH --egl-dir DIR --glu-h PATH --out DIR
"""

import argparse
import os
import re
import sys
import xml.etree.ElementTree as ET

# GL extension families whose flags are kept, and the order in which ReadExtensions reads the
# groups of a family. Families with functions that are not listed are read after these.
FLAG_FAMILIES = ["ARB", "EXT", "NV", "SGIX", "AMD", "APPLE", "ATI", "SGIS", "KHR", "SUN",
                 "IBM", "HP", "INGR", "SGI", "3DFX", "INTEL", "OML", "MESA", "OVR", "PGI",
                 "WIN", "REND", "S3", "SUNX"]
READ_ORDER = ["ARB", "3DFX", "APPLE", "ATI", "AMD", "EXT", "HP", "IBM", "INGR", "INTEL",
              "MESA", "NV", "PGI", "OVR", "SGIS", "SGIX", "SGI", "SUNX", "SUN"]
# EGL families take the place of the WGL ones, read last in this order.
EGL_READ_ORDER = ["KHR", "EXT", "MESA", "NV"]

# The GL types, written for this platform (LP64 Linux) instead of through khrplatform.h.
GL_TYPES = """\
using GLenum = unsigned int;
using GLboolean = unsigned char;
using GLbitfield = unsigned int;
using GLvoid = void;
using GLbyte = std::int8_t;
using GLubyte = std::uint8_t;
using GLshort = std::int16_t;
using GLushort = std::uint16_t;
using GLint = int;
using GLuint = unsigned int;
using GLclampx = std::int32_t;
using GLsizei = int;
using GLfloat = float;
using GLclampf = float;
using GLdouble = double;
using GLclampd = double;
using GLeglClientBufferEXT = void*;
using GLeglImageOES = void*;
using GLchar = char;
using GLcharARB = char;
using GLhandleARB = unsigned int;
using GLhalf = std::uint16_t;
using GLhalfARB = std::uint16_t;
using GLfixed = std::int32_t;
using GLintptr = std::intptr_t;
using GLintptrARB = std::intptr_t;
using GLsizeiptr = std::intptr_t;
using GLsizeiptrARB = std::intptr_t;
using GLint64 = std::int64_t;
using GLint64EXT = std::int64_t;
using GLuint64 = std::uint64_t;
using GLuint64EXT = std::uint64_t;
struct __GLsync;
using GLsync = __GLsync*;
struct _cl_context;
struct _cl_event;
using GLDEBUGPROC = void (*)(GLenum source, GLenum type, GLuint id, GLenum severity, GLsizei length, const GLchar* message, const void* userParam);
using GLDEBUGPROCARB = GLDEBUGPROC;
using GLDEBUGPROCKHR = GLDEBUGPROC;
using GLDEBUGPROCAMD = void (*)(GLuint id, GLenum category, GLenum severity, GLsizei length, const GLchar* message, void* userParam);
using GLhalfNV = unsigned short;
using GLvdpauSurfaceNV = GLintptr;
using GLVULKANPROCNV = void (*)();
"""
GL_TYPE_NAMES = set(re.findall(r"using (\w+) =", GL_TYPES)) | {"struct _cl_context", "struct _cl_event"}

# The EGL core types; the native types are pointer-sized on every platform EGL runs on here.
EGL_TYPES = """\
using EGLBoolean = unsigned int;
using EGLint = std::int32_t;
using EGLenum = unsigned int;
using EGLDisplay = void*;
using EGLConfig = void*;
using EGLSurface = void*;
using EGLContext = void*;
using EGLClientBuffer = void*;
using EGLSync = void*;
using EGLImage = void*;
using EGLAttrib = std::intptr_t;
using EGLTime = std::uint64_t;
using EGLNativeDisplayType = void*;
using EGLNativePixmapType = std::uintptr_t;
using EGLNativeWindowType = std::uintptr_t;
using TeglProc = void (*)();
"""
KHRONOS_TYPES = {
    "khronos_int32_t": "std::int32_t", "khronos_uint32_t": "std::uint32_t",
    "khronos_int64_t": "std::int64_t", "khronos_uint64_t": "std::uint64_t",
    "khronos_utime_nanoseconds_t": "std::uint64_t", "khronos_stime_nanoseconds_t": "std::int64_t",
    "khronos_ssize_t": "std::intptr_t", "khronos_intptr_t": "std::intptr_t",
    "intptr_t": "std::intptr_t", "__eglMustCastToProperFunctionPointerType": "TeglProc",
}

# GLU function types, in the order of the GLU unit's variables (the published GLU 1.3
# interface, with the Windows-only gluErrorUnicodeStringEXT), then what the NURBS
# renderer offers beyond it.
GLU_FUNCTIONS = [
    ("gluErrorString", "const GLubyte*", "GLenum errCode"),
    ("gluErrorUnicodeStringEXT", "const wchar_t*", "GLenum errCode"),
    ("gluGetString", "const GLubyte*", "GLenum name"),
    ("gluOrtho2D", "void", "GLdouble left, GLdouble right, GLdouble bottom, GLdouble top"),
    ("gluPerspective", "void", "GLdouble fovy, GLdouble aspect, GLdouble zNear, GLdouble zFar"),
    ("gluPickMatrix", "void", "GLdouble x, GLdouble y, GLdouble delX, GLdouble delY, GLint* viewport"),
    ("gluLookAt", "void", "GLdouble eyeX, GLdouble eyeY, GLdouble eyeZ, GLdouble centerX, GLdouble centerY, GLdouble centerZ, GLdouble upX, GLdouble upY, GLdouble upZ"),
    ("gluProject", "GLint", "GLdouble objX, GLdouble objY, GLdouble objZ, const GLdouble* model, const GLdouble* proj, const GLint* view, GLdouble* winX, GLdouble* winY, GLdouble* winZ"),
    ("gluUnProject", "GLint", "GLdouble winX, GLdouble winY, GLdouble winZ, const GLdouble* model, const GLdouble* proj, const GLint* view, GLdouble* objX, GLdouble* objY, GLdouble* objZ"),
    ("gluScaleImage", "GLint", "GLenum format, GLsizei wIn, GLsizei hIn, GLenum typeIn, const void* dataIn, GLsizei wOut, GLsizei hOut, GLenum typeOut, GLvoid* dataOut"),
    ("gluBuild1DMipmaps", "GLint", "GLenum target, GLint internalFormat, GLsizei width, GLenum format, GLenum type, const void* data"),
    ("gluBuild2DMipmaps", "GLint", "GLenum target, GLint internalFormat, GLsizei width, GLsizei height, GLenum format, GLenum type, const void* data"),
    ("gluNewQuadric", "GLUquadric*", ""),
    ("gluDeleteQuadric", "void", "GLUquadric* quad"),
    ("gluQuadricNormals", "void", "GLUquadric* quad, GLenum normal"),
    ("gluQuadricTexture", "void", "GLUquadric* quad, GLboolean texture"),
    ("gluQuadricOrientation", "void", "GLUquadric* quad, GLenum orientation"),
    ("gluQuadricDrawStyle", "void", "GLUquadric* quad, GLenum draw"),
    ("gluCylinder", "void", "GLUquadric* quad, GLdouble base, GLdouble top, GLdouble height, GLint slices, GLint stacks"),
    ("gluDisk", "void", "GLUquadric* quad, GLdouble inner, GLdouble outer, GLint slices, GLint loops"),
    ("gluPartialDisk", "void", "GLUquadric* quad, GLdouble inner, GLdouble outer, GLint slices, GLint loops, GLdouble start, GLdouble sweep"),
    ("gluSphere", "void", "GLUquadric* quad, GLdouble radius, GLint slices, GLint stacks"),
    ("gluQuadricCallback", "void", "GLUquadric* quad, GLenum which, TGLUFuncPtr callback"),
    ("gluNewTess", "GLUtesselator*", ""),
    ("gluDeleteTess", "void", "GLUtesselator* tess"),
    ("gluTessBeginPolygon", "void", "GLUtesselator* tess, GLvoid* data"),
    ("gluTessBeginContour", "void", "GLUtesselator* tess"),
    ("gluTessVertex", "void", "GLUtesselator* tess, GLdouble* location, GLvoid* data"),
    ("gluTessEndContour", "void", "GLUtesselator* tess"),
    ("gluTessEndPolygon", "void", "GLUtesselator* tess"),
    ("gluTessProperty", "void", "GLUtesselator* tess, GLenum which, GLdouble data"),
    ("gluTessNormal", "void", "GLUtesselator* tess, GLdouble valueX, GLdouble valueY, GLdouble valueZ"),
    ("gluTessCallback", "void", "GLUtesselator* tess, GLenum which, TGLUFuncPtr callback"),
    ("gluGetTessProperty", "void", "GLUtesselator* tess, GLenum which, GLdouble* data"),
    ("gluNewNurbsRenderer", "GLUnurbs*", ""),
    ("gluDeleteNurbsRenderer", "void", "GLUnurbs* nurb"),
    ("gluBeginSurface", "void", "GLUnurbs* nurb"),
    ("gluBeginCurve", "void", "GLUnurbs* nurb"),
    ("gluEndCurve", "void", "GLUnurbs* nurb"),
    ("gluEndSurface", "void", "GLUnurbs* nurb"),
    ("gluBeginTrim", "void", "GLUnurbs* nurb"),
    ("gluEndTrim", "void", "GLUnurbs* nurb"),
    ("gluPwlCurve", "void", "GLUnurbs* nurb, GLint count, GLfloat* data, GLint stride, GLenum type"),
    ("gluNurbsCurve", "void", "GLUnurbs* nurb, GLint knotCount, GLfloat* knots, GLint stride, GLfloat* control, GLint order, GLenum type"),
    ("gluNurbsSurface", "void", "GLUnurbs* nurb, GLint sKnotCount, GLfloat* sKnots, GLint tKnotCount, GLfloat* tKnots, GLint sStride, GLint tStride, GLfloat* control, GLint sOrder, GLint tOrder, GLenum type"),
    ("gluLoadSamplingMatrices", "void", "GLUnurbs* nurb, const GLfloat* model, const GLfloat* perspective, const GLint* view"),
    ("gluNurbsProperty", "void", "GLUnurbs* nurb, GLenum property, GLfloat value"),
    ("gluGetNurbsProperty", "void", "GLUnurbs* nurb, GLenum property, GLfloat* data"),
    ("gluNurbsCallback", "void", "GLUnurbs* nurb, GLenum which, TGLUFuncPtr callback"),
    ("gluBeginPolygon", "void", "GLUtesselator* tess"),
    ("gluNextContour", "void", "GLUtesselator* tess, GLenum type"),
    ("gluEndPolygon", "void", "GLUtesselator* tess"),
]
GLU_UNIT_COUNT = 52  # the GLu unit holds the first 52; dglOpenGL also has the ones below
GLU_EXTRA = [
    ("gluNurbsCallbackData", "void", "GLUnurbs* nurb, GLvoid* userData"),
]

# The WGL names of dglOpenGL with their types; the platform layer gives those that mean
# something over EGL, the others stay nil.
WGL_FUNCTIONS = [
    ("wglCopyContext", "BOOL", "HGLRC src, HGLRC dst, unsigned int mask"),
    ("wglCreateLayerContext", "HGLRC", "HDC dc, int layerPlane"),
    ("wglCreateContext", "HGLRC", "HDC dc"),
    ("wglDeleteContext", "BOOL", "HGLRC rc"),
    ("wglDescribeLayerPlane", "BOOL", "HDC dc, int pixelFormat, int layerPlane, unsigned int bytes, void* plane"),
    ("wglGetCurrentContext", "HGLRC", ""),
    ("wglGetCurrentDC", "HDC", ""),
    ("wglGetLayerPaletteEntries", "int", "HDC dc, int layerPlane, int start, int entries, unsigned int* colors"),
    ("wglGetProcAddress", "PROC", "const char* name"),
    ("wglMakeCurrent", "BOOL", "HDC dc, HGLRC rc"),
    ("wglRealizeLayerPalette", "BOOL", "HDC dc, int layerPlane, BOOL realize"),
    ("wglSetLayerPaletteEntries", "int", "HDC dc, int layerPlane, int start, int entries, const unsigned int* colors"),
    ("wglShareLists", "BOOL", "HGLRC rc1, HGLRC rc2"),
    ("wglSwapLayerBuffers", "BOOL", "HDC dc, unsigned int planes"),
    ("wglSwapMultipleBuffers", "unsigned int", "unsigned int count, const void* swaps"),
    ("wglUseFontBitmapsA", "BOOL", "HDC dc, unsigned int first, unsigned int count, unsigned int listBase"),
    ("wglUseFontOutlinesA", "BOOL", "HDC dc, unsigned int first, unsigned int count, unsigned int listBase, float deviation, float extrusion, int format, void* metrics"),
    ("wglUseFontBitmapsW", "BOOL", "HDC dc, unsigned int first, unsigned int count, unsigned int listBase"),
    ("wglUseFontOutlinesW", "BOOL", "HDC dc, unsigned int first, unsigned int count, unsigned int listBase, float deviation, float extrusion, int format, void* metrics"),
    ("wglUseFontBitmaps", "BOOL", "HDC dc, unsigned int first, unsigned int count, unsigned int listBase"),
    ("wglUseFontOutlines", "BOOL", "HDC dc, unsigned int first, unsigned int count, unsigned int listBase, float deviation, float extrusion, int format, void* metrics"),
    ("wglCreateContextAttribsARB", "HGLRC", "HDC dc, HGLRC shareContext, const int* attribList"),
    ("wglGetExtensionsStringARB", "const char*", "HDC dc"),
    ("wglGetExtensionsStringEXT", "const char*", ""),
]

CPP_KEYWORDS = {"near", "far", "template", "class", "new", "delete", "this", "operator",
                "private", "public", "namespace", "typename", "export", "register", "default"}


def version_code(number):
    major, minor = number.split(".")
    return int(major) * 10 + int(minor)


def family(name):
    return name.split("_")[1]


class GlRegistry:
    def __init__(self, path):
        root = ET.parse(path).getroot()
        self.commands = {}
        for cmd in root.find("commands"):
            proto = cmd.find("proto")
            name = proto.find("name").text
            ret = "".join(proto.itertext())[: -len(name)].strip()
            params = []
            for p in cmd.findall("param"):
                pname = p.find("name").text
                ptype = p.find("ptype")
                if ptype is not None and ptype.text not in GL_TYPE_NAMES:
                    sys.exit(f"gen_gl: unknown type {ptype.text} in {name}")
                text = "".join(p.itertext()).strip()
                ptext = text[: -len(pname)].strip()
                if pname in CPP_KEYWORDS:
                    pname += "_"
                params.append(f"{ptext} {pname}".replace(" *", "* ").replace("* *", "** ")
                              .replace("  ", " ").strip())
            self.commands[name] = (ret, params)
        self.enum_values = {}
        for enums in root.findall("enums"):
            for e in enums.findall("enum"):
                self.enum_values[e.get("name")] = (e.get("value"), e.get("type"))
        self.features = []  # (name, version code, [commands], [enums])
        self.core_removed = set()
        for f in root.findall("feature"):
            if f.get("api") != "gl":
                continue
            cmds, enums = self._requires(f)
            self.features.append((f.get("name"), version_code(f.get("number")), cmds, enums))
            for rem in f.findall("remove"):
                if rem.get("profile") == "core":
                    self.core_removed |= {c.get("name") for c in rem.findall("command")}
        self.extensions = []  # (name, [commands], [enums])
        for ext in root.find("extensions"):
            supported = ext.get("supported").split("|")
            if "gl" not in supported and "glcore" not in supported:
                continue
            cmds, enums = self._requires(ext)
            self.extensions.append((ext.get("name"), cmds, enums))

    @staticmethod
    def _requires(node):
        cmds, enums = [], []
        for req in node.findall("require"):
            if req.get("api") not in (None, "gl"):
                continue
            cmds += [c.get("name") for c in req.findall("command") if c.get("name") not in cmds]
            enums += [e.get("name") for e in req.findall("enum")]
        return cmds, enums

    def kept_commands(self):
        names = set()
        for _, _, cmds, _ in self.features:
            names |= set(cmds)
        for _, cmds, _ in self.extensions:
            names |= set(cmds)
        return sorted(names)

    def kept_enums(self):
        names = set()
        for _, _, _, enums in self.features:
            names |= set(enums)
        for _, _, enums in self.extensions:
            names |= set(enums)
        return sorted(n for n in names if n in self.enum_values)

    def min_version(self, command):
        versions = [v for _, v, cmds, _ in self.features if command in cmds]
        return min(versions) if versions else 0


class EglHeaders:
    """The EGL entry points and constants of <EGL/egl.h> and <EGL/eglext.h>, by group."""

    PROTO = re.compile(r"^EGLAPI\s+(.+?)\s*EGLAPIENTRY\s+(\w+)\s*\((.*)\);$")
    DEFINE = re.compile(r"^#define\s+(EGL_\w+)\s+(.+?)\s*$")
    TYPEDEF = re.compile(r"^typedef\s+([^()]+?)\s*(\w+);$")
    FNTYPEDEF = re.compile(r"^typedef\s+(.+?)\s*\(\s*EGLAPIENTRY\s*\*\s*(\w+)\)\s*\((.*)\);$")

    def __init__(self, folder):
        self.types = {n for n in re.findall(r"using (\w+) =", EGL_TYPES)}
        self.type_lines = []
        self.groups = []  # (name, [functions]) in header order
        self.extension_names = []
        self.functions = {}  # name -> (return, params)
        self.constants = {}
        self.skipped = []
        for header, is_ext in (("egl.h", False), ("eglext.h", True)):
            self._read(os.path.join(folder, header), is_ext)

    def _known(self, text):
        for word in re.findall(r"[A-Za-z_]\w*", text):
            if word in ("const", "void", "char", "int", "unsigned", "struct"):
                continue
            if word not in self.types and word not in KHRONOS_TYPES:
                return False
        return True

    def _known_params(self, args):
        args = args.strip()
        if args in ("", "void"):
            return True
        return all(self._known(re.match(r"(.*?)\w+$", a.strip()).group(1)) for a in args.split(","))

    def _translate(self, text):
        for k, v in KHRONOS_TYPES.items():
            text = re.sub(rf"(?<![\w:]){k}\b", v, text)
        return text.replace(" *", "* ").replace("  ", " ").strip()

    def _params(self, args):
        args = args.strip()
        if args in ("", "void"):
            return []
        out = []
        for a in args.split(","):
            a = a.strip()
            m = re.match(r"(.*?)(\w+)$", a)
            ptype, pname = m.group(1).strip(), m.group(2)
            if pname in CPP_KEYWORDS:
                pname += "_"
            out.append(self._translate(f"{ptype} {pname}"))
        return out

    def _read(self, path, is_ext):
        lines = open(path).read().splitlines()
        group = None
        for i, line in enumerate(lines):
            line = line.strip()
            if line.startswith("#ifndef EGL_") and i + 1 < len(lines) and \
                    lines[i + 1].strip() == f"#define {line[8:]} 1" and \
                    not line.endswith("_PROTOTYPES"):
                group = line[8:]
                self.groups.append((group, []))
                if is_ext:
                    self.extension_names.append(group)
                continue
            m = self.FNTYPEDEF.match(line)
            if m and not m.group(2).startswith("PFN"):
                if self._known(m.group(1)) and self._known_params(m.group(3)):
                    params = ", ".join(self._params(m.group(3)))
                    self.type_lines.append(
                        f"using {m.group(2)} = {self._translate(m.group(1))} (*)({params});")
                    self.types.add(m.group(2))
                continue
            m = self.TYPEDEF.match(line)
            if m and m.group(2) not in self.types:
                if self._known(m.group(1)):
                    self.type_lines.append(f"using {m.group(2)} = {self._translate(m.group(1))};")
                    self.types.add(m.group(2))
                continue
            m = self.PROTO.match(line)
            if m and group:
                ret, name, args = m.group(1), m.group(2), m.group(3)
                if name in self.functions:
                    continue
                if self._known(ret) and self._known_params(args):
                    self.functions[name] = (self._translate(ret), self._params(args))
                    self.groups[-1][1].append(name)
                else:
                    self.skipped.append(name)
                continue
            m = self.DEFINE.match(line)
            if m and group and m.group(1) != group:
                value = self._constant(m.group(2))
                if value is not None:
                    self.constants[m.group(1)] = value

    def _constant(self, text):
        m = re.match(r"^EGL_CAST\((\w+),\s*(-?\w+)\)$", text)
        if m:
            ctype, value = m.group(1), m.group(2)
            if ctype not in self.types and ctype not in KHRONOS_TYPES:
                return None
            if value == "0" and ctype not in ("EGLint",) and not ctype.startswith("EGLnsecs"):
                if "Native" in ctype and ctype != "EGLNativeDisplayType":
                    return (ctype, "0")
                return (ctype, "nullptr")
            return (ctype, value)
        if re.match(r"^0x[0-9A-Fa-f]+ull$", text):
            return ("EGLTime", text[:-3] + "ull")
        if re.match(r"^(0x[0-9A-Fa-f]+|\d+)$", text):
            return ("EGLenum", text) if int(text, 0) > 0x7FFFFFFF else ("EGLint", text)
        if re.match(r"^-\d+$", text):
            return ("EGLint", text)
        if re.match(r"^EGL_\w+$", text) and text in self.constants:
            return self.constants[text]
        return None


def read_glu_constants(path):
    out = []
    for line in open(path):
        m = re.match(r"^#define\s+(GLU_\w+)\s+(-?(?:0x[0-9A-Fa-f]+|\d+))\s*$", line)
        if m and not m.group(1).startswith("GLU_VERSION_") and m.group(1) != "GLU_EXT_object_space_tess" \
                and m.group(1) != "GLU_EXT_nurbs_tessellator":
            out.append((m.group(1), m.group(2)))
    return out


def signature(ret, params):
    return f"{ret} (*)({', '.join(params)})"


def gl_constant(name, value, vtype):
    if vtype == "ull":
        return f"inline constexpr GLuint64 {name} = {value}ull;"
    number = int(value, 0)
    if number < 0:
        return f"inline constexpr GLint {name} = {value};"
    return f"inline constexpr GLenum {name} = {value}u;"


def write_if_changed(path, text):
    if os.path.exists(path) and open(path).read() == text:
        return
    with open(path, "w") as f:
        f.write(text)


HEADER_NOTE = "// Generated by scripts/gen_gl.py from the Khronos GL registry, the EGL headers and GLU. Do not edit.\n"


def generate(gl, egl, glu_constants, out):
    commands = gl.kept_commands()
    enums = gl.kept_enums()
    gl_groups = [(f"GL_{v // 10}_{v % 10}", cmds) for _, v, cmds, _ in gl.features if cmds]
    ext_groups = [(name, cmds) for name, cmds, _ in gl.extensions if cmds]
    flag_names = sorted(name for name, _, _ in gl.extensions
                        if name.startswith("GL_") and family(name) in FLAG_FAMILIES)
    egl_groups = [(n, f) for n, f in egl.groups if f]
    egl_functions = [f for _, fs in egl_groups for f in fs]
    names = set(commands) | set(enums) | set(flag_names) | set(egl.constants) | set(egl_functions)
    clash = (set(enums) & set(flag_names)) | (set(egl.constants) & set(egl.extension_names))
    if clash:
        sys.exit(f"gen_gl: names clash: {sorted(clash)}")
    del names

    h = [HEADER_NOTE, "#pragma once\n", "#include <cstddef>", "#include <cstdint>\n",
         '#include "opengl/PlatformTypes.h"\n', "namespace dglOpenGL {\n",
         "using orvane::BOOL;", "using orvane::HDC;", "using orvane::HGLRC;", "using orvane::PROC;\n",
         "// GL types", GL_TYPES, "// EGL types", EGL_TYPES]
    h += egl.type_lines
    h += ["", "// GLU types", "struct GLUnurbs;", "struct GLUquadric;", "struct GLUtesselator;",
          "using GLUnurbsObj = GLUnurbs;", "using GLUquadricObj = GLUquadric;",
          "using GLUtesselatorObj = GLUtesselator;", "using GLUtriangulatorObj = GLUtesselator;",
          "using TGLUFuncPtr = void (*)();", ""]
    h.append("// GL constants")
    for name in enums:
        value, vtype = gl.enum_values[name]
        h.append(gl_constant(name, value, vtype))
    h.append("\n// EGL constants")
    for name, (ctype, value) in egl.constants.items():
        h.append(f"inline constexpr {ctype} {name} = {value};")
    h.append("\n// GLU constants")
    for name, value in glu_constants:
        h.append(f"inline constexpr GLenum {name} = {value}u;" if not value.startswith("-")
                 else f"inline constexpr GLint {name} = {value};")

    h.append("\n// GL entry points")
    for name in commands:
        ret, params = gl.commands[name]
        h.append(f"using T{name} = {signature(ret, params)}; extern T{name} {name};")
    h.append("\n// EGL entry points")
    for name in egl_functions:
        ret, params = egl.functions[name]
        h.append(f"using T{name} = {signature(ret, params)}; extern T{name} {name};")
    h.append("\n// GLU entry points")
    for name, ret, params in GLU_FUNCTIONS + GLU_EXTRA:
        plist = [p for p in params.split(", ") if p]
        h.append(f"using T{name} = {signature(ret, plist)}; extern T{name} {name};")
    h.append("\n// WGL entry points, answered by the EGL platform layer where they mean something")
    for name, ret, params in WGL_FUNCTIONS:
        plist = [p for p in params.split(", ") if p]
        h.append(f"using T{name} = {signature(ret, plist)}; extern T{name} {name};")

    h.append("\n// Extension flags: True when the current context lists the extension.")
    h.append("// EGL extensions stand where a Windows build has the WGL ones.")
    for name in flag_names + egl.extension_names:
        h.append(f"extern bool {name};")

    h.append("\n// Read_ operations: each resolves one version's or extension's entry points.")
    for name, _ in gl_groups + ext_groups + egl_groups:
        h.append(f"void Read_{name}();")
    h.append("\n}  // namespace dglOpenGL\n")
    write_if_changed(os.path.join(out, "GlApi.h"), "\n".join(h))

    # The source: variables, flags, Read_ operations and the name tables.
    index = {name: i for i, name in enumerate(commands)}
    ext_index = {name: i for i, (name, _, _) in enumerate(gl.extensions)}
    providers = {name: [] for name in commands}
    for name, cmds, _ in gl.extensions:
        for c in cmds:
            providers[c].append(ext_index[name])
    c = [HEADER_NOTE, '#include "opengl/GlRegistry.h"\n', '#include "opengl/dglOpenGL.h"\n',
         "namespace dglOpenGL {\n"]
    for name in commands + egl_functions + [n for n, _, _ in GLU_FUNCTIONS + GLU_EXTRA] + \
            [n for n, _, _ in WGL_FUNCTIONS]:
        c.append(f"T{name} {name} = nullptr;")
    for name in flag_names + egl.extension_names:
        c.append(f"bool {name} = false;")
    c.append("\nnamespace {\n")
    egl_index = {name: i for i, name in enumerate(egl_functions)}
    for name, cmds in gl_groups + ext_groups:
        c.append(f"constexpr std::uint16_t k{name}[] = {{{', '.join(str(index[x]) for x in cmds)}}};")
    for name, fs in egl_groups:
        c.append(f"constexpr std::uint16_t k{name}[] = {{{', '.join(str(egl_index[x]) for x in fs)}}};")
    c.append("\n}  // namespace\n")
    for name, _ in gl_groups + ext_groups:
        c.append(f"void Read_{name}() {{ registry::ResolveGLGroup(k{name}); }}")
    for name, _ in egl_groups:
        c.append(f"void Read_{name}() {{ registry::ResolveEGLGroup(k{name}); }}")

    c.append("\nnamespace registry {\n")
    c.append("namespace {\n")
    flat = []
    entries = []
    for name in commands:
        p = providers[name]
        entries.append(f'    {{"{name}", &{name}, {gl.min_version(name)}, '
                       f'{"true" if name in gl.core_removed else "false"}, {len(flat)}, {len(p)}}},')
        flat += p
    c.append(f"constexpr std::uint16_t kProviders[] = {{{', '.join(map(str, flat))}}};")
    c.append("const TGLCommand kGLCommands[] = {")
    c += entries
    c.append("};")
    c.append("constexpr const char* kGLExtensions[] = {")
    c += [f'    "{name}",' for name, _, _ in gl.extensions]
    c.append("};")
    for table, items in (("kEGLCommands", egl_functions),
                         ("kGLUCommands", [n for n, _, _ in GLU_FUNCTIONS + GLU_EXTRA]),
                         ("kWGLCommands", [n for n, _, _ in WGL_FUNCTIONS])):
        c.append(f"const TSlot {table}[] = {{")
        c += [f'    {{"{n}", &{n}}},' for n in items]
        c.append("};")
    c.append("const TFlag kExtensionFlags[] = {")
    c += [f'    {{"{n}", &{n}}},' for n in flag_names + egl.extension_names]
    c.append("};")
    c.append("const TReadGroup kExtensionReads[] = {")
    order = READ_ORDER + sorted({family(n) for n, _ in ext_groups} - set(READ_ORDER))
    for fam in order:
        for name, _ in ext_groups:
            if family(name) == fam:
                c.append(f'    {{"Read_{name}", &Read_{name}}},')
    egl_order = EGL_READ_ORDER + sorted({family(n) for n, _ in egl_groups
                                          if not n.startswith("EGL_VERSION")} - set(EGL_READ_ORDER))
    for fam in egl_order:
        for name, _ in egl_groups:
            if not name.startswith("EGL_VERSION") and family(name) == fam:
                c.append(f'    {{"Read_{name}", &Read_{name}}},')
    c.append("};")
    c.append("const TReadGroup kEGLCoreReads[] = {")
    c += [f'    {{"Read_{n}", &Read_{n}}},' for n, _ in egl_groups if n.startswith("EGL_VERSION")]
    c.append("};")
    c.append("\n}  // namespace\n")
    for fn, table in (("GLCommands", "TGLCommand"),):
        c.append(f"std::span<const {table}> {fn}() {{ return kGLCommands; }}")
    c.append("std::span<const std::uint16_t> Providers() { return kProviders; }")
    c.append("std::span<const char* const> GLExtensions() { return kGLExtensions; }")
    c.append("std::span<const TSlot> EGLCommands() { return kEGLCommands; }")
    c.append("std::span<const TSlot> GLUCommands() { return kGLUCommands; }")
    c.append("std::span<const TSlot> WGLCommands() { return kWGLCommands; }")
    c.append("std::span<const TFlag> ExtensionFlags() { return kExtensionFlags; }")
    c.append("std::span<const TReadGroup> ExtensionReads() { return kExtensionReads; }")
    c.append("std::span<const TReadGroup> EGLCoreReads() { return kEGLCoreReads; }")
    c.append(f"std::size_t GLUUnitCount() {{ return {GLU_UNIT_COUNT}; }}")
    c.append("\n}  // namespace registry\n}  // namespace dglOpenGL\n")
    write_if_changed(os.path.join(out, "GlApi.cpp"), "\n".join(c))

    # The GL and GLu units: their own variables over the same function types.
    legacy = sorted(set(gl.features[0][2]) | set(gl.features[1][2]))
    u = [HEADER_NOTE, "#pragma once\n", '#include "opengl/dglOpenGL.h"\n', "namespace GL {\n"]
    u += [f"extern dglOpenGL::T{n} {n};" for n in legacy]
    u += ["\n}  // namespace GL\n", "namespace GLu {\n"]
    u += [f"extern dglOpenGL::T{n} {n};" for n, _, _ in GLU_FUNCTIONS[:GLU_UNIT_COUNT]]
    u.append("\n}  // namespace GLu\n")
    write_if_changed(os.path.join(out, "GlUnits.h"), "\n".join(u))
    s = [HEADER_NOTE, '#include "opengl/GL.h"', '#include "opengl/GLu.h"\n', "namespace GL {\n"]
    s += [f"dglOpenGL::T{n} {n} = nullptr;" for n in legacy]
    s.append("\nconst dglOpenGL::registry::TSlot kEntryPoints[] = {")
    s += [f'    {{"{n}", &{n}}},' for n in legacy]
    s += ["};", "std::span<const dglOpenGL::registry::TSlot> EntryPoints() { return kEntryPoints; }",
          "\n}  // namespace GL\n", "namespace GLu {\n"]
    s += [f"dglOpenGL::T{n} {n} = nullptr;" for n, _, _ in GLU_FUNCTIONS[:GLU_UNIT_COUNT]]
    s.append("\nconst dglOpenGL::registry::TSlot kEntryPoints[] = {")
    s += [f'    {{"{n}", &{n}}},' for n, _, _ in GLU_FUNCTIONS[:GLU_UNIT_COUNT]]
    s += ["};", "std::span<const dglOpenGL::registry::TSlot> EntryPoints() { return kEntryPoints; }",
          "\n}  // namespace GLu\n"]
    write_if_changed(os.path.join(out, "GlUnits.cpp"), "\n".join(s))

    print(f"gen_gl: {len(commands)} GL entry points ({len(legacy)} of GL 1.0/1.1), "
          f"{len(enums)} GL constants, {len(gl_groups)} version and {len(ext_groups)} GL extension "
          f"groups, {len(flag_names)} GL and {len(egl.extension_names)} EGL extension flags, "
          f"{len(egl_functions)} EGL entry points ({len(egl.skipped)} left out for foreign types)")


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("--gl-xml", default="/usr/share/khronos-api/gl.xml")
    ap.add_argument("--egl-dir", default="/usr/include/EGL")
    ap.add_argument("--glu-h", default="/usr/include/GL/glu.h")
    ap.add_argument("--out", required=True)
    args = ap.parse_args()
    os.makedirs(args.out, exist_ok=True)
    generate(GlRegistry(args.gl_xml), EglHeaders(args.egl_dir), read_glu_constants(args.glu_h),
             args.out)


if __name__ == "__main__":
    main()
