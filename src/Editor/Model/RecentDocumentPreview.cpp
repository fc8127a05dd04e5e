#include "Editor/Model/RecentDocumentPreview.h"

#include "MarkdownEngine/Core/TextCharacters.h"

#include <QFile>
#include <QRegularExpression>
#include <QStringDecoder>

namespace velmo::editor::RecentDocumentPreview {

namespace {

// Unicode classes, as the patterns are written for: \s, \d and [[:alnum:]] beyond ASCII.
constexpr auto unicode = QRegularExpression::UseUnicodePropertiesOption;

QString trimmed(QStringView line)
{
    return markdown::chars::trimmedHorizontal(line).toString();
}

bool isValidUTF8(const QByteArray& bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    [[maybe_unused]] const QString text = decoder.decode(bytes);
    return !decoder.hasError();
}

// Lines at "\n"; a "\r\n" pair is one character that is not "\n", so it does not split.
QStringList lines(const QString& text)
{
    QStringList result;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'\n' && (i == 0 || text[i - 1] != u'\r')) {
            result << text.mid(start, i - start);
            start = i + 1;
        }
    }
    result << text.mid(start);
    return result;
}

}

QString load(const QUrl& url)
{
    QFile file(url.toLocalFile());
    QByteArray head;
    if (file.open(QIODevice::ReadOnly))
        head = file.read(byteLimit);
    // A read can end inside a multi-byte character: up to three bytes of it are dropped. Bytes
    // that are not UTF-8 anywhere else are repaired rather than cut.
    if (!isValidUTF8(head)) {
        for (qsizetype cut = 1; cut <= 3 && cut <= head.size(); ++cut) {
            if (isValidUTF8(head.left(head.size() - cut))) {
                head.chop(cut);
                break;
            }
        }
    }
    return text(QString::fromUtf8(head));
}

QString text(const QString& head)
{
    static const QRegularExpression titleHeading(QStringLiteral("^#\\s+\\S"), unicode);
    const QStringList all = lines(head);
    qsizetype i = 0;
    if (!all.isEmpty() && trimmed(all[0]) == QLatin1String("---")) {
        i = 1;
        while (i < all.size() && trimmed(all[i]) != QLatin1String("---"))
            ++i;
        ++i; // the closing line; with none, all the rest is front matter
    }
    QStringList collected;
    bool inFence = false;
    bool titleChecked = false;
    for (; i < all.size() && collected.size() < lineLimit; ++i) {
        const QString line = trimmed(all[i]);
        if (line.startsWith(QLatin1String("```")) || line.startsWith(QLatin1String("~~~"))) {
            inFence = !inFence;
            continue;
        }
        if (inFence)
            continue;
        // A level-one heading repeats the note's title, but only as the very first kept line.
        if (!titleChecked && !line.isEmpty()) {
            titleChecked = true;
            if (titleHeading.match(line).hasMatch())
                continue;
        }
        const QString reading = plain(line);
        if (!reading.isEmpty())
            collected << reading;
    }
    const QString joined = collected.join(u'\n');
    if (joined.size() <= characterLimit)
        return joined;
    return joined.left(characterLimit) + u'…';
}

QString plain(const QString& line)
{
    struct Rule {
        QRegularExpression pattern;
        QString replacement;
    };
    static const std::vector<Rule> rules = [] {
        const std::pair<const char*, const char*> table[] = {
            {"^#{1,6}\\s*", ""},
            {"^(?:[-*+]|\\d+[.)])\\s+", ""},
            {"^\\[[ xX]\\]\\s*", ""},
            {"!\\[[^\\]]*\\]\\([^\\)]*\\)", ""},
            {"\\[\\[[^\\[\\]|]*\\|([^\\[\\]]*)\\]\\]", "\\1"},
            {"\\[\\[([^\\[\\]]*)\\]\\]", "\\1"},
            {"\\[([^\\]]*)\\]\\([^\\)]*\\)", "\\1"},
            {"<[^>]*>", ""},
            {"`", ""},
            {"\\*{1,3}|~~", ""},
            {"(?<![[:alnum:]])_+|_+(?![[:alnum:]])", ""},
            {"\\\\", ""},
            {" \\| ", " · "},
        };
        std::vector<Rule> built;
        for (const auto& [pattern, replacement] : table)
            built.push_back({QRegularExpression(QString::fromUtf8(pattern), unicode), QString::fromUtf8(replacement)});
        return built;
    }();
    QString result = line;
    while (result.startsWith(u'>'))
        result = trimmed(QStringView(result).mid(1));
    for (const Rule& rule : rules)
        result.replace(rule.pattern, rule.replacement);
    return trimmed(result);
}

}
