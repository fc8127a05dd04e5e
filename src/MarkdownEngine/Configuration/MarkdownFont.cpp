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

// The system families' descriptors are made once: the styler asks for them by the thousand,
// and making one looks its family's name up.
MarkdownFontDescriptor MarkdownFont::system(double size, int weight)
{
    static const MarkdownFontDescriptor family{systemFamily(), 12};
    return applying(weight, withSize(family, size));
}

MarkdownFontDescriptor MarkdownFont::font(Design design, double size, int weight)
{
    switch (design) {
    case Design::system: return system(size, weight);
    case Design::serif: return serif(size, weight);
    case Design::rounded: return rounded(size, weight);
    case Design::monospaced: return monospaced(size, weight);
    }
    return system(size, weight);
}

MarkdownFontDescriptor MarkdownFont::serif(double size, int weight)
{
    static const MarkdownFontDescriptor family{systemSerif(), 12};
    return applying(weight, withSize(family, size));
}

MarkdownFontDescriptor MarkdownFont::rounded(double size, int weight)
{
    static const MarkdownFontDescriptor family{systemRounded(), 12};
    return applying(weight, withSize(family, size));
}

MarkdownFontDescriptor MarkdownFont::monospaced(double size, int weight)
{
    static const MarkdownFontDescriptor family{systemMonospaced(), 12};
    return applying(weight, withSize(family, size));
}

MarkdownFontDescriptor MarkdownFont::named(const std::optional<QString>& name, double size, int weight)
{
    // Whatever the design, a name that does not load falls to serif.
    if (!name || name->isEmpty() || !isAvailable(*name))
        return serif(size, weight);
    return applying(weight, MarkdownFontDescriptor{*name, float(size)});
}

MarkdownFontDescriptor MarkdownFont::withSize(const MarkdownFontDescriptor& font, double size)
{
    MarkdownFontDescriptor result = font;
    result.pointSize = float(size);
    return result;
}

MarkdownFontDescriptor MarkdownFont::tabularDigits(const MarkdownFontDescriptor& font)
{
    MarkdownFontDescriptor result = font;
    result.tabularDigits = true;
    return result;
}

MarkdownFontDescriptor MarkdownFont::applying(int weight, const MarkdownFontDescriptor& font)
{
    MarkdownFontDescriptor result = font;
    if (weight >= QFont::DemiBold)
        result.weight = QFont::Bold;
    else if (weight <= QFont::Light && result.isBold())
        result.weight = QFont::Normal;
    return result;
}

MarkdownFontDescriptor MarkdownFont::applying(Trait trait, const MarkdownFontDescriptor& font)
{
    MarkdownFontDescriptor result = font;
    if (trait == Trait::bold)
        result.weight = std::max<short>(result.weight, QFont::Bold);
    else
        result.italic = true;
    return result;
}

MarkdownFontDescriptor MarkdownFont::removing(Trait trait, const MarkdownFontDescriptor& font)
{
    MarkdownFontDescriptor result = font;
    if (trait == Trait::bold) {
        if (result.isBold())
            result.weight = QFont::Normal;
    } else {
        result.italic = false;
    }
    return result;
}

}
