#pragma once

#include <string_view>

#include "base/Result.h"
#include "storage/Archive.h"
#include "storage/ArchiveText.h"

namespace tendel {

// An archive as a JSON object (RFC 8259): "format", the version of the form, then a list for each
// kind of record, one record a line. What is absent has no member.
void writeJson(const Archive& archive, const TextSink& sink);
// Members that it does not know make no difference. `text` is UTF-8.
Result<Archive> parseJson(std::string_view text);

}  // namespace tendel
