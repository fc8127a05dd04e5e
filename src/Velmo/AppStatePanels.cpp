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
    if (query == m_findQuery)
        return;
    m_findQuery = query;
    emit panelsChanged();
    emit changed();
}

void AppState::setSearchVisible(bool visible)
{
    if (visible == m_isSearchVisible)
        return;
    m_isSearchVisible = visible;
    emit panelsChanged();
    emit changed();
}

void AppState::setSettingsTab(SettingsTab tab)
{
    if (tab == m_settingsTab)
        return;
    m_settingsTab = tab;
    emit panelsChanged();
    emit changed();
}

void AppState::setSidebarMode(SidebarMode mode)
{
    if (mode == m_sidebarMode)
        return;
    m_sidebarMode = mode;
    emit panelsChanged();
    emit changed();
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
