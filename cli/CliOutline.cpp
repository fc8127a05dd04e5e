#include "CliCommand.h"

namespace velmo::cli {

int runOutline(const QStringList&)
{
    return usageError(QStringLiteral("outline is not available yet"));
}

}
