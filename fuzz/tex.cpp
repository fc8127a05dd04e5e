// Arbitrary formula sources through parse, layout and (for small boxes) drawing: no crash, no
// hang, and every box finite with no negative width. fuzz/tex.dict holds TeX words for -dict=.

#include "VelmoMath/TeXLayoutEngine.h"
#include "VelmoMath/TeXParser.h"
#include "VelmoMath/TeXRenderer.h"

#include <QGuiApplication>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "FuzzCheck.h"

using namespace velmo::math;

namespace {

void checkBox(const TeXBox& box)
{
    fuzzCheck(std::isfinite(box.width) && std::isfinite(box.height) && std::isfinite(box.depth), "box is finite");
    fuzzCheck(box.width >= 0, "box width is not negative");
    for (const TeXItem& item : box.items) {
        if (const auto* group = std::get_if<TeXGroup>(&item)) {
            fuzzCheck(std::isfinite(group->dx) && std::isfinite(group->dy), "group offset is finite");
            checkBox(*group->box);
        } else if (const auto* scaled = std::get_if<TeXScaled>(&item)) {
            fuzzCheck(std::isfinite(scaled->scaleX) && std::isfinite(scaled->scaleY), "scale is finite");
            checkBox(*scaled->box);
        } else if (const auto* rule = std::get_if<TeXRule>(&item)) {
            fuzzCheck(std::isfinite(rule->rect.x()) && std::isfinite(rule->rect.y()), "rule position is finite");
            fuzzCheck(rule->rect.width() >= 0 && rule->rect.height() >= 0, "rule size is not negative");
        }
    }
}

}

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QGuiApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static TeXFontResolver resolver; // warm across inputs, as in the editor
    if (size == 0)
        return 0;
    // The first byte picks the reading: UTF-8 mostly, raw UTF-16 to reach lone surrogates.
    const bool utf16 = data[0] & 1;
    const TeXStyle style = (data[0] & 2) ? TeXStyle::display : TeXStyle::text;
    const QString source = utf16 ? QString::fromUtf16(reinterpret_cast<const char16_t*>(data + 1), (size - 1) / 2)
                                 : QString::fromUtf8(reinterpret_cast<const char*>(data + 1), qsizetype(size - 1));
    const TeXLayoutEngine engine(resolver, 16, std::nullopt, Qt::red);
    const TeXBox box = engine.layout(TeXParser::parse(source, style), style);
    checkBox(box);
    if ((data[0] & 4) && box.width < 400 && box.height + box.depth < 400) {
        const TeXRenderer::Picture picture = TeXRenderer::picture(box, 2, Qt::black);
        fuzzCheck(!picture.image.isNull(), "the box draws");
    }
    return 0;
}
