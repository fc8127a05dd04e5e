#include "VelmoMath/TeXBox.h"

#include <QJsonArray>
#include <QRawFont>
#include <cmath>

namespace velmo::math {

namespace {

double rounded(double value)
{
    return std::round(value * 1000) / 1000;
}

QRectF unite(const QRectF& a, const QRectF& b)
{
    if (a.isNull())
        return b;
    if (b.isNull())
        return a;
    return a.united(b);
}

}

QRectF TeXBox::inkBounds() const
{
    QRectF bounds;
    for (const TeXItem& item : items) {
        if (const auto* glyph = std::get_if<TeXGlyph>(&item)) {
            bounds = unite(bounds, glyph->ink);
        } else if (const auto* rule = std::get_if<TeXRule>(&item)) {
            bounds = unite(bounds, rule->rect);
        } else if (const auto* group = std::get_if<TeXGroup>(&item)) {
            const QRectF inner = group->box->inkBounds();
            if (!inner.isNull())
                bounds = unite(bounds, inner.translated(group->dx, group->dy));
        } else if (const auto* scaled = std::get_if<TeXScaled>(&item)) {
            const QRectF inner = scaled->box->inkBounds();
            if (!inner.isNull()) {
                bounds = unite(bounds, QRectF(QPointF(inner.left() * scaled->scaleX, inner.top() * scaled->scaleY),
                                              QPointF(inner.right() * scaled->scaleX, inner.bottom() * scaled->scaleY))
                                           .normalized());
            }
        }
    }
    return bounds;
}

QJsonObject TeXBox::toJson() const
{
    QJsonArray list;
    for (const TeXItem& item : items) {
        QJsonObject json;
        if (const auto* glyph = std::get_if<TeXGlyph>(&item)) {
            const QRawFont font = glyph->run.rawFont();
            json.insert(QStringLiteral("type"), QStringLiteral("glyph"));
            json.insert(QStringLiteral("text"), glyph->text);
            json.insert(QStringLiteral("family"), font.familyName());
            json.insert(QStringLiteral("style"), font.styleName());
            json.insert(QStringLiteral("size"), rounded(font.pixelSize()));
            if (glyph->color)
                json.insert(QStringLiteral("color"), glyph->color->name(QColor::HexArgb));
        } else if (const auto* rule = std::get_if<TeXRule>(&item)) {
            json.insert(QStringLiteral("type"), QStringLiteral("rule"));
            json.insert(QStringLiteral("x"), rounded(rule->rect.x()));
            json.insert(QStringLiteral("y"), rounded(rule->rect.y()));
            json.insert(QStringLiteral("width"), rounded(rule->rect.width()));
            json.insert(QStringLiteral("height"), rounded(rule->rect.height()));
        } else if (const auto* group = std::get_if<TeXGroup>(&item)) {
            json.insert(QStringLiteral("type"), QStringLiteral("group"));
            json.insert(QStringLiteral("dx"), rounded(group->dx));
            json.insert(QStringLiteral("dy"), rounded(group->dy));
            json.insert(QStringLiteral("box"), group->box->toJson());
        } else if (const auto* scaled = std::get_if<TeXScaled>(&item)) {
            json.insert(QStringLiteral("type"), QStringLiteral("scaled"));
            json.insert(QStringLiteral("scaleX"), rounded(scaled->scaleX));
            json.insert(QStringLiteral("scaleY"), rounded(scaled->scaleY));
            json.insert(QStringLiteral("box"), scaled->box->toJson());
        }
        list.append(json);
    }
    QJsonObject json;
    json.insert(QStringLiteral("width"), rounded(width));
    json.insert(QStringLiteral("height"), rounded(height));
    json.insert(QStringLiteral("depth"), rounded(depth));
    json.insert(QStringLiteral("items"), list);
    return json;
}

}
