#pragma once

#include <QObject>
#include <QString>
#include <QVariant>

namespace velmo::markdown {

// Where menus and toolbars post the bus's requests and the editor listens, so that neither
// holds the other. One for the process, used on the main thread.
class MarkdownEditorNotifications : public QObject {
    Q_OBJECT

public:
    static MarkdownEditorNotifications& shared();

    void post(const QString& name, const QVariant& payload = {}) { emit posted(name, payload); }

signals:
    void posted(const QString& name, const QVariant& payload);
};

}
