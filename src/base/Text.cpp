#include "base/Text.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <utility>

namespace tendel {

std::string_view trimmed(std::string_view text) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    std::size_t first = text.size(), last = text.size();
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t start = i;
        UChar32 c = 0;
        U8_NEXT(bytes, i, text.size(), c);
        if (c >= 0 && u_isUWhiteSpace(c)) continue;
        first = std::min(first, start);
        last = i;
    }
    return text.substr(first, last - first);
}

std::string foldedForSearch(std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* decomposition = icu::Normalizer2::getNFDInstance(status);
    const auto source = icu::UnicodeString::fromUTF8({text.data(), static_cast<int>(text.size())});
    const auto decomposed = decomposition->normalize(source, status);
    assert(U_SUCCESS(status));
    icu::UnicodeString bare;
    for (int i = 0; i < decomposed.length(); i = decomposed.moveIndex32(i, 1)) {
        const UChar32 c = decomposed.char32At(i);
        // Accents have a combining class; the vowel signs of the Indic scripts have none.
        if (u_getCombiningClass(c) == 0) bare.append(c);
    }
    std::string folded;
    bare.foldCase().toUTF8String(folded);
    return folded;
}

std::optional<std::size_t> firstIllFormed(std::string_view text) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t start = i;
        UChar32 c = 0;
        U8_NEXT(bytes, i, text.size(), c);
        if (c <= 0) return start;
    }
    return std::nullopt;
}

void makeWellFormed(std::string& text) {
    const std::string_view given = text;
    std::string clean;
    std::size_t done = 0;
    while (const auto bad = firstIllFormed(given.substr(done))) {
        clean += given.substr(done, *bad);
        clean += "\xef\xbf\xbd";
        done += *bad + 1;
    }
    if (done == 0) return;
    clean += given.substr(done);
    text = std::move(clean);
}

}  // namespace tendel
