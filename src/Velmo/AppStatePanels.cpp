// The visibility of the panels and what the sidebar shows.
#include "Velmo/AppState.h"

namespace velmo::app {

void AppState::showSettings()
{
    ++m_settingsRequestID;
    m_isSettingsVisible = true;
    emit panelsChanged();
    emit changed();
}

void AppState::closeSettings()
{
    if (!m_isSettingsVisible)
        return;
    m_isSettingsVisible = false;
    emit panelsChanged();
    emit changed();
}

void AppState::setFindVisible(bool visible)
{
    if (visible == m_isFindVisible && (visible || !m_isReplaceVisible))
        return;
    m_isFindVisible = visible;
    if (!visible)
        m_isReplaceVisible = false;
    emit panelsChanged();
    emit changed();
}

void AppState::setFindQuery(const QString& query)
{
    assignPanel(m_findQuery, query);
}

void AppState::setSearchVisible(bool visible)
{
    assignPanel(m_isSearchVisible, visible);
}

void AppState::setSettingsTab(SettingsTab tab)
{
    assignPanel(m_settingsTab, tab);
}

void AppState::setSidebarMode(SidebarMode mode)
{
    assignPanel(m_sidebarMode, mode);
}

void AppState::setReplaceVisible(bool visible)
{
    // Replace shows inside the find bar.
    if (visible)
        assignPanel(m_isFindVisible, true);
    assignPanel(m_isReplaceVisible, visible);
}

void AppState::setFindReplacement(const QString& replacement)
{
    assignPanel(m_findReplacement, replacement);
}

void AppState::setFindCaseSensitive(bool on)
{
    assignPanel(m_findCaseSensitive, on);
}

void AppState::setFindWholeWord(bool on)
{
    assignPanel(m_findWholeWord, on);
}

void AppState::setFindIndex(int index)
{
    assignPanel(m_findIndex, index);
}

void AppState::setGraphVisible(bool visible)
{
    assignPanel(m_graphVisible, visible);
}

void AppState::setShowLineNumbers(bool on)
{
    assignPanel(m_showLineNumbers, on);
}

void AppState::revealInSidebar(const QUrl& url)
{
    m_sidebarReveal = SidebarReveal{url, ++m_sidebarRevealCount};
    emit panelsChanged();
    emit changed();
}

void AppState::requestExport(const std::optional<ExportKind>& kind)
{
    assignPanel(m_exportRequested, kind);
}

void AppState::setPrintRequested(bool requested)
{
    assignPanel(m_printRequested, requested);
}

void AppState::selectTag(const std::optional<QString>& tag)
{
    m_selectedTag = tag;
    m_sidebarMode = SidebarMode::tags;
    emit panelsChanged();
    emit changed();
}

bool AppState::hasTransientPanels() const
{
    return m_isSettingsVisible || m_isFindVisible;
}

void AppState::dismissTransientPanels()
{
    const bool any = m_isSettingsVisible || m_isFindVisible || m_isSearchVisible;
    m_isSettingsVisible = false;
    m_isFindVisible = false;
    m_isReplaceVisible = false;
    m_isSearchVisible = false;
    if (any) {
        emit panelsChanged();
        emit changed();
    }
}

}
