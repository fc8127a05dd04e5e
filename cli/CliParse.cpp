#include "CliCommand.h"

namespace velmo::cli {

int runParse(const QStringList&)
{
    return usageError(QStringLiteral("parse is not available yet"));
}

}
