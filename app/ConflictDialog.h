#pragma once

#include "Velmo/SyncConflict.h"

#include <QMessageBox>

namespace velmo::ui {

// The sheet that asks what to keep when a note changed here and elsewhere at once. It only
// reports the choice; the application state acts on it.
class ConflictDialog : public QMessageBox {
    Q_OBJECT

public:
    ConflictDialog(const app::SyncConflict& conflict, QWidget* parent);

    const app::SyncConflict& conflict() const { return m_conflict; }

signals:
    void resolved(const app::SyncConflict& conflict, app::SyncResolution resolution);

private:
    app::SyncConflict m_conflict;
};

}
