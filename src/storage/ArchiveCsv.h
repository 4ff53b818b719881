#pragma once

#include <string_view>

#include "base/Result.h"
#include "storage/Archive.h"
#include "storage/ArchiveText.h"

namespace tendel {

// An archive as one table (RFC 4180, CR LF): the column "record" names the kind of record, each
// kind fills the columns that it has.
//
// A spreadsheet would calculate a text that begins like a formula; such a text gets an apostrophe
// in front, and so does one that begins with an apostrophe, for reading to take one off again. A
// lone apostrophe is a text that is there but empty.
void writeCsv(const Archive& archive, const TextSink& sink);
// Also takes LF, columns in any order, columns that it does not know, and the separators that
// spreadsheets use where the comma is the decimal point (';' or tab). `text` is UTF-8.
Result<Archive> parseCsv(std::string_view text);

}  // namespace tendel
