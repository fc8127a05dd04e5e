#include "Editor/Settings/EditorSettings.h"

#include <QCoreApplication>

namespace velmo::editor {

const std::vector<EditorSettings::Key>& EditorSettings::keys()
{
    static const std::vector<Key> table = [] {
        std::vector<Key> keys;
        auto add = [&](const char* name, Kind kind, QVariant value, QStringList choices = {}, QString storage = {}) {
            keys.push_back({QString::fromLatin1(name), storage.isEmpty() ? QString::fromLatin1(name) : storage,
                            kind, std::move(value), std::move(choices)});
        };
        add("fontSize", Kind::number, 15.0);
        add("autoSaveDelay", Kind::number, 1.0);
        add("dailyNotesFolder", Kind::text, QString("Daily"), {}, "VelmoDailyNotesFolder");
        add("dailyNoteTemplate", Kind::text, QString(), {}, "VelmoDailyNoteTemplate");
        add("dailyNoteDateFormat", Kind::text, QString("yyyy-MM-dd"), {}, "VelmoDailyNoteDateFormat");
        add("syntaxTheme", Kind::text, QString());
        add("templatesFolder", Kind::text, QString("Templates"), {}, "VelmoTemplatesFolder");
        const std::pair<const char*, bool> flags[] = {
            {"focusMode", false}, {"typewriterMode", false}, {"rawSourceMode", false},
            {"spellChecking", true}, {"grammarChecking", false}, {"smartQuotes", false},
            {"autoSave", true}, {"outlineVisible", false}, {"showsSidebar", true},
            {"highlightSyntax", true}, {"renderMath", true}, {"renderImages", true},
            {"renderDiagrams", true}, {"canCheckForUpdates", false}, {"revealMarkersOnActiveLine", true},
            {"showsLineNumbers", false}, {"stylesBarVisible", false}, {"wikiLinksEnabled", true},
            {"wordCountVisible", true},
        };
        for (const auto& [name, on] : flags)
            add(name, Kind::flag, on);
        add("font", Kind::choice, QString("serif"), {"system", "serif", "rounded", "monospaced"});
        add("lineWidth", Kind::choice, QString("medium"), {"narrow", "medium", "wide"});
        add("lineSpacing", Kind::choice, QString("standard"), {"compact", "standard", "relaxed"});
        add("language", Kind::choice, QString("system"), {"system", "en", "ja", "zh-Hans"});
        // Theme ids come from the theme library; any text is kept and resolved there.
        add("theme", Kind::text, QString("default"));
        return keys;
    }();
    return table;
}

const EditorSettings::Key* EditorSettings::key(const QString& name)
{
    for (const Key& key : keys()) {
        if (key.name == name)
            return &key;
    }
    return nullptr;
}

EditorSettings::EditorSettings()
{
    for (const Key& key : keys())
        m_values.insert(key.name, key.defaultValue);
}

EditorSettings::EditorSettings(std::unique_ptr<QSettings> store)
    : EditorSettings()
{
    m_store = std::move(store);
    for (const Key& key : keys()) {
        const QVariant stored = m_store->value(key.storageKey);
        if (!stored.isValid())
            continue;
        // A stored value of the wrong type (an old or hand-edited file) keeps the default.
        QVariant converted = stored;
        const QMetaType type = key.defaultValue.metaType();
        if (converted.convert(type))
            m_values.insert(key.name, converted);
    }
}

std::unique_ptr<QSettings> EditorSettings::userStore()
{
    return std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope, "Velmo", "Velmo");
}

std::unique_ptr<EditorSettings> EditorSettings::standard()
{
    return std::make_unique<EditorSettings>(userStore());
}

EditorSettings::~EditorSettings() = default;

QVariant EditorSettings::value(const QString& name) const
{
    return m_values.value(name);
}

void EditorSettings::setValue(const QString& name, const QVariant& value)
{
    auto it = m_values.find(name);
    if (it == m_values.end() || *it == value)
        return;
    *it = value;
    emit changed(name);
}

EditorSettings::Assignment EditorSettings::assign(const QString& name, const QString& rawValue)
{
    const Key* k = key(name);
    if (!k)
        return {false, "unknown setting " + name};
    switch (k->kind) {
    case Kind::number: {
        bool ok = false;
        const double number = rawValue.toDouble(&ok);
        if (!ok)
            return {false, name + " needs a number"};
        setValue(name, number);
        return {true, name + " = " + QString::number(number)};
    }
    case Kind::text:
        setValue(name, rawValue);
        return {true, rawValue.isEmpty() ? name + " (cleared)" : name + " = " + rawValue};
    case Kind::flag: {
        const QString v = rawValue.toLower();
        const bool on = v == "1" || v == "true" || v == "yes" || v == "on";
        setValue(name, on);
        return {true, name + " = " + (on ? "true" : "false")};
    }
    case Kind::choice: {
        if (!k->choices.contains(rawValue)) {
            static const QHash<QString, QString> refusals = {
                {"font", "no font "}, {"lineWidth", "no line width "},
                {"lineSpacing", "no line spacing "}, {"language", "no language "}};
            return {false, refusals.value(name, "no " + name + " ") + rawValue};
        }
        setValue(name, rawValue);
        QString message = name + " = " + rawValue;
        if (name == QLatin1String("language"))
            message += " (applies on relaunch)";
        return {true, message};
    }
    }
    return {};
}

void EditorSettings::persist()
{
    if (!m_store)
        return;
    for (const Key& key : keys())
        m_store->setValue(key.storageKey, m_values.value(key.name));
    m_store->sync();
}

}
