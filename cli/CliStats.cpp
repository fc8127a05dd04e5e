#include "CliCommand.h"

namespace velmo::cli {

int runStats(const QStringList&)
{
    return usageError(QStringLiteral("stats is not available yet"));
}

}
