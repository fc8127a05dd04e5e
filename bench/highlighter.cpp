// Scanning throughput of the code scanner, in bytes of UTF-8 source per second, on about
// 1 MB of ordinary code per language (a realistic snippet repeated).

#include "Highlighter/CodeScanner.h"
#include "Highlighter/SyntaxLanguageCatalog.h"

#include "support/BenchData.h"

#include <benchmark/benchmark.h>

#include <QString>

using namespace velmo::highlighter;

namespace {

constexpr const char* pythonSnippet = R"PY(
@dataclass(frozen=True)
class Note:
    """A note on disk, with its title and tags."""
    path: Path
    title: str = ""
    tags: tuple[str, ...] = ()

    def words(self, limit: int = 1_000) -> list[str]:
        # Split on blanks; keep at most `limit` words.
        text = self.path.read_text(encoding="utf-8")
        return [w.strip(".,;") for w in text.split()][:limit]

def load_all(root: Path) -> dict[str, Note]:
    notes = {}
    for p in sorted(root.rglob("*.md")):
        if p.name.startswith("."):
            continue
        notes[p.stem] = Note(p, title=p.stem.title(), tags=("inbox",))
    print(f"loaded {len(notes)} notes in {time.perf_counter() - START:.3f}s")
    return notes
)PY";

constexpr const char* javascriptSnippet = R"JS(
import { debounce } from './util.js';

/** Keeps the outline in step with the editor. */
export class OutlineView extends HTMLElement {
  static observedAttributes = ['depth'];
  #items = [];

  constructor() {
    super();
    this.refresh = debounce(() => this.render(), 150);
  }

  async render() {
    const headings = await fetch(`/api/outline?depth=${this.depth ?? 3}`).then((r) => r.json());
    this.#items = headings.filter((h) => h.level <= 3 && h.text !== '');
    // Rebuild the list in one go; small lists are cheap.
    this.innerHTML = this.#items.map((h, i) => `<li data-i="${i}">${h.text}</li>`).join('');
    return this.#items.length > 0 ? true : null;
  }
}
customElements.define('outline-view', OutlineView);
)JS";

constexpr const char* cppSnippet = R"CPP(
#include <algorithm>
#include <vector>

namespace velmo {

// Merges sorted ranges that touch or overlap; the input need not be sorted.
template <typename Range>
std::vector<Range> merged(std::vector<Range> ranges)
{
    std::sort(ranges.begin(), ranges.end(), [](const Range& a, const Range& b) {
        return a.location < b.location;
    });
    std::vector<Range> result;
    result.reserve(ranges.size());
    for (const Range& range : ranges) {
        if (!result.empty() && range.location <= result.back().end()) {
            result.back().length = std::max(result.back().end(), range.end()) - result.back().location;
            continue;
        }
        result.push_back(range);
    }
    static_assert(sizeof(Range) >= 2 * sizeof(int), "ranges hold two offsets");
    return result; /* NRVO */
}

constexpr unsigned long kMask = 0xFFFF'0000UL;
}
)CPP";

constexpr const char* rustSnippet = R"RS(
use std::collections::HashMap;

/// Counts the words of a text, ignoring case.
#[derive(Debug, Default)]
pub struct WordCount<'a> {
    counts: HashMap<&'a str, usize>,
}

impl<'a> WordCount<'a> {
    pub fn new(text: &'a str) -> Self {
        let mut counts = HashMap::new();
        for word in text.split_whitespace().filter(|w| !w.is_empty()) {
            *counts.entry(word).or_insert(0) += 1;
        }
        Self { counts }
    }

    pub fn top(&self, n: usize) -> Vec<(&'a str, usize)> {
        let mut all: Vec<_> = self.counts.iter().map(|(k, v)| (*k, *v)).collect();
        all.sort_by(|a, b| b.1.cmp(&a.1).then(a.0.cmp(b.0)));
        all.truncate(n); // keep the first n
        println!("{} words, {:.2} ms", all.len(), 1.5e-3_f64 * 1000.0);
        all
    }
}
)RS";

constexpr const char* jsonSnippet = R"JSON(
{
  "name": "Velmo Dark",
  "version": 3,
  "appearance": "dark",
  "colors": {
    "background": "#1E1F22",
    "text": "#D4D4D4",
    "accent": "#82AAFF",
    "code": { "background": "#2D2D30", "border": null, "radius": 4.5 }
  },
  "fonts": [
    { "role": "body", "family": "Noto Serif", "size": 16, "lineHeight": 1.45 },
    { "role": "code", "family": "Noto Sans Mono", "size": 13, "ligatures": false }
  ],
  "escapes": "tab\tquote\" unicode\u00e9",
  "enabled": true
},
)JSON";

constexpr const char* bashSnippet = R"SH(
#!/usr/bin/env bash
set -euo pipefail

# Back up every note changed in the last day.
backup_dir="${HOME}/backups/$(date +%Y-%m-%d)"
mkdir -p "$backup_dir"

count=0
while IFS= read -r -d '' file; do
  if [[ -f "$file" && ! -L "$file" ]]; then
    cp -- "$file" "$backup_dir/" && count=$((count + 1))
  fi
done < <(find "$VAULT" -name '*.md' -mtime -1 -print0)

case "$count" in
  0) echo "nothing to back up" ;;
  *) printf '%d notes saved to %s\n' "$count" "$backup_dir" ;;
esac
exit 0
)SH";

constexpr const char* htmlSnippet = R"HTML(
<!DOCTYPE html>
<html lang="en">
<head>
  <meta charset="utf-8">
  <title>Export &mdash; Notes</title>
  <style>
    body { font: 16px/1.5 "Noto Serif", serif; margin: 0 auto; max-width: 42em; }
    pre code { background: #f6f8fa; padding: .2em .4em; }
  </style>
</head>
<body class="note" data-theme='light'>
  <!-- exported by velmo -->
  <h1 id="title">Weekly review</h1>
  <p>See <a href="./plans.html#q3" target=_blank>plans</a> &amp; <em>notes</em>.</p>
  <ul>
    <li><input type="checkbox" checked disabled> Done</li>
    <li><input type="checkbox" disabled> Open</li>
  </ul>
  <img src="assets/graph.png" alt="graph" width="640"/>
  <script>
    document.querySelectorAll('a').forEach((a) => { if (a.host !== location.host) a.rel = 'noopener'; });
  </script>
</body>
</html>
)HTML";

constexpr const char* diffSnippet = R"DIFF(
diff --git a/src/Note.cpp b/src/Note.cpp
index 3f2a1b0..9c8d7e6 100644
--- a/src/Note.cpp
+++ b/src/Note.cpp
@@ -12,9 +12,11 @@ QString Note::title() const
 {
     const QString first = firstLine(text);
-    if (first.startsWith(u'#'))
-        return first.mid(1).trimmed();
+    // Headings of any level name the note.
+    qsizetype level = 0;
+    while (level < first.size() && first[level] == u'#')
+        ++level;
+    if (level > 0 && level <= 6)
+        return first.mid(level).trimmed();
     return fileName.chopped(3);
 }
 
)DIFF";

QString repeatedToAboutOneMegabyte(const char* snippet)
{
    const QByteArray unit(snippet);
    QByteArray source;
    source.reserve(1 << 20);
    while (source.size() < (1 << 20))
        source += unit;
    return QString::fromUtf8(source);
}

void scan(benchmark::State& state, const SyntaxLanguage& language, const char* snippet)
{
    const QString code = repeatedToAboutOneMegabyte(snippet);
    const qsizetype utf8Bytes = code.toUtf8().size();
    std::size_t tokenCount = 0;
    for (auto _ : state) {
        const std::vector<SyntaxToken> tokens = CodeScanner::scanned(code, language);
        tokenCount = tokens.size();
        benchmark::DoNotOptimize(tokens.data());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * utf8Bytes);
    state.counters["tokens"] = double(tokenCount);
}

void python(benchmark::State& s) { scan(s, SyntaxLanguageCatalog::python(), pythonSnippet); }
void javascript(benchmark::State& s) { scan(s, SyntaxLanguageCatalog::javascript(), javascriptSnippet); }
void cpp(benchmark::State& s) { scan(s, SyntaxLanguageCatalog::cpp(), cppSnippet); }
void rust(benchmark::State& s) { scan(s, SyntaxLanguageCatalog::rust(), rustSnippet); }
void json(benchmark::State& s) { scan(s, SyntaxLanguageCatalog::json(), jsonSnippet); }
void bash(benchmark::State& s) { scan(s, SyntaxLanguageCatalog::shell(), bashSnippet); }
void html(benchmark::State& s) { scan(s, SyntaxLanguageCatalog::html(), htmlSnippet); }
void diff(benchmark::State& s) { scan(s, SyntaxLanguageCatalog::diff(), diffSnippet); }

}

BENCHMARK(python)->Unit(benchmark::kMillisecond);
BENCHMARK(javascript)->Unit(benchmark::kMillisecond);
BENCHMARK(cpp)->Unit(benchmark::kMillisecond);
BENCHMARK(rust)->Unit(benchmark::kMillisecond);
BENCHMARK(json)->Unit(benchmark::kMillisecond);
BENCHMARK(bash)->Unit(benchmark::kMillisecond);
BENCHMARK(html)->Unit(benchmark::kMillisecond);
BENCHMARK(diff)->Unit(benchmark::kMillisecond);

VELMO_BENCHMARK_MAIN()
