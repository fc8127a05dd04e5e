#include "Editor/Model/WorkspaceSession.h"
#include "Editor/Settings/EditorSettings.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace velmo::editor;

TEST(EditorSettings, assignAnswersAsTheDriverSays)
{
    EditorSettings settings;
    struct Case { const char* key; const char* value; bool applied; const char* message; };
    const Case cases[] = {
        {"fontSize", "18", true, "fontSize = 18"},
        {"fontSize", "big", false, "fontSize needs a number"},
        {"autoSave", "off", true, "autoSave = false"},
        {"templatesFolder", "", true, "templatesFolder (cleared)"},
        {"font", "comic", false, "no font comic"},
        {"lineWidth", "huge", false, "no line width huge"},
        {"lineSpacing", "tight", false, "no line spacing tight"},
        {"language", "ja", true, "language = ja (applies on relaunch)"},
        {"language", "xx", false, "no language xx"},
        {"colour", "red", false, "unknown setting colour"},
    };
    for (const Case& c : cases) {
        const auto result = settings.assign(c.key, c.value);
        EXPECT_EQ(result.applied, c.applied) << c.key;
        EXPECT_EQ(result.message, c.message) << c.key;
    }
    EXPECT_EQ(settings.fontSize(), 18);
    EXPECT_FALSE(settings.autoSave());
}

TEST(EditorSettings, notifiesRealChangesAndPersistsToItsStore)
{
    QTemporaryDir dir;
    const QString file = dir.filePath("Velmo.conf");
    {
        EditorSettings settings(std::make_unique<QSettings>(file, QSettings::IniFormat));
        EXPECT_EQ(settings.autoSaveDelay(), 1.0);
        EXPECT_TRUE(settings.revealMarkersOnActiveLine());
        QSignalSpy spy(&settings, &EditorSettings::changed);
        settings.setValue("showsSidebar", false);
        settings.setValue("showsSidebar", false);
        EXPECT_EQ(spy.count(), 1);
        settings.setValue("dailyNotesFolder", "Journal");
        settings.persist();
    }
    EditorSettings reloaded(std::make_unique<QSettings>(file, QSettings::IniFormat));
    EXPECT_FALSE(reloaded.showsSidebar());
    EXPECT_EQ(reloaded.value("dailyNotesFolder").toString(), "Journal");
    EXPECT_EQ(QSettings(file, QSettings::IniFormat).value("VelmoDailyNotesFolder").toString(), "Journal");
}

TEST(WorkspaceSession, fileHasExactlyItsKeysAndDecodesTolerantly)
{
    WorkspaceSession session;
    session.rootPath = "/notes";
    session.addRecent(QUrl::fromLocalFile("/notes/a.md"));
    const QJsonObject object = QJsonDocument::fromJson(session.encode()).object();
    EXPECT_EQ(object.keys(), (QStringList{"carets", "expandedPaths", "lastOpenedPath", "openPaths", "outlineVisible",
                                          "quickOpenRecents", "rootPath", "sidebarVisible"}));
    EXPECT_EQ(WorkspaceSession::decode(session.encode()), session);
    EXPECT_EQ(WorkspaceSession::decode("{\"rootPath\": 3, \"sidebarVisible\": false}").sidebarVisible, false);
    EXPECT_EQ(WorkspaceSession::decode("not json"), WorkspaceSession::empty());
}

TEST(WorkspaceSession, recentsAndCaretsAreBounded)
{
    WorkspaceSession session;
    for (int i = 0; i < 450; ++i) {
        const QUrl url = QUrl::fromLocalFile(QString("/n/%1.md").arg(i));
        session.addRecent(url);
        session.rememberCaret(i, url);
    }
    EXPECT_EQ(session.quickOpenRecents.size(), 30);
    EXPECT_EQ(session.quickOpenRecents.first(), "/n/449.md");
    EXPECT_EQ(session.carets.size(), 400);
    EXPECT_FALSE(session.caret(QUrl::fromLocalFile("/n/420.md")));
    session.rememberCaret(7, QUrl::fromLocalFile("/n/./3.md"));
    EXPECT_EQ(session.caret(QUrl::fromLocalFile("/n/3.md")), 7);
}
