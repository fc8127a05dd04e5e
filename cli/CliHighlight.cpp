#include "CliCommand.h"

namespace velmo::cli {

int runHighlight(const QStringList&)
{
    return usageError(QStringLiteral("highlight is not available yet"));
}

}
