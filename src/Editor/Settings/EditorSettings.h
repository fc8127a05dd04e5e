#pragma once

#include <QObject>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>
#include <memory>
#include <vector>

namespace velmo::editor {

// The user's settings: every key the scripted driver's `set` names, each observable. Values
// live in memory; `persist` writes them to the store (debounced by the application state).
// Settings made without a store (for tests and automation) never touch the user's file.
class EditorSettings : public QObject {
    Q_OBJECT

public:
    enum class Kind { number, text, flag, choice };
    struct Key {
        QString name;
        QString storageKey;
        Kind kind;
        QVariant defaultValue;
        QStringList choices; // for `choice` keys: the accepted raw values
    };
    static const std::vector<Key>& keys();
    static const Key* key(const QString& name);

    // In-memory settings with every default.
    EditorSettings();
    // Settings read from `store` and written back to it by `persist`.
    explicit EditorSettings(std::unique_ptr<QSettings> store);
    // The user's settings store (~/.config/Velmo/Velmo.conf).
    static std::unique_ptr<EditorSettings> standard();
    // The store itself; other per-user values of the application live there too.
    static std::unique_ptr<QSettings> userStore();
    ~EditorSettings() override;

    QVariant value(const QString& name) const;
    // Notifies `changed` only when the value really changes.
    void setValue(const QString& name, const QVariant& value);

    // What the driver's `set` answers; the value is applied when the answer is not an error.
    struct Assignment {
        bool applied = false;
        QString message;
    };
    Assignment assign(const QString& name, const QString& rawValue);

    void persist();
    bool isPersistent() const { return m_store != nullptr; }

    double fontSize() const { return value("fontSize").toDouble(); }
    double autoSaveDelay() const { return value("autoSaveDelay").toDouble(); }
    bool autoSave() const { return value("autoSave").toBool(); }
    bool showsSidebar() const { return value("showsSidebar").toBool(); }
    bool rawSourceMode() const { return value("rawSourceMode").toBool(); }
    bool revealMarkersOnActiveLine() const { return value("revealMarkersOnActiveLine").toBool(); }
    bool wikiLinksEnabled() const { return value("wikiLinksEnabled").toBool(); }
    QString font() const { return value("font").toString(); }
    QString theme() const { return value("theme").toString(); }

signals:
    void changed(const QString& name);

private:
    QVariantMap m_values;
    std::unique_ptr<QSettings> m_store;
};

}
