#pragma once

#include <QString>
#include <QUrl>
#include <QUuid>

namespace velmo::app {

// A note changed on disk underneath an edit: the user chooses what to keep.
struct SyncConflict {
    enum class Kind { editedBothPlaces, iCloudVersions };

    QUuid id = QUuid::createUuid();
    Kind kind = Kind::editedBothPlaces;
    QUrl url;
    QString title;
    QString otherText;

    // What the conflict sheet says.
    [[nodiscard]] QString sheetTitle() const;
    [[nodiscard]] QString sheetMessage() const;
};

enum class SyncResolution { keepMine, useOther, keepBoth, later };

// The sheet's button for each choice.
[[nodiscard]] QString choiceTitle(SyncResolution resolution);

}
