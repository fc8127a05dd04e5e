#pragma once

#include <QString>

namespace velmo::editor::VelmoPaths {

// VELMO_SUPPORT_DIR when set (a leading tilde expanded), else ~/.local/share/Velmo.
QString support();
QString themes();
QString session();
// Creates `support` and `themes`; false when either could not be made.
bool ensureDirectories();

}
