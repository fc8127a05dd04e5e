#include "CliCommand.h"

#include "VelmoMath/TeXLayoutEngine.h"
#include "VelmoMath/TeXParser.h"
#include "VelmoMath/TeXRenderer.h"

#include <QJsonObject>
#include <QPainter>
#include <cstdio>

namespace velmo::cli {

// tex [--display] [--size PT] [--png FILE] SOURCE: the box tree as JSON; --png also writes
// the picture at twice the size, black on white, for a look from the shell.
int runTex(const QStringList& arguments)
{
    bool display = false;
    double size = 16;
    QString pngPath;
    QStringList sources;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (argument == u"--display") {
            display = true;
        } else if (argument == u"--size" || argument == u"--png") {
            if (i + 1 >= arguments.size())
                return usageError(argument + QStringLiteral(" needs a value"));
            const QString value = arguments[++i];
            if (argument == u"--png") {
                pngPath = value;
                continue;
            }
            bool ok = false;
            size = value.toDouble(&ok);
            if (!ok || !(size > 0) || size > 1000)
                return usageError(QStringLiteral("--size takes points between 0 and 1000"));
        } else if (argument == u"--") {
            sources += arguments.mid(i + 1);
            break;
        } else if (argument.startsWith(u"--")) {
            return usageError(QStringLiteral("unknown option ") + argument);
        } else {
            sources << argument;
        }
    }
    if (sources.size() != 1)
        return usageError(QStringLiteral("usage: velmo-cli tex [--display] [--size PT] [--png FILE] SOURCE"));

    const math::TeXStyle style = display ? math::TeXStyle::display : math::TeXStyle::text;
    math::TeXFontResolver resolver;
    const math::TeXLayoutEngine engine(resolver, size);
    const math::TeXBox box = engine.layout(math::TeXParser::parse(sources.first(), style), style);

    QJsonObject json = box.toJson();
    json.insert(QStringLiteral("source"), sources.first());
    json.insert(QStringLiteral("style"), display ? QStringLiteral("display") : QStringLiteral("text"));
    json.insert(QStringLiteral("size"), size);
    printJson(QJsonDocument(json));

    if (!pngPath.isEmpty()) {
        const math::TeXRenderer::Picture picture = math::TeXRenderer::picture(box, 2, Qt::black, 2);
        QImage image(picture.image.size(), QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(picture.image.devicePixelRatio());
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.drawImage(0, 0, picture.image);
        painter.end();
        if (!image.save(pngPath, "PNG")) {
            std::fprintf(stderr, "velmo-cli: cannot write %s\n", qPrintable(pngPath));
            return 1;
        }
    }
    return 0;
}

}
