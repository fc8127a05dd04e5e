// The live styler over arbitrary notes and selections: no crash or sanitizer report; every
// fragment lies in the text; the styled text has exactly the source's length and its runs
// cover it in order without gaps; the fragments of a caret move lie in the text and in the
// blocks of the lines they were asked for; after an edit at the selection's start, the pass
// made from the old store equals a full one.
//
// Input: byte 0 sets the mode (bit 0 raw source, bit 1 markers always hidden), the edit's
// inserted text (bits 2-4) and how many characters it removes (bits 5-7); bytes 1-4 the
// selection (two 16-bit values, either may point past the text), then the note as UTF-8.

#include "MarkdownEngine/Configuration/MarkdownEditorConfiguration.h"
#include "MarkdownEngine/Core/TextCharacters.h"
#include "MarkdownEngine/Directives/DirectiveRegistry.h"
#include "MarkdownEngine/Styling/MarkdownASTStyler.h"

#include <QGuiApplication>
#include <cstdint>

#include "FuzzCheck.h"
#include "../tests/MarkdownEngine/RestyleSupport.h"

using namespace velmo::markdown;

namespace {

bool inside(MarkdownSourceRange range, qsizetype size)
{
    return range.location >= 0 && range.length >= 0 && range.upperBound() <= size;
}

}

// Fontconfig keeps its pattern caches for the life of the process; they are not ours to free.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libfontconfig\n";
}

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QGuiApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 5)
        return 0;
    MarkdownEditorConfiguration config;
    config.rawSourceMode = data[0] & 1;
    config.markers.revealsMarkersOnActiveLine = !(data[0] & 2);
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data + 5), qsizetype(size - 5));
    const int textSize = int(text.size());
    const int location = std::min<int>(data[1] | (data[2] << 8), textSize);
    const int length = std::min<int>(data[3] | (data[4] << 8), textSize - location);

    static const MarkdownParseOptions options = [] {
        MarkdownParseOptions o;
        o.directiveNames = DirectiveRegistry::builtIn().names();
        return o;
    }();
    const MarkdownDocument document = MarkdownDocument::parse(text, options);
    MarkdownEditorAttachmentFactory attachments(config.services);
    MarkdownASTStyler::Request request;
    request.document = &document;
    request.config = &config;
    request.attachments = &attachments;
    request.selection.selectedRanges = {{location, length}};
    const auto first = chars::lineAt(text, location);
    const auto last = chars::lineAt(text, location + std::max(length - 1, 0));
    const MarkdownSourceRange lines = MarkdownSourceRange::fromBounds(int(first.start), int(last.end));
    request.selection.selectedLineRanges = {lines};

    MarkdownASTStyler::Result result = MarkdownASTStyler::style(request);
    for (const MarkdownEditorFragment& fragment : result.fragments.fragments())
        fuzzCheck(inside(fragment.range, textSize), "fragment outside the text");
    fuzzCheck(result.attributedString.text().size() == textSize, "styled text of another length");
    int covered = 0;
    const MarkdownStyledText styled = result.attributedString.resolved();
    for (const MarkdownStyledText::Run& run : styled.runs()) {
        fuzzCheck(run.range.location == covered && run.range.length > 0, "runs with a gap or overlap");
        covered = run.range.upperBound();
    }
    fuzzCheck(covered == textSize, "runs do not cover the text");

    const auto moved = MarkdownASTStyler::selectionFragments(request, {lines});
    for (const MarkdownEditorFragment& fragment : moved.fragments)
        fuzzCheck(inside(fragment.range, textSize), "caret-move fragment outside the text");
    for (const MarkdownSourceRange& range : moved.ranges)
        fuzzCheck(inside(range, textSize), "caret-move range outside the text");

    // The edit: text typed at the selection's start over a few characters, the caret after it.
    static const char16_t* const typed[] = {u"x", u"\n", u"\n\n", u"```\n", u"=", u"- ", u"1. ", u""};
    const QString inserted = QString::fromUtf16(typed[(data[0] >> 2) & 7]);
    const int removed = std::min((data[0] >> 5) & 7, textSize - location);
    const QString after = text.left(location) + inserted + text.mid(location + removed);
    const MarkdownDocument edited = MarkdownDocument::parse(after, options);
    MarkdownASTStyler::Request next = request;
    next.document = &edited;
    next.selection = MarkdownSourceEditorState::caret(location + int(inserted.size()));
    next.selection.selectedLineRanges = MarkdownASTStyler::activeLineRanges(next.selection, after);
    const MarkdownDocumentChange change = velmo::test::changeBetween(document, edited);
    // Sole owner of the old store, or sharing it with its styled text.
    if (size % 2 == 0)
        result.attributedString = {};
    const MarkdownASTStyler::Result restyled = MarkdownASTStyler::restyle(next, std::move(result.fragments), change, {});
    fuzzCheck(velmo::test::difference(restyled, MarkdownASTStyler::style(next), after).empty(),
              "restyle differs from a full pass");
    return 0;
}
