#include "CliCommand.h"

namespace velmo::cli {

int runTags(const QStringList&)
{
    return usageError(QStringLiteral("tags is not available yet"));
}

}
