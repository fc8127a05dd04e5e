// Not a timing: a fingerprint of whole parses, for checking that a change to the parser
// leaves its output byte-identical. Prints one hash per input (the vault notes, the big note,
// hostile inputs); with a folder argument it also writes each dump there, for diffing.
//   build/bench/bench_parser_golden [dump-folder]
#include "MarkdownEngine/Core/MarkdownDocument.h"
#include "support/BenchData.h"
#include <QCryptographicHash>
#include <QFile>
#include <cstdio>
using namespace velmo::markdown;
static void r(QString& o, MarkdownSourceRange x) { o += QString::number(x.location) + ',' + QString::number(x.length) + ' '; }
static void s(QString& o, const QString& x) { o += '"' + x + '"'; }
static QString dumpDoc(const MarkdownDocument& d)
{
    QString o;
    for (const MarkdownBlock& b : d.blocks) {
        o += "B" + QString::number(b.kind.index()) + ' ';
        r(o, b.range); r(o, b.contentRange);
        for (auto m : b.markerRanges) r(o, m);
        o += QString::number(b.quoteDepth) + ' ' + QString::number(b.listDepth) + '\n';
        for (const MarkdownInline& top : b.inlines) top.forEach([&](const MarkdownInline& n) {
            o += " I" + QString::number(n.kind.index()) + ' ';
            r(o, n.range); r(o, n.contentRange);
            for (auto m : n.markerRanges) r(o, m);
            o += 'c' + QString::number(n.children().size());
            using namespace inline_kind;
            if (auto p = n.as<Escape>()) o += QString::number(p->character);
            if (auto p = n.as<Code>()) { s(o, b.inlines.string(d.text, p->language)); o += p->hasLanguage ? '1' : '0'; }
            if (auto p = n.as<Emphasis>()) o += QString::number(int(p->emphasis));
            if (auto p = n.as<Link>()) { s(o, b.inlines.string(d.text, p->destination)); s(o, b.inlines.string(d.text, p->title)); o += p->hasDestination ? '1' : '0'; o += p->hasTitle ? '1' : '0'; }
            if (auto p = n.as<WikiLink>()) { s(o, b.inlines.string(d.text, p->target)); s(o, b.inlines.string(d.text, p->display)); }
            if (auto p = n.as<Image>()) { s(o, b.inlines.string(d.text, p->source)); s(o, b.inlines.string(d.text, p->alt)); o += p->isEmbed ? '1' : '0'; }
            if (auto p = n.as<Latex>()) { s(o, b.inlines.string(d.text, p->source)); o += p->isBlock ? '1' : '0'; }
            if (auto p = n.as<FootnoteReference>()) s(o, b.inlines.string(d.text, p->label));
            if (auto p = n.as<Html>()) s(o, b.inlines.string(d.text, p->source));
            if (auto p = n.as<ExtensionSpan>()) s(o, b.inlines.string(d.text, p->name));
            o += '\n';
        });
    }
    return o;
}
static QString rep(const QString& u, int total = 1000000) { QString t; while (t.size() < total) t += u; return t; }
int main(int argc, char** argv)
{
    QList<QPair<QString, QString>> inputs{
        {"notes", velmo::bench::concatenatedNotes(1000)}, {"big", velmo::bench::bigNoteText()},
        {"alt", rep("*a_b")}, {"dollar", rep("$word ")}, {"brackets", rep("[abcdefgh ")}, {"nestem", QString("*a ").repeated(30000) + "x" + QString(" a*").repeated(30000)},
        {"links", QString("[a ").repeated(3000) + "x" + QString("](u)").repeated(3000)}, {"tilde", rep("~~a ==b ")}, {"angle", rep("<word ")}, {"dd", rep("$5 word ")}};
    for (auto& [name, text] : inputs) {
        QString d = dumpDoc(MarkdownDocument::parse(text));
        QByteArray u = d.toUtf8();
        if (argc > 1) { QFile f(QString(argv[1]) + "/" + name + ".dump"); f.open(QIODevice::WriteOnly); f.write(u); }
        printf("%s %s %lld\n", qPrintable(name), QCryptographicHash::hash(u, QCryptographicHash::Sha256).toHex().left(16).constData(), (long long)u.size());
    }
}
