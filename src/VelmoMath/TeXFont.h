#pragma once

#include <QRawFont>
#include <QtGlobal>

namespace velmo::math {

// A face at one size, as the resolver hands it out. `id` names the face and size for
// caches (equal ids, equal fonts) so that lookups need not compare fonts.
struct TeXFont {
    QRawFont raw;
    quint32 id = 0;
    // The typographic bounds every glyph box gets, in points: those of the Times face at this
    // size, whichever face draws the glyph. Math faces have wildly larger ascents (STIX Math:
    // 2.6 em), which would make a row's height depend on which face had a symbol.
    double ascent = 0;
    double descent = 0;
};

}
