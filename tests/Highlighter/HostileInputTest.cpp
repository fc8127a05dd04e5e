#include "Highlighter/CodeScanner.h"
#include "Highlighter/SyntaxLanguageCatalog.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>

namespace velmo::highlighter {
namespace {

// Each pattern, repeated, could make a scanner read ahead again and again. A linear scan of
// these takes a few milliseconds even under the sanitizers; a quadratic one takes seconds there.
TEST(CodeScanner, HostileInputStaysLinear)
{
    const char16_t* patterns[] = {
        u"\\begin{", u"<script>", u"</", u"&a", u"a:", u"a:b ", u"'a", u"\"", u"\"\"\"",
        u"/*", u"<!--", u"<a b=", u"@", u"$#", u"-a", u"\\", u"0x", u".5", u" \t", u"{",
        u"é",
    };
    const char16_t loneSurrogate[] = {0xd800, u'a', 0};
    constexpr qsizetype length = 16'000;
    std::vector<const char16_t*> all(std::begin(patterns), std::end(patterns));
    all.push_back(loneSurrogate);
    for (const char16_t* pattern : all) {
        QString text;
        while (text.size() < length)
            text += QString::fromUtf16(pattern);
        for (const SyntaxLanguage& language : SyntaxLanguageCatalog::all()) {
            QElapsedTimer one;
            one.start();
            const auto tokens = CodeScanner::scanned(text, language);
            EXPECT_LT(one.elapsed(), 500) << language.id.toStdString() << " on "
                                           << QString::fromUtf16(pattern).toStdString();
            if (!tokens.empty()) {
                EXPECT_LE(tokens.back().range.end(), text.size());
            }
        }
    }
}

}
}
