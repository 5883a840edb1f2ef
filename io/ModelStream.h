// Puts a read model into bytes and back, so that it can come out of the process that read
// the file.
#pragma once

#include <string>
#include <string_view>

#include "io/CadFaceData.h"

namespace orvane::io {

std::string EncodeModel(const CadModelData& Model);

// Raises ECadFileError (CadFileReader.h) "the reader's answer is damaged" for bytes that
// EncodeModel did not make.
CadModelData DecodeModel(std::string_view Bytes);

}  // namespace orvane::io
