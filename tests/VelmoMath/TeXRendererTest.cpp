#include "VelmoMath/TeXLayoutEngine.h"
#include "VelmoMath/TeXParser.h"
#include "VelmoMath/TeXRenderer.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QImage>
#include <cmath>
#include <gtest/gtest.h>

using namespace velmo::math;

namespace {

struct Reference {
    const char* name;
    const char* source;
    TeXStyle style;
};

// A few classics, drawn at 2x and kept as PNG beside this file. Set VELMO_UPDATE_REFERENCES=1
// to write them afresh after a deliberate change, and look at them before committing.
const Reference references[] = {
    {"quadratic", "x = \\frac{-b \\pm \\sqrt{b^2-4ac}}{2a}", TeXStyle::display},
    {"euler", "e^{i\\pi} + 1 = 0", TeXStyle::text},
    {"matrix", "\\begin{pmatrix} a & b \\\\ c & d \\end{pmatrix}", TeXStyle::display},
    {"sum", "\\sum_{k=0}^{n} \\binom{n}{k} = 2^n", TeXStyle::display},
    {"nested", "\\frac{1}{1+\\frac{1}{\\sqrt[3]{1+\\sqrt{x}}}}", TeXStyle::display},
    {"integral", "\\int_0^\\infty e^{-x^2}\\,dx = \\frac{\\sqrt{\\pi}}{2}", TeXStyle::display},
};

// Pixels count as ink from a quarter coverage on.
QRect inkRect(const QImage& image)
{
    QRect rect;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) >= 64)
                rect = rect.united(QRect(x, y, 1, 1));
        }
    }
    return rect;
}

// The share of 4x4-pixel cells, over the union of both images, whose ink coverage differs
// by more than half: small shifts of anti-aliasing between font versions don't count.
double cellDifference(const QImage& a, const QImage& b)
{
    constexpr int cell = 4;
    const int width = std::max(a.width(), b.width());
    const int height = std::max(a.height(), b.height());
    const auto coverage = [](const QImage& image, int cx, int cy) {
        double sum = 0;
        for (int y = cy * cell; y < (cy + 1) * cell; ++y) {
            for (int x = cx * cell; x < (cx + 1) * cell; ++x) {
                if (x < image.width() && y < image.height())
                    sum += qAlpha(image.pixel(x, y)) / 255.0;
            }
        }
        return sum / (cell * cell);
    };
    int cells = 0;
    int differing = 0;
    for (int cy = 0; cy * cell < height; ++cy) {
        for (int cx = 0; cx * cell < width; ++cx) {
            const double ca = coverage(a, cx, cy);
            const double cb = coverage(b, cx, cy);
            if (ca == 0 && cb == 0)
                continue;
            ++cells;
            if (std::abs(ca - cb) > 0.5)
                ++differing;
        }
    }
    return cells ? double(differing) / cells : 0;
}

}

TEST(TeXRenderer, picturesMatchTheReferences)
{
    TeXFontResolver resolver;
    const TeXLayoutEngine engine(resolver, 16);
    const QString dir = velmo::test::sourceDir() + QStringLiteral("/tests/VelmoMath/reference/");
    const bool update = qEnvironmentVariableIntValue("VELMO_UPDATE_REFERENCES") == 1;
    for (const Reference& reference : references) {
        const TeXBox box = engine.layout(TeXParser::parse(QString::fromUtf8(reference.source), reference.style),
                                         reference.style);
        const QImage image = TeXRenderer::picture(box, 2, Qt::black, 2)
                                 .image.convertToFormat(QImage::Format_ARGB32);
        const QString path = dir + QString::fromUtf8(reference.name) + QStringLiteral(".png");
        if (update) {
            QDir().mkpath(dir);
            ASSERT_TRUE(image.save(path, "PNG")) << qPrintable(path);
            continue;
        }
        const QImage expected = QImage(path).convertToFormat(QImage::Format_ARGB32);
        ASSERT_FALSE(expected.isNull()) << qPrintable(path);
        // Sizes and ink boxes within a few pixels, and nearly all ink where it was.
        EXPECT_NEAR(image.width(), expected.width(), 6) << reference.name;
        EXPECT_NEAR(image.height(), expected.height(), 6) << reference.name;
        const QRect ink = inkRect(image);
        const QRect expectedInk = inkRect(expected);
        EXPECT_NEAR(ink.left(), expectedInk.left(), 4) << reference.name;
        EXPECT_NEAR(ink.top(), expectedInk.top(), 4) << reference.name;
        EXPECT_NEAR(ink.right(), expectedInk.right(), 6) << reference.name;
        EXPECT_NEAR(ink.bottom(), expectedInk.bottom(), 4) << reference.name;
        EXPECT_LT(cellDifference(image, expected), 0.1) << reference.name;
    }
}

TEST(TeXRenderer, picturesScaleAndKeepTheBaseline)
{
    TeXFontResolver resolver;
    const TeXLayoutEngine engine(resolver, 16);
    const TeXBox box = engine.layout(TeXParser::parse(QStringLiteral("x")), TeXStyle::text);
    for (const double scale : {1.0, 2.0, 3.0}) {
        const TeXRenderer::Picture picture = TeXRenderer::picture(box, scale, Qt::black, 1);
        EXPECT_DOUBLE_EQ(picture.image.devicePixelRatio(), scale);
        EXPECT_GE(picture.image.width(), std::floor((box.width + 2) * scale)); // more where the italic x overhangs
        // An x sits on the baseline: its ink ends there.
        const QRect ink = inkRect(picture.image);
        EXPECT_NEAR(ink.bottom() + 1, picture.baseline * scale, 1.0 + scale * 0.3) << scale;
    }
    // Colour: glyphs without their own take the ink given; missing commands keep theirs.
    TeXLayoutEngine red(resolver, 16, std::nullopt, QColor(Qt::red));
    const QImage image = TeXRenderer::picture(red.layout(TeXParser::parse(QStringLiteral("\\foo")), TeXStyle::text),
                                              2, Qt::blue)
                             .image.convertToFormat(QImage::Format_ARGB32);
    const QRect ink = inkRect(image);
    bool sawRed = false;
    for (int y = ink.top(); y <= ink.bottom(); ++y) {
        for (int x = ink.left(); x <= ink.right(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            if (qAlpha(pixel) == 255) {
                EXPECT_EQ(qBlue(pixel), 0);
                sawRed = sawRed || qRed(pixel) == 255;
            }
        }
    }
    EXPECT_TRUE(sawRed);
    // A huge box is drawn at a smaller scale rather than as a giant image.
    const TeXBox wide = engine.layout(TeXParser::parse(QStringLiteral("\\qquad").repeated(2000) + QLatin1Char('x')),
                                      TeXStyle::text);
    EXPECT_LE(TeXRenderer::picture(wide, 2, Qt::black, 1, 4096).image.width(), 4096);
}
