#include "MarkdownEngine/Styling/MarkdownStyledNote.h"

#include "MarkdownEngine/Layout/MarkdownTableColumnLayout.h"

namespace velmo::markdown {

MarkdownStyledNote::MarkdownStyledNote(QString text, MarkdownTextAttributes base, MarkdownEditorFragmentStore fragments,
                                       std::vector<MarkdownTable> tables)
    : m_text(std::move(text))
    , m_base(std::move(base))
    , m_fragments(std::move(fragments))
    , m_tables(std::move(tables))
{
}

MarkdownStyledText MarkdownStyledNote::resolved() const
{
    return stretch({0, length()}).styled;
}

MarkdownStyledNote::Stretch MarkdownStyledNote::stretch(MarkdownSourceRange range) const
{
    const MarkdownSourceRange whole{0, length()};
    MarkdownSourceRange covered = range.intersection(whole);
    const auto touches = [&covered](const MarkdownTable& table) {
        return table.range.intersects(covered) || (covered.length == 0 && table.range.contains(covered.location));
    };
    // Growing over one table can reach another.
    for (bool grown = true; grown;) {
        grown = false;
        for (const MarkdownTable& table : m_tables) {
            if (touches(table) && covered.united(table.range).intersection(whole) != covered) {
                covered = covered.united(table.range).intersection(whole);
                grown = true;
            }
        }
    }
    std::vector<const MarkdownTable*> tables;
    for (const MarkdownTable& table : m_tables) {
        if (touches(table))
            tables.push_back(&table);
    }
    Stretch out{MarkdownStyledText(m_text.mid(covered.location, covered.length), m_base), covered.location};
    m_fragments.apply(out.styled, m_base, covered.location);
    if (!tables.empty())
        MarkdownTableColumnLayout::apply(out.styled, out.offset, tables, m_text);
    return out;
}

}
