#include "MarkdownEngine/Configuration/MarkdownFont.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>
#include <QMutex>
#include <QSet>

namespace velmo::markdown {

namespace {

// The serif faces a reader of long text expects, then what Linux installs in their place
// (Noto, DejaVu, and Liberation Serif, metric-compatible with Times New Roman).
const char* const preferredSerifFamilies[] = {
    "Charter", "New York", "Iowan Old Style", "Palatino", "Georgia", "Times New Roman", "Baskerville",
    "Apple Garamond", "Noto Serif", "DejaVu Serif", "Liberation Serif",
};

const QSet<QString>& installedFamilies()
{
    static const QSet<QString> families = [] {
        const QStringList list = QFontDatabase::families();
        return QSet<QString>(list.begin(), list.end());
    }();
    return families;
}

}

QString MarkdownFont::rawValue(Design design)
{
    switch (design) {
    case Design::system: return QStringLiteral("system");
    case Design::serif: return QStringLiteral("serif");
    case Design::rounded: return QStringLiteral("rounded");
    case Design::monospaced: return QStringLiteral("monospaced");
    }
    return {};
}

std::optional<MarkdownFont::Design> MarkdownFont::design(const QString& rawValue)
{
    for (Design d : {Design::system, Design::serif, Design::rounded, Design::monospaced}) {
        if (MarkdownFont::rawValue(d) == rawValue)
            return d;
    }
    return std::nullopt;
}

bool MarkdownFont::isAvailable(const QString& family)
{
    return !family.isEmpty() && installedFamilies().contains(family);
}

const std::optional<QString>& MarkdownFont::preferredSerif()
{
    static const std::optional<QString> serif = []() -> std::optional<QString> {
        for (const char* name : preferredSerifFamilies) {
            if (isAvailable(QString::fromLatin1(name)))
                return QString::fromLatin1(name);
        }
        return std::nullopt;
    }();
    return serif;
}

QString MarkdownFont::systemFamily()
{
    static const QString family = QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
    return family;
}

QString MarkdownFont::systemSerif()
{
    if (preferredSerif())
        return *preferredSerif();
    if (!systemFamily().isEmpty())
        return systemFamily();
    return QStringLiteral("Charter");
}

QString MarkdownFont::systemMonospaced()
{
    static const QString family = [] {
        QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        // The offscreen platform names the generic "monospace"; resolve it to a real face.
        QString name = QFontInfo(fixed).family();
        if (name.isEmpty())
            name = fixed.family();
        return name.isEmpty() ? QStringLiteral("SF Mono") : name;
    }();
    return family;
}

QString MarkdownFont::systemRounded()
{
    // No rounded system design on Linux.
    return systemFamily().isEmpty() ? QStringLiteral("SF Pro Text") : systemFamily();
}

MarkdownFontSpec MarkdownFont::system(double size, int weight)
{
    MarkdownFontSpec spec{systemFamily(), float(size)};
    return applying(weight, spec);
}

MarkdownFontSpec MarkdownFont::font(Design design, double size, int weight)
{
    switch (design) {
    case Design::system: return system(size, weight);
    case Design::serif: return serif(size, weight);
    case Design::rounded: return rounded(size, weight);
    case Design::monospaced: return monospaced(size, weight);
    }
    return system(size, weight);
}

MarkdownFontSpec MarkdownFont::serif(double size, int weight)
{
    return applying(weight, MarkdownFontSpec{systemSerif(), float(size)});
}

MarkdownFontSpec MarkdownFont::rounded(double size, int weight)
{
    return applying(weight, MarkdownFontSpec{systemRounded(), float(size)});
}

MarkdownFontSpec MarkdownFont::monospaced(double size, int weight)
{
    return applying(weight, MarkdownFontSpec{systemMonospaced(), float(size)});
}

MarkdownFontSpec MarkdownFont::named(const std::optional<QString>& name, double size, int weight)
{
    // Whatever the design, a name that does not load falls to serif.
    if (!name || name->isEmpty() || !isAvailable(*name))
        return serif(size, weight);
    return applying(weight, MarkdownFontSpec{*name, float(size)});
}

MarkdownFontSpec MarkdownFont::withSize(const MarkdownFontSpec& font, double size)
{
    MarkdownFontSpec result = font;
    result.pointSize = float(size);
    return result;
}

MarkdownFontSpec MarkdownFont::tabularDigits(const MarkdownFontSpec& font)
{
    MarkdownFontSpec result = font;
    result.tabularDigits = true;
    return result;
}

MarkdownFontSpec MarkdownFont::applying(int weight, const MarkdownFontSpec& font)
{
    MarkdownFontSpec result = font;
    if (weight >= QFont::DemiBold)
        result.weight = QFont::Bold;
    else if (weight <= QFont::Light && result.isBold())
        result.weight = QFont::Normal;
    return result;
}

MarkdownFontSpec MarkdownFont::applying(Trait trait, const MarkdownFontSpec& font)
{
    MarkdownFontSpec result = font;
    if (trait == Trait::bold)
        result.weight = std::max<short>(result.weight, QFont::Bold);
    else
        result.italic = true;
    return result;
}

MarkdownFontSpec MarkdownFont::removing(Trait trait, const MarkdownFontSpec& font)
{
    MarkdownFontSpec result = font;
    if (trait == Trait::bold) {
        if (result.isBold())
            result.weight = QFont::Normal;
    } else {
        result.italic = false;
    }
    return result;
}

}
