// The main window's Format menu: every editing command, with the shortcuts a writer expects.
// Items whose request the editor bus carries go through the bus; the rest reach the editor's
// coordinator directly. Either way the edit is one undoable change.
#include "MainWindow.h"

#include "MarkdownEditorView.h"
#include "MarkdownEngine/Configuration/MarkdownEditorNotifications.h"
#include "MarkdownEngine/Core/MarkdownTextColor.h"
#include "MarkdownEngine/Layout/MarkdownEditorCoordinator.h"
#include "Velmo/EditorHostCoordinator.h"
#include "Velmo/AppState.h"

#include <QDate>
#include <QMenuBar>
#include <functional>
#include <map>

namespace velmo::ui {

namespace {

using markdown::MarkdownEditorCommand;
using markdown::MarkdownTableCommand;
using Simple = markdown::editor_command::Simple;
using TableKind = MarkdownTableCommand::Kind;

struct Item {
    const char* title;
    MarkdownEditorCommand command;
    QKeySequence shortcut = {};
};

MarkdownEditorCommand table(TableKind kind, markdown::MarkdownTableAlignment alignment = {})
{
    return markdown::editor_command::TableCommand{{kind, alignment}};
}

}

void MainWindow::sendCommand(const MarkdownEditorCommand& command)
{
    if (!m_coordinator || !m_state.activeDocument())
        return;
    if (const auto request = m_coordinator->config.services.bus.request(command)) {
        const auto* heading = std::get_if<markdown::editor_command::Heading>(&command);
        markdown::MarkdownEditorNotifications::shared().post(*request, heading ? QVariant(heading->level) : QVariant());
    } else if (!m_coordinator->perform(command)) {
        m_state.setStatusMessage(tr("Nothing to change here"));
    }
}

void MainWindow::buildFormatMenu()
{
    QMenu* format = menuBar()->addMenu(tr("F&ormat"));
    std::map<Simple, QAction*> marks; // the items that show the caret's inline format
    const auto add = [this, &marks](QMenu* menu, const std::vector<Item>& items) {
        for (const Item& item : items) {
            if (!item.title) {
                menu->addSeparator();
                continue;
            }
            const MarkdownEditorCommand command = item.command;
            QAction* action = menu->addAction(tr(item.title), item.shortcut, this, [this, command] { sendCommand(command); });
            if (const auto* simple = std::get_if<Simple>(&command))
                marks[*simple] = action;
        }
    };
    const Item separator{nullptr, Simple::bold};
    add(format, {
        {"Bold", Simple::bold, QKeySequence::Bold},
        {"Italic", Simple::italic, QKeySequence::Italic},
        {"Strikethrough", Simple::strikethrough, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_X)},
        {"Highlight", Simple::highlight, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_H)},
        {"Inline Code", Simple::inlineCode, QKeySequence(Qt::CTRL | Qt::Key_E)},
        {"Inline Math", Simple::inlineLatex, QKeySequence(Qt::CTRL | Qt::Key_M)},
        {"Link", Simple::link, QKeySequence(Qt::CTRL | Qt::Key_K)},
        {"Wiki Link", Simple::wikiLink, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_K)},
        {"Image", Simple::image, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_I)},
        {"Clear Formatting", Simple::clearFormatting, QKeySequence(Qt::CTRL | Qt::Key_Backslash)},
    });

    // Bold and its kin are ticked where the caret stands in them.
    const std::pair<Simple, bool markdown::InlineSelectionState::*> ticks[] = {
        {Simple::bold, &markdown::InlineSelectionState::bold},
        {Simple::italic, &markdown::InlineSelectionState::italic},
        {Simple::strikethrough, &markdown::InlineSelectionState::strikethrough},
        {Simple::highlight, &markdown::InlineSelectionState::highlight},
        {Simple::inlineCode, &markdown::InlineSelectionState::code},
    };
    std::vector<std::pair<QAction*, bool markdown::InlineSelectionState::*>> ticked;
    for (const auto& [simple, field] : ticks) {
        marks.at(simple)->setCheckable(true);
        ticked.emplace_back(marks.at(simple), field);
    }
    m_host->onFormatState = [ticked](const markdown::InlineSelectionState& state) {
        for (const auto& [action, field] : ticked)
            action->setChecked(state.*field);
    };

    QMenu* headings = format->addMenu(tr("Heading"));
    for (int level = 1; level <= 6; ++level) {
        headings->addAction(tr("Heading %1").arg(level), QKeySequence(Qt::CTRL | Qt::Key(Qt::Key_0 + level)), this,
                            [this, level] { sendCommand(markdown::editor_command::Heading{level}); });
    }
    headings->addAction(tr("Body Text"), this, [this] { sendCommand(markdown::editor_command::Heading{0}); });

    QMenu* colors = format->addMenu(tr("Text Colour"));
    for (int kind = markdown::MarkdownTextColor::red; kind <= markdown::MarkdownTextColor::gray; ++kind) {
        const markdown::MarkdownTextColor color(static_cast<markdown::MarkdownTextColor::Kind>(kind));
        const QString name = color.rawValue();
        colors->addAction(color.title(), this, [this, name] { sendCommand(markdown::editor_command::TextColor{name}); });
    }
    colors->addSeparator();
    colors->addAction(tr("No Colour"), this, [this] { sendCommand(markdown::editor_command::TextColor{}); });

    format->addSeparator();
    add(format, {
        {"Quote", Simple::blockquote, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_B)},
        {"Bulleted List", Simple::bulletList, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_8)},
        {"Numbered List", Simple::orderedList, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_7)},
        {"Task List", Simple::taskList, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_9)},
        {"Toggle Task", Simple::toggleTaskCheckbox, QKeySequence(Qt::CTRL | Qt::Key_Return)},
        {"Indent", Simple::indent, QKeySequence(Qt::CTRL | Qt::Key_BracketRight)},
        {"Outdent", Simple::outdent, QKeySequence(Qt::CTRL | Qt::Key_BracketLeft)},
        {"Move Lines Up", Simple::moveLinesUp, QKeySequence(Qt::ALT | Qt::Key_Up)},
        {"Move Lines Down", Simple::moveLinesDown, QKeySequence(Qt::ALT | Qt::Key_Down)},
        separator,
        {"Code Block", Simple::codeBlock, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C)},
        {"Math Block", Simple::blockLatex, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_M)},
        {"Horizontal Rule", Simple::thematicBreak, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Minus)},
        {"Footnote", Simple::footnote, QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_N)},
        {"Renumber Footnotes", Simple::renumberFootnotes},
    });
    format->addAction(tr("Front Matter"), this, [this] {
        const app::OpenDocument* document = m_state.activeDocument();
        const QString title = document ? document->title() : QString();
        sendCommand(markdown::editor_command::FrontMatter{
            "title: " + title + "\ndate: " + QDate::currentDate().toString(Qt::ISODate) + "\ntags: "});
    });

    QMenu* callouts = format->addMenu(tr("Callout"));
    for (auto kind : {markdown::MarkdownCallout::note, markdown::MarkdownCallout::tip,
                      markdown::MarkdownCallout::important, markdown::MarkdownCallout::warning,
                      markdown::MarkdownCallout::caution}) {
        const markdown::MarkdownCallout callout(kind);
        callouts->addAction(callout.title(), this,
                            [this, callout] { sendCommand(markdown::editor_command::Callout{callout}); });
    }

    QMenu* tables = format->addMenu(tr("Table"));
    add(tables, {
        {"Insert Table", markdown::editor_command::Table{3, 3}, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_T)},
        {"Tidy Table", Simple::tableEdit, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Y)},
        separator,
        {"Insert Row Above", table(TableKind::insertRowAbove), QKeySequence(Qt::ALT | Qt::SHIFT | Qt::Key_Up)},
        {"Insert Row Below", table(TableKind::insertRowBelow), QKeySequence(Qt::ALT | Qt::SHIFT | Qt::Key_Down)},
        {"Delete Row", table(TableKind::deleteRow), QKeySequence(Qt::ALT | Qt::SHIFT | Qt::Key_Backspace)},
        {"Move Row Up", table(TableKind::moveRowUp), QKeySequence(Qt::CTRL | Qt::ALT | Qt::SHIFT | Qt::Key_Up)},
        {"Move Row Down", table(TableKind::moveRowDown), QKeySequence(Qt::CTRL | Qt::ALT | Qt::SHIFT | Qt::Key_Down)},
        separator,
        {"Insert Column Before", table(TableKind::insertColumnBefore), QKeySequence(Qt::ALT | Qt::SHIFT | Qt::Key_Left)},
        {"Insert Column After", table(TableKind::insertColumnAfter), QKeySequence(Qt::ALT | Qt::SHIFT | Qt::Key_Right)},
        {"Delete Column", table(TableKind::deleteColumn), QKeySequence(Qt::ALT | Qt::SHIFT | Qt::Key_Delete)},
        {"Move Column Left", table(TableKind::moveColumnLeft), QKeySequence(Qt::CTRL | Qt::ALT | Qt::SHIFT | Qt::Key_Left)},
        {"Move Column Right", table(TableKind::moveColumnRight), QKeySequence(Qt::CTRL | Qt::ALT | Qt::SHIFT | Qt::Key_Right)},
        separator,
        {"Align Column Left", table(TableKind::alignColumn, markdown::MarkdownTableAlignment::left)},
        {"Align Column Center", table(TableKind::alignColumn, markdown::MarkdownTableAlignment::center)},
        {"Align Column Right", table(TableKind::alignColumn, markdown::MarkdownTableAlignment::right)},
        {"Remove Column Alignment", table(TableKind::alignColumn, markdown::MarkdownTableAlignment::none)},
    });
    tables->addSeparator();
    using markdown::MarkdownTableCopyFormat;
    const auto copy = [this](std::optional<MarkdownTableCopyFormat> as) {
        if (!m_editor->copyTable(as))
            m_state.setStatusMessage(tr("No table at the caret"));
    };
    tables->addAction(tr("Copy Table"), this, [copy] { copy(std::nullopt); });
    tables->addAction(tr("Copy Table as CSV"), this, [copy] { copy(MarkdownTableCopyFormat::csv); });
    tables->addAction(tr("Copy Table as HTML"), this, [copy] { copy(MarkdownTableCopyFormat::html); });

    QList<QKeySequence> shortcuts;
    const std::function<void(QMenu*)> collect = [&](QMenu* menu) {
        for (QAction* action : menu->actions()) {
            if (action->menu())
                collect(action->menu());
            else if (!action->shortcut().isEmpty())
                shortcuts << action->shortcut();
        }
    };
    collect(format);
    m_editor->reserveShortcuts(shortcuts);
}

}
