#include "ConflictDialog.h"

#include <QPushButton>

namespace velmo::ui {

ConflictDialog::ConflictDialog(const app::SyncConflict& conflict, QWidget* parent)
    : QMessageBox(parent)
    , m_conflict(conflict)
{
    using app::SyncResolution;
    setIcon(QMessageBox::Warning);
    setWindowTitle(conflict.sheetTitle());
    setText(conflict.sheetTitle());
    setInformativeText(conflict.sheetMessage());
    setWindowModality(Qt::WindowModal);
    const struct {
        SyncResolution resolution;
        ButtonRole role;
    } choices[] = {
        {SyncResolution::keepMine, AcceptRole},
        {SyncResolution::useOther, ActionRole},
        {SyncResolution::keepBoth, ActionRole},
        {SyncResolution::later, RejectRole},
    };
    for (const auto& choice : choices) {
        QPushButton* button = addButton(app::choiceTitle(choice.resolution), choice.role);
        if (choice.resolution == SyncResolution::keepMine)
            setDefaultButton(button);
        if (choice.resolution == SyncResolution::later)
            setEscapeButton(button);
        connect(button, &QPushButton::clicked, this,
                [this, resolution = choice.resolution] { emit resolved(m_conflict, resolution); });
    }
}

}
