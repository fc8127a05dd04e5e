#include "CliCommand.h"

namespace velmo::cli {

int runTex(const QStringList&)
{
    return usageError(QStringLiteral("tex is not available yet"));
}

}
