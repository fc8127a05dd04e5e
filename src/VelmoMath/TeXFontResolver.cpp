#include "VelmoMath/TeXFontResolver.h"

#include <QFont>
#include <algorithm>
#include <cmath>

namespace velmo::math {

namespace {

struct Candidate {
    const char* family;
    bool bold;
    bool italic;
};

// The faces each role tries, best first. Liberation comes before the faces it stands in for
// so that pictures look the same on every Linux machine.
std::vector<Candidate> roleFamilies(TeXFontRole role)
{
    const auto serif = [](bool bold, bool italic) {
        return std::vector<Candidate>{{"Liberation Serif", bold, italic},
                                      {"Times New Roman", bold, italic},
                                      {"Tinos", bold, italic},
                                      {"DejaVu Serif", bold, italic}};
    };
    const std::vector<Candidate> math = {{"STIX Two Math", false, false},
                                         {"STIX Math", false, false},
                                         {"Noto Sans Math", false, false},
                                         {"STIXGeneral", false, false},
                                         {"DejaVu Math TeX Gyre", false, false}};
    switch (role) {
    case TeXFontRole::italic: return serif(false, true);
    case TeXFontRole::roman: return serif(false, false);
    case TeXFontRole::bold: return serif(true, false);
    case TeXFontRole::boldItalic: return serif(true, true);
    case TeXFontRole::sansSerif:
        return {{"Liberation Sans", false, false}, {"Helvetica", false, false}, {"Arimo", false, false},
                {"DejaVu Sans", false, false}};
    case TeXFontRole::monospace:
        return {{"DejaVu Sans Mono", false, false}, {"Menlo", false, false}, {"Liberation Mono", false, false},
                {"Noto Sans Mono", false, false}};
    case TeXFontRole::symbol:
        // Times-like symbol faces first, so that operators match the letters.
        return {{"STIX Two Math", false, false}, {"STIX", false, false},          {"STIXGeneral", false, false},
                {"Noto Sans Math", false, false}, {"STIX Math", false, false},    {"DejaVu Math TeX Gyre", false, false},
                {"Liberation Serif", false, false}};
    case TeXFontRole::blackboard:
    case TeXFontRole::calligraphic:
    case TeXFontRole::fraktur: return math;
    }
    return {};
}

// Tried after a role's own faces when they lack a character: math, then wide-coverage faces.
constexpr Candidate fallbacks[] = {
    {"STIX Two Math", false, false}, {"STIX Math", false, false},    {"Noto Sans Math", false, false},
    {"STIXGeneral", false, false},   {"DejaVu Sans", false, false},  {"Noto Sans", false, false},
    {"Noto Sans CJK JP", false, false}, {"Noto Color Emoji", false, false},
};

constexpr int roleCount = int(TeXFontRole::symbol) + 1;

// Choices for longer texts (\text runs) stop being remembered past this many.
constexpr qsizetype maxLongerChoices = 4096;

// Sizes are kept to 1/64 point in cache keys.
quint64 sizeKey(double size)
{
    return quint64(std::llround(std::clamp(size, 0.0, 65536.0) * 64)) & 0xFFFFFF;
}

char32_t mapLetter(TeXFontRole role, char32_t c)
{
    const bool upper = c >= U'A' && c <= U'Z';
    const bool lower = c >= U'a' && c <= U'z';
    switch (role) {
    case TeXFontRole::blackboard:
        switch (c) {
        case U'C': return U'ℂ';
        case U'H': return U'ℍ';
        case U'N': return U'ℕ';
        case U'P': return U'ℙ';
        case U'Q': return U'ℚ';
        case U'R': return U'ℝ';
        case U'Z': return U'ℤ';
        default: break;
        }
        if (upper)
            return 0x1D538 + (c - U'A');
        if (lower)
            return 0x1D552 + (c - U'a');
        if (c >= U'0' && c <= U'9')
            return 0x1D7D8 + (c - U'0');
        return c;
    case TeXFontRole::calligraphic:
        switch (c) {
        case U'B': return U'ℬ';
        case U'E': return U'ℰ';
        case U'F': return U'ℱ';
        case U'H': return U'ℋ';
        case U'I': return U'ℐ';
        case U'L': return U'ℒ';
        case U'M': return U'ℳ';
        case U'R': return U'ℛ';
        case U'e': return U'ℯ';
        case U'g': return U'ℊ';
        case U'o': return U'ℴ';
        default: break;
        }
        if (upper)
            return 0x1D49C + (c - U'A');
        if (lower)
            return 0x1D4B6 + (c - U'a');
        return c;
    case TeXFontRole::fraktur:
        switch (c) {
        case U'C': return U'ℭ';
        case U'H': return U'ℌ';
        case U'I': return U'ℑ';
        case U'R': return U'ℜ';
        case U'Z': return U'ℨ';
        default: break;
        }
        if (upper)
            return 0x1D504 + (c - U'A');
        if (lower)
            return 0x1D51E + (c - U'a');
        return c;
    default:
        return c;
    }
}

}

QString TeXFontResolver::alphabetText(TeXFontRole role, QStringView text)
{
    if (role != TeXFontRole::blackboard && role != TeXFontRole::calligraphic && role != TeXFontRole::fraktur)
        return text.toString();
    QString mapped;
    mapped.reserve(text.size() * 2);
    for (const char32_t c : text.toUcs4()) {
        const char32_t m = mapLetter(role, c);
        if (QChar::requiresSurrogates(m)) {
            mapped.append(QChar(QChar::highSurrogate(m)));
            mapped.append(QChar(QChar::lowSurrogate(m)));
        } else {
            mapped.append(QChar(char16_t(m)));
        }
    }
    return mapped;
}

int TeXFontResolver::faceIndex(const QString& family, bool bold, bool italic)
{
    for (size_t i = 0; i < faces.size(); ++i) {
        if (faces[i].family == family && faces[i].bold == bold && faces[i].italic == italic)
            return int(i);
    }
    faces.push_back(Face{family, bold, italic, QRawFont(), false});
    return int(faces.size() - 1);
}

const QRawFont& TeXFontResolver::faceFont(int index)
{
    Face& face = faces[size_t(index)];
    if (!face.loaded) {
        face.loaded = true;
        QFont font(face.family);
        font.setBold(face.bold);
        font.setItalic(face.italic);
        font.setPixelSize(64);
        // Exact outlines and advances: layout works in fractions of a point.
        font.setHintingPreference(QFont::PreferNoHinting);
        font.setStyleStrategy(QFont::StyleStrategy(QFont::NoFontMerging | QFont::PreferOutline));
        QRawFont raw = QRawFont::fromFont(font);
        // Qt substitutes another family for a missing one; only the asked-for family counts.
        if (raw.isValid() && raw.familyName().compare(face.family, Qt::CaseInsensitive) == 0)
            face.raw = raw;
    }
    return face.raw;
}

const std::vector<int>& TeXFontResolver::candidates(TeXFontRole role)
{
    if (roleCandidates.empty()) {
        roleCandidates.resize(roleCount);
        for (int r = 0; r < roleCount; ++r) {
            std::vector<int>& list = roleCandidates[size_t(r)];
            for (const Candidate& c : roleFamilies(TeXFontRole(r)))
                list.push_back(faceIndex(QString::fromLatin1(c.family), c.bold, c.italic));
            for (const Candidate& c : fallbacks) {
                const int index = faceIndex(QString::fromLatin1(c.family), c.bold, c.italic);
                if (std::find(list.begin(), list.end(), index) == list.end())
                    list.push_back(index);
            }
            // Last resort: whatever the platform's default font is.
            list.push_back(faceIndex(QString(), false, false));
        }
    }
    return roleCandidates[size_t(role)];
}

TeXFont TeXFontResolver::sized(int face, double size)
{
    const quint64 key = (quint64(face) << 24) | sizeKey(size);
    auto found = sizedFonts.constFind(key);
    if (found != sizedFonts.constEnd())
        return found.value();
    QRawFont raw = faceFont(face);
    if (!raw.isValid() && faces[size_t(face)].family.isEmpty()) {
        QFont fallback;
        fallback.setHintingPreference(QFont::PreferNoHinting);
        raw = QRawFont::fromFont(fallback);
    }
    if (raw.isValid())
        raw.setPixelSize(std::max(size, 0.01));
    TeXFont font{raw, quint32(sizedFonts.size() + 1), 0, 0};
    // Common bounds from the roman face's first installed candidate, else this face's own.
    const std::vector<int>& romans = candidates(TeXFontRole::roman);
    const auto reference = std::find_if(romans.begin(), romans.end(), [this](int f) { return faceFont(f).isValid(); });
    if (reference != romans.end() && faceFont(*reference).pixelSize() > 0) {
        const QRawFont& measure = faceFont(*reference);
        const double factor = size / measure.pixelSize();
        font.ascent = measure.ascent() * factor;
        font.descent = measure.descent() * factor;
    } else if (raw.isValid()) {
        font.ascent = raw.ascent();
        font.descent = raw.descent();
    }
    sizedFonts.insert(key, font);
    return font;
}

bool TeXFontResolver::covers(const QRawFont& raw, QStringView text)
{
    for (const char32_t c : text.toUcs4()) {
        if (c == U' ' || c == U'\t')
            continue;
        if (!raw.supportsCharacter(c))
            return false;
    }
    return true;
}

TeXFont TeXFontResolver::font(TeXFontRole role, double size, QStringView text)
{
    const quint64 roleAndSize = (quint64(role) << 56) | (sizeKey(size) << 32);
    QString longKey;
    if (text.size() == 1) {
        auto found = singleChoices.constFind(roleAndSize | text[0].unicode());
        if (found != singleChoices.constEnd())
            return found.value();
    } else {
        longKey = QString::number(roleAndSize, 36) + QLatin1Char(':');
        longKey.append(text);
        auto found = longerChoices.constFind(longKey);
        if (found != longerChoices.constEnd())
            return found.value();
    }

    const std::vector<int>& list = candidates(role);
    int chosen = -1;
    int firstPresent = -1;
    for (const int face : list) {
        const QRawFont& raw = faceFont(face);
        if (!raw.isValid())
            continue;
        if (firstPresent < 0)
            firstPresent = face;
        if (covers(raw, text)) {
            chosen = face;
            break;
        }
    }
    // No face has every character: the role's own face draws what it can.
    if (chosen < 0)
        chosen = firstPresent >= 0 ? firstPresent : list.back();
    const TeXFont font = sized(chosen, size);
    if (text.size() == 1)
        singleChoices.insert(roleAndSize | text[0].unicode(), font);
    else if (longerChoices.size() < maxLongerChoices)
        longerChoices.insert(longKey, font);
    return font;
}

}
