#include "Velmo/UIDriverEnvironment.h"

#include <algorithm>
#include <cmath>

namespace velmo::app {

// A number that does not parse counts as absent, so the default stands.
static double number(const QProcessEnvironment& environment, const QString& name, double fallback)
{
    if (!environment.contains(name))
        return fallback;
    bool ok = false;
    const double value = environment.value(name).trimmed().toDouble(&ok);
    return ok && std::isfinite(value) ? value : fallback;
}

static std::optional<QString> nonEmpty(const QProcessEnvironment& environment, const QString& name)
{
    const QString value = environment.value(name);
    if (value.isEmpty())
        return std::nullopt;
    return value;
}

UIDriverEnvironment UIDriverEnvironment::from(const QProcessEnvironment& environment)
{
    UIDriverEnvironment result;
    result.dumpPath = nonEmpty(environment, "VELMO_UI_DUMP");
    result.script = environment.value("VELMO_UI_SCRIPT");
    result.dumpDelay = number(environment, "VELMO_UI_DUMP_DELAY", result.dumpDelay);
    result.stepDelay = number(environment, "VELMO_UI_STEP_DELAY", result.stepDelay);
    result.snapshotDir = nonEmpty(environment, "VELMO_UI_SNAPSHOT_DIR");
    result.snapshotPath = nonEmpty(environment, "VELMO_UI_SNAPSHOT");
    result.quitsAtEnd = environment.value("VELMO_UI_DUMP_QUIT") != QLatin1String("0");
    result.light = environment.value("VELMO_UI_DUMP_LIGHT") == QLatin1String("1");
    result.attributes = environment.contains("VELMO_UI_DUMP_ATTRS");
    result.lines = environment.contains("VELMO_UI_LINES");
    result.frameMs = std::max(0.5, number(environment, "VELMO_UI_FRAME_MS", result.frameMs));
    return result;
}

}
