# Writes a C++ source that holds files as byte arrays, one named resource each.
# cmake -DOUTPUT=<file.cpp> -DRESOURCES="NAME=path;NAME=path" -P EmbedResources.cmake
# The bytes are taken as they lie (no line-end conversion, no terminating zero added).

set(entries "")
set(arrays "")
set(index 0)
foreach(resource IN LISTS RESOURCES)
  string(FIND "${resource}" "=" split)
  string(SUBSTRING "${resource}" 0 ${split} name)
  math(EXPR start "${split} + 1")
  string(SUBSTRING "${resource}" ${start} -1 path)
  file(READ "${path}" hex HEX)
  string(LENGTH "${hex}" hexLength)
  math(EXPR size "${hexLength} / 2")
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
  string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)" "\\1\n    " bytes "${bytes}")
  string(APPEND arrays "const unsigned char kResource${index}[${size} + 1] = {\n    ${bytes}0x00};\n")
  string(APPEND entries "    {\"${name}\", kResource${index}, ${size}},\n")
  math(EXPR index "${index} + 1")
endforeach()

file(WRITE "${OUTPUT}.tmp"
"// Generated at build time from the files of shaders/; do not edit.
#include \"shaders/ShaderResources.h\"

namespace orvane {
namespace {
${arrays}}  // namespace

const TEmbeddedResource EmbeddedResources[] = {
${entries}};
const std::size_t EmbeddedResourceCount = ${index};

}  // namespace orvane
")
file(COPY_FILE "${OUTPUT}.tmp" "${OUTPUT}" ONLY_IF_DIFFERENT)
file(REMOVE "${OUTPUT}.tmp")
