#pragma once

#include "MarkdownEngine/Core/MarkdownSourceRange.h"
#include "MarkdownEngine/Styling/MarkdownEditorFragmentRole.h"
#include "MarkdownEngine/Styling/MarkdownTextAttributes.h"

#include <vector>

namespace velmo::markdown {

struct MarkdownEditorConfiguration;

// What one range of the unchanged source looks like. Higher priority is applied later and wins.
struct MarkdownEditorFragment {
    // The small members first, where they pack together.
    MarkdownSourceRange range;
    int priority = 0;
    MarkdownEditorFragmentRole role = MarkdownEditorFragmentRole::body;
    bool isHidden = false;
    MarkdownTextAttributes attributes;

    [[nodiscard]] bool isEmpty() const { return range.length == 0; }
    [[nodiscard]] int end() const { return range.upperBound(); }
    [[nodiscard]] bool contains(int location) const { return range.contains(location); }
    [[nodiscard]] bool intersects(MarkdownSourceRange r) const { return range.intersection(r).length > 0; }
    // `attributes` with Velmo.role, and Velmo.hidden when hidden.
    [[nodiscard]] MarkdownTextAttributes effectiveAttributes() const;

    [[nodiscard]] static MarkdownEditorFragment make(MarkdownSourceRange range, MarkdownEditorFragmentRole role,
                                                     MarkdownTextAttributes attributes, int priority,
                                                     bool hidden = false);
    // The same made in place at the end of `into`: a pass appends a hundred thousand of them,
    // and each move of one through a temporary shows.
    static void add(std::vector<MarkdownEditorFragment>& into, MarkdownSourceRange range,
                    MarkdownEditorFragmentRole role, const MarkdownTextAttributes& attributes, int priority,
                    bool hidden = false)
    {
#ifdef __cpp_aggregate_paren_init
        into.emplace_back(range, priority, role, hidden, attributes);
#else // a compiler that cannot make an aggregate from parentheses (Clang before 16) moves a temporary
        into.push_back({range, priority, role, hidden, attributes});
#endif
    }
    static void add(std::vector<MarkdownEditorFragment>& into, MarkdownSourceRange range,
                    MarkdownEditorFragmentRole role, MarkdownTextAttributes&& attributes, int priority,
                    bool hidden = false)
    {
#ifdef __cpp_aggregate_paren_init
        into.emplace_back(range, priority, role, hidden, std::move(attributes));
#else
        into.push_back({range, priority, role, hidden, std::move(attributes)});
#endif
    }
    // A marker off the active line: the body font shrunk to next to nothing, clear ink.
    [[nodiscard]] static MarkdownEditorFragment hidden(MarkdownSourceRange range, MarkdownEditorFragmentRole role,
                                                       const MarkdownEditorConfiguration& config);

    friend bool operator==(const MarkdownEditorFragment& a, const MarkdownEditorFragment& b);
};

}
