// Any language over any text: the scan ends, and its tokens are non-empty, in order, inside
// the text and never overlapping. Input: one byte picks the language, one the encoding (raw
// UTF-16 units reach lone surrogates; UTF-8 reaches structure faster), the rest is the text.

#include "Highlighter/CodeScanner.h"
#include "Highlighter/SyntaxHighlighter.h"
#include "Highlighter/SyntaxLanguageCatalog.h"

#include <QString>
#include <cstddef>
#include <cstdint>

using namespace velmo::highlighter;

namespace {

void require(bool condition)
{
    if (!condition)
        __builtin_trap();
}

template <typename Range>
void checkRanges(const std::vector<Range>& items, qsizetype size)
{
    qsizetype previousEnd = 0;
    for (const auto& item : items) {
        require(item.range.length > 0);
        require(item.range.location >= previousEnd);
        require(item.range.end() <= size);
        previousEnd = item.range.end();
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    const auto& languages = SyntaxLanguageCatalog::all();
    const SyntaxLanguage& language = languages[data[0] % languages.size()];
    const bool rawUnits = data[1] & 1;
    data += 2;
    size -= 2;
    const QString text = rawUnits
        ? QString::fromUtf16(reinterpret_cast<const char16_t*>(data), qsizetype(size / 2))
        : QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));

    checkRanges(CodeScanner::scanned(text, language), text.size());

    SyntaxHighlighter highlighter;
    highlighter.tabWidth = 1 + int(size % 8);
    const auto styled = highlighter.attributedCode(text, language.id);
    checkRanges(styled.runs, styled.text.size());
    return 0;
}
