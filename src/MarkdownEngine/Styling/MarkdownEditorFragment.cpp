#include "MarkdownEngine/Styling/MarkdownEditorFragment.h"

#include "MarkdownEngine/Configuration/MarkdownEditorConfiguration.h"

namespace velmo::markdown {

MarkdownTextAttributes MarkdownEditorFragment::effectiveAttributes() const
{
    MarkdownTextAttributes result = attributes;
    result.setRole(role);
    if (isHidden)
        result.setHidden();
    return result;
}

MarkdownEditorFragment MarkdownEditorFragment::make(MarkdownSourceRange range, MarkdownEditorFragmentRole role,
                                                    MarkdownTextAttributes attributes, int priority, bool hidden)
{
    MarkdownEditorFragment f;
    f.range = range;
    f.role = role;
    f.attributes = std::move(attributes);
    f.priority = priority;
    f.isHidden = hidden;
    return f;
}

MarkdownEditorFragment MarkdownEditorFragment::hidden(MarkdownSourceRange range, MarkdownEditorFragmentRole role,
                                                      const MarkdownEditorConfiguration& config)
{
    MarkdownEditorFragment fragment;
    fragment.range = range;
    fragment.role = role;
    fragment.attributes.setFont(MarkdownFont::withSize(config.bodyFont(), std::max(config.markers.hiddenMarkerFontSize, 0.1)));
    fragment.attributes.setForeground(clearColor);
    fragment.isHidden = true;
    fragment.priority = 31;
    return fragment;
}

bool operator==(const MarkdownEditorFragment& a, const MarkdownEditorFragment& b)
{
    return a.range == b.range && a.role == b.role && a.isHidden == b.isHidden && a.priority == b.priority
        && a.attributes == b.attributes;
}

}
