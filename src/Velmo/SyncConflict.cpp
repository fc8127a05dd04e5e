#include "Velmo/SyncConflict.h"

#include <QCoreApplication>

namespace velmo::app {

static QString localized(const char* text)
{
    return QCoreApplication::translate("Localized", text);
}

QString SyncConflict::sheetTitle() const
{
    return localized("“%1” Was Changed on Two Devices").arg(title);
}

QString SyncConflict::sheetMessage() const
{
    if (kind == Kind::iCloudVersions)
        return localized("iCloud kept the version saved on each Mac. Choose what to keep.");
    return localized("It was edited here and, at the same time, somewhere else. Choose what to keep.");
}

QString choiceTitle(SyncResolution resolution)
{
    switch (resolution) {
    case SyncResolution::keepMine:
        return localized("Keep This Mac’s");
    case SyncResolution::useOther:
        return localized("Use Other Device’s");
    case SyncResolution::keepBoth:
        return localized("Keep Both");
    case SyncResolution::later:
        return localized("Later");
    }
    return {};
}

}
