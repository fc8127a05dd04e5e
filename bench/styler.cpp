// The styler on already parsed notes: a full pass (fragments and store; the styled text is
// worked out by stretch) on the 1 MB note and on 100 KB of it, the styled text of the whole
// note (what opening it writes) and of a few lines (what a keystroke writes), and the
// incremental pass of a caret move between two lines, and the pass after typing a letter.
#include "MarkdownEngine/Core/TextCharacters.h"
#include "MarkdownEngine/Styling/MarkdownASTStyler.h"
#include "support/BenchData.h"
#include "../tests/MarkdownEngine/RestyleSupport.h"

#include <QGuiApplication>
#include <benchmark/benchmark.h>
#include <sys/resource.h>

using namespace velmo::markdown;

namespace {

struct Styled {
    QString text;
    MarkdownDocument document;
    MarkdownEditorConfiguration config;
};

const Styled& note(int bytes)
{
    static std::map<int, std::unique_ptr<Styled>> cache;
    auto& entry = cache[bytes];
    if (!entry) {
        entry = std::make_unique<Styled>();
        QString text = velmo::bench::bigNoteText();
        if (bytes > 0 && text.size() > bytes) {
            // Cut at a line's end so no construct is torn at the edge.
            const qsizetype end = text.indexOf(u'\n', bytes);
            text.truncate(end < 0 ? text.size() : end + 1);
        }
        entry->text = text;
        entry->document = MarkdownDocument::parse(text);
    }
    return *entry;
}

long peakKilobytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

MarkdownASTStyler::Request request(const Styled& s, MarkdownSourceEditorState selection)
{
    MarkdownASTStyler::Request r;
    r.document = &s.document;
    r.config = &s.config;
    r.selection = std::move(selection);
    return r;
}

MarkdownSourceEditorState caretAt(const QString& text, int at)
{
    MarkdownSourceEditorState state = MarkdownSourceEditorState::caret(at);
    state.selectedLineRanges = MarkdownASTStyler::activeLineRanges(state, text);
    return state;
}

void style(benchmark::State& state, int bytes)
{
    const Styled& s = note(bytes);
    const auto r = request(s, caretAt(s.text, int(s.text.size() / 2)));
    const long before = peakKilobytes();
    size_t fragments = 0;
    for (auto _ : state) {
        MarkdownASTStyler::Result result = MarkdownASTStyler::style(r);
        fragments = result.fragments.fragments().size();
        benchmark::DoNotOptimize(result.fragments.fragments().data());
    }
    state.counters["fragments"] = double(fragments);
    state.counters["blocks"] = double(s.document.blocks.size());
    // Growth of the peak over what parsing and loading had already taken.
    state.counters["peakGrowthMB"] = double(peakKilobytes() - before) / 1024.0;
    state.counters["peakMB"] = double(peakKilobytes()) / 1024.0;
    state.SetBytesProcessed(int64_t(state.iterations()) * s.text.size() * 2);
}

// The styled text of the whole 1 MB note, from a pass already made.
void resolveWhole(benchmark::State& state)
{
    const Styled& s = note(0);
    const auto result = MarkdownASTStyler::style(request(s, caretAt(s.text, int(s.text.size() / 2))));
    size_t runs = 0;
    for (auto _ : state) {
        const MarkdownStyledText styled = result.attributedString.resolved();
        runs = styled.runs().size();
        benchmark::DoNotOptimize(styled.runs().data());
    }
    state.counters["runs"] = double(runs);
}

// The styled text of the three lines around the middle of the 1 MB note.
void resolveLines(benchmark::State& state)
{
    const Styled& s = note(0);
    const int middle = int(s.text.size() / 2);
    const auto result = MarkdownASTStyler::style(request(s, caretAt(s.text, middle)));
    const int from = int(s.text.lastIndexOf(u'\n', s.text.lastIndexOf(u'\n', middle) - 1)) + 1;
    const int to = int(s.text.indexOf(u'\n', s.text.indexOf(u'\n', middle) + 1)) + 1;
    for (auto _ : state) {
        const auto stretch = result.attributedString.stretch(MarkdownSourceRange::fromBounds(from, to));
        benchmark::DoNotOptimize(stretch.styled.runs().data());
    }
}

// The caret leaves one line for another: both lines are restyled.
void caretMove(benchmark::State& state)
{
    const Styled& s = note(0);
    const int from = int(s.text.size() / 2);
    const int to = int(s.text.indexOf(u'\n', from + 2000)) + 1;
    const auto fromLine = MarkdownASTStyler::activeLineRanges(MarkdownSourceEditorState::caret(from), s.text);
    const auto toLine = MarkdownASTStyler::activeLineRanges(MarkdownSourceEditorState::caret(to), s.text);
    const auto r = request(s, caretAt(s.text, to));
    size_t fragments = 0;
    for (auto _ : state) {
        auto result = MarkdownASTStyler::selectionFragments(r, {fromLine.front(), toLine.front()});
        fragments = result.fragments.size();
        benchmark::DoNotOptimize(result.fragments.data());
    }
    state.counters["fragments"] = double(fragments);
}

// The fragments alone (block, inline and tag steps), without the store and the styled text.
void fragmentsOnly(benchmark::State& state)
{
    const Styled& s = note(0);
    const auto r = request(s, caretAt(s.text, int(s.text.size() / 2)));
    for (auto _ : state) {
        auto result = MarkdownASTStyler::selectionFragments(r, {MarkdownSourceRange{0, int(s.text.size())}});
        benchmark::DoNotOptimize(result.fragments.data());
    }
}

// Every fence coloured word by word, keyed as the editor keys its colourings.
QHash<QString, MarkdownStyledText> colouring(const MarkdownDocument& document)
{
    QHash<QString, MarkdownStyledText> code;
    for (const MarkdownBlock& block : document.blocks) {
        if (!block.is<block_kind::Fence>() || block.contentRange.length <= 0)
            continue;
        const QString content = document.text.mid(block.contentRange.location, block.contentRange.length);
        MarkdownStyledText styled(content, {});
        MarkdownTextAttributes a;
        for (int at = 0, word = 0; at < content.size(); ++word) {
            qsizetype end = content.indexOf(u' ', at + 1);
            end = end < 0 ? content.size() : end;
            a.setForeground(word % 2 ? QColor(200, 0, 0) : QColor(0, 0, 200));
            styled.add(MarkdownSourceRange::fromBounds(at, int(end)), a);
            at = int(end);
        }
        code.insert(MarkdownASTStyler::codeKey(block), styled);
    }
    return code;
}

// Text typed in a paragraph line in the middle of the 1 MB note, the caret after it: the pass
// after the edit from the store before it, which the pass owns alone (as the editor hands it
// over) or shares (and must copy). The parse and the pass before are not timed.
void typeLetter(benchmark::State& state, bool shared, bool coloured, const char16_t* letter)
{
    const Styled& s = note(0);
    int at = int(s.text.indexOf(u'\n', s.text.size() / 2)) + 1;
    while (at < s.text.size() && !s.text.at(at).isLetter())
        at = int(s.text.indexOf(u'\n', at)) + 1;
    at = int(s.text.indexOf(u' ', at));
    static Styled typed;
    const QString inserted = QString::fromUtf16(letter);
    typed.text = s.text.left(at) + inserted + s.text.mid(at);
    typed.document = MarkdownDocument::parse(typed.text);
    auto before = request(s, caretAt(s.text, at));
    auto after = request(typed, caretAt(typed.text, at + int(inserted.size())));
    static QHash<QString, MarkdownStyledText> codeBefore, codeAfter;
    if (coloured) {
        codeBefore = colouring(s.document);
        codeAfter = colouring(typed.document);
        before.highlightedCode = &codeBefore;
        after.highlightedCode = &codeAfter;
    }
    const MarkdownDocumentChange change = velmo::test::changeBetween(s.document, typed.document);
    MarkdownASTStyler::Result result, first;
    size_t styled = 0;
    for (auto _ : state) {
        state.PauseTiming();
        result = {};
        first = MarkdownASTStyler::style(before);
        MarkdownEditorFragmentStore old = first.fragments;
        if (!shared)
            first = {};
        state.ResumeTiming();
        result = MarkdownASTStyler::restyle(after, std::move(old), change, {});
        styled = result.styledBlocks;
        benchmark::DoNotOptimize(result.fragments.fragments().data());
    }
    state.counters["styledBlocks"] = double(styled);
    state.counters["fragments"] = double(result.fragments.fragments().size());
}

}

BENCHMARK_CAPTURE(typeLetter, soleOwner, false, false, u"x")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(typeLetter, shared, true, false, u"x")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(typeLetter, colouredFences, false, true, u"x")->Unit(benchmark::kMillisecond);
// A paragraph split in two: the fragments after it move along the vector.
BENCHMARK_CAPTURE(typeLetter, splitParagraph, false, false, u"\n\n")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(style, bigNote, 0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(style, note100KB, 100 * 1024)->Unit(benchmark::kMillisecond);
BENCHMARK(resolveWhole)->Unit(benchmark::kMillisecond);
BENCHMARK(resolveLines)->Unit(benchmark::kMicrosecond);
BENCHMARK(caretMove)->Unit(benchmark::kMicrosecond);
BENCHMARK(fragmentsOnly)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    velmo::markdown::ParseHeap::keepWarm();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv); // fonts need it
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
