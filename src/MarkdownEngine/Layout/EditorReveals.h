#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"

#include <QObject>
#include <QString>
#include <deque>
#include <optional>
#include <variant>

namespace velmo::markdown {

// A request to show a place in the open note, made before the editor may exist.
struct EditorReveal {
    struct Range {
        MarkdownSourceRange range;
        bool operator==(const Range&) const = default;
    };
    struct Find {
        QString query;
        int line = 1; // 1-based
        bool operator==(const Find&) const = default;
    };
    struct Heading {
        QString title;
        bool operator==(const Heading&) const = default;
    };
    std::variant<Range, Find, Heading> kind;
    bool operator==(const EditorReveal&) const = default;
};

// The queue of reveals; `generation` rises with each request so the editor knows to look.
class EditorReveals : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    int generation() const { return m_generation; }
    void request(EditorReveal reveal)
    {
        m_queue.push_back(std::move(reveal));
        ++m_generation;
        emit generationChanged(m_generation);
    }
    bool hasPending() const { return !m_queue.empty(); }
    std::optional<EditorReveal> take()
    {
        if (m_queue.empty())
            return std::nullopt;
        EditorReveal first = std::move(m_queue.front());
        m_queue.pop_front();
        return first;
    }
    void clear() { m_queue.clear(); }

signals:
    void generationChanged(int generation);

private:
    int m_generation = 0;
    std::deque<EditorReveal> m_queue;
};

}
