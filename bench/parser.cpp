// Whole-note parse throughput, in MB/s of the UTF-8 source, beside md4c and cmark on the same
// bytes when they are installed.
#include "MarkdownEngine/Core/MarkdownDocument.h"
#include "MarkdownEngine/Parser/BlockTokenizer.h"
#include "support/BenchData.h"

#include <benchmark/benchmark.h>
#include <optional>

#ifdef VELMO_HAVE_MD4C
#include <md4c.h>
#endif
#ifdef VELMO_HAVE_CMARK
#include <cmark.h>
#endif

using namespace velmo::markdown;

namespace {

const QString& notes()
{
    static const QString text = velmo::bench::concatenatedNotes(1000);
    return text;
}

const QString& bigNote()
{
    static const QString text = velmo::bench::bigNoteText();
    return text;
}

void velmoParse(benchmark::State& state, const QString& (*source)())
{
    const QString& text = source();
    const int64_t bytes = text.toUtf8().size();
    for (auto _ : state) {
        MarkdownDocument document = MarkdownDocument::parse(text);
        benchmark::DoNotOptimize(document.blocks.data());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * bytes);
}

// The same, with the tree freed outside the timing, as the editor frees the one a keystroke
// replaced after the frame.
void velmoParseKept(benchmark::State& state, const QString& (*source)())
{
    const QString& text = source();
    const int64_t bytes = text.toUtf8().size();
    std::optional<MarkdownDocument> document;
    for (auto _ : state) {
        document = MarkdownDocument::parse(text);
        benchmark::DoNotOptimize(document->blocks.data());
        state.PauseTiming();
        document.reset();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * bytes);
}

// The block half alone: lines, blocks and quote markers, no inlines.
void velmoBlocks(benchmark::State& state, const QString& (*source)())
{
    const QString& text = source();
    const int64_t bytes = text.toUtf8().size();
    for (auto _ : state) {
        BlockTokenizer tokenizer(text, {});
        std::vector<MarkdownBlock> blocks = tokenizer.parseBlocks();
        BlockTokenizer::attachQuoteMarkers(blocks, tokenizer.lines(), text);
        benchmark::DoNotOptimize(blocks.data());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * bytes);
}

// A keystroke's parse: one letter typed into the middle of the note, then taken back, each
// reparsed from the document before it.
void velmoReparse(benchmark::State& state, const QString& (*source)())
{
    const QString& text = source();
    const qsizetype middle = text.indexOf(u' ', text.size() / 2);
    const QString typed = QString(text).insert(middle, u'a');
    MarkdownDocument document = MarkdownDocument::parse(text);
    bool typeLetter = true;
    size_t replaced = 0;
    for (auto _ : state) {
        MarkdownDocumentChange change;
        document = MarkdownDocument::reparse(std::move(document), typeLetter ? typed : text, change);
        replaced = change.newEnd - change.firstBlock;
        typeLetter = !typeLetter;
    }
    state.counters["blocksParsed"] = double(replaced);
}

#ifdef VELMO_HAVE_MD4C
int md4cBlock(MD_BLOCKTYPE, void*, void*) { return 0; }
int md4cSpan(MD_SPANTYPE, void*, void*) { return 0; }
int md4cText(MD_TEXTTYPE, const MD_CHAR*, MD_SIZE, void*) { return 0; }

void md4cParse(benchmark::State& state, const QString& (*source)())
{
    const QByteArray bytes = source().toUtf8();
    MD_PARSER parser{};
    parser.flags = MD_DIALECT_GITHUB | MD_FLAG_LATEXMATHSPANS | MD_FLAG_WIKILINKS;
    parser.enter_block = md4cBlock;
    parser.leave_block = md4cBlock;
    parser.enter_span = md4cSpan;
    parser.leave_span = md4cSpan;
    parser.text = md4cText;
    for (auto _ : state)
        benchmark::DoNotOptimize(md_parse(bytes.constData(), MD_SIZE(bytes.size()), &parser, nullptr));
    state.SetBytesProcessed(int64_t(state.iterations()) * bytes.size());
}
#endif

#ifdef VELMO_HAVE_CMARK
void cmarkParse(benchmark::State& state, const QString& (*source)())
{
    const QByteArray bytes = source().toUtf8();
    for (auto _ : state) {
        cmark_node* document = cmark_parse_document(bytes.constData(), size_t(bytes.size()), CMARK_OPT_DEFAULT);
        benchmark::DoNotOptimize(document);
        cmark_node_free(document);
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * bytes.size());
}
#endif

}

BENCHMARK_CAPTURE(velmoParse, notes1000, notes)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(velmoParse, bigNote, bigNote)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(velmoParseKept, notes1000, notes)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(velmoParseKept, bigNote, bigNote)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(velmoReparse, bigNote, bigNote)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(velmoBlocks, notes1000, notes)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(velmoBlocks, bigNote, bigNote)->Unit(benchmark::kMillisecond);
#ifdef VELMO_HAVE_MD4C
BENCHMARK_CAPTURE(md4cParse, notes1000, notes)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(md4cParse, bigNote, bigNote)->Unit(benchmark::kMillisecond);
#endif
#ifdef VELMO_HAVE_CMARK
BENCHMARK_CAPTURE(cmarkParse, notes1000, notes)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(cmarkParse, bigNote, bigNote)->Unit(benchmark::kMillisecond);
#endif

VELMO_BENCHMARK_MAIN()
