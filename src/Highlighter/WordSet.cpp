#include "Highlighter/WordSet.h"

#include <QString>
#include <algorithm>
#include <cstring>

namespace velmo::highlighter {

namespace {

bool isSeparator(QChar unit)
{
    return unit == u' ' || unit == u'\t' || unit == u'\n' || unit == u'\r';
}

}

WordSet::WordSet(QStringView words)
{
    auto built = std::make_shared<Table>();
    rehash(*built, 16);
    qsizetype index = 0;
    const qsizetype size = words.size();
    while (index < size) {
        while (index < size && isSeparator(words[index]))
            ++index;
        const qsizetype start = index;
        while (index < size && !isSeparator(words[index]))
            ++index;
        if (index > start)
            insert(*built, words.sliced(start, index - start));
    }
    table = std::move(built);
}

std::uint32_t WordSet::hashOf(QStringView word)
{
    std::uint32_t hash = seed;
    for (QChar unit : word)
        hash = step(hash, unit.unicode());
    return hash;
}

bool WordSet::contains(QStringView word, std::uint32_t hash) const
{
    if (!table || word.isEmpty() || word.size() > table->maxLength)
        return false;
    return find(*table, word, hash);
}

bool WordSet::find(const Table& in, QStringView word, std::uint32_t hash)
{
    const std::size_t mask = in.buckets.size() - 1;
    for (std::size_t probe = hash & mask;; probe = (probe + 1) & mask) {
        const Slot& slot = in.buckets[probe];
        if (slot.length == 0)
            return false;
        if (slot.hash == hash && qsizetype(slot.length) == word.size()
            && std::memcmp(in.storage.data() + slot.offset, word.utf16(),
                           word.size() * sizeof(char16_t))
                == 0)
            return true;
    }
}

void WordSet::insert(Table& target, QStringView word)
{
    const std::uint32_t hash = hashOf(word);
    // Duplicates in a list are harmless; keep one.
    if (find(target, word, hash))
        return;
    if (std::size_t(target.count + 1) * 2 > target.buckets.size())
        rehash(target, target.buckets.size() * 2);
    const auto offset = std::uint32_t(target.storage.size());
    target.storage.append(reinterpret_cast<const char16_t*>(word.utf16()), word.size());
    const std::size_t mask = target.buckets.size() - 1;
    std::size_t probe = hash & mask;
    while (target.buckets[probe].length != 0)
        probe = (probe + 1) & mask;
    target.buckets[probe] = {hash, offset, std::uint32_t(word.size())};
    ++target.count;
    target.maxLength = std::max(target.maxLength, word.size());
    for (QChar unit : word)
        target.hasUpper = target.hasUpper || (unit >= u'A' && unit <= u'Z');
}

void WordSet::rehash(Table& target, std::size_t slotCount)
{
    std::vector<Slot> old = std::move(target.buckets);
    target.buckets.assign(slotCount, Slot{});
    const std::size_t mask = slotCount - 1;
    for (const Slot& slot : old) {
        if (slot.length == 0)
            continue;
        std::size_t probe = slot.hash & mask;
        while (target.buckets[probe].length != 0)
            probe = (probe + 1) & mask;
        target.buckets[probe] = slot;
    }
}

WordSet WordSet::lowercased() const
{
    if (!table || !table->hasUpper)
        return *this;
    QString joined;
    for (const QString& word : words()) {
        QString lower = word;
        for (QChar& unit : lower) {
            if (unit >= u'A' && unit <= u'Z')
                unit = QChar(unit.unicode() + 32);
        }
        joined += lower;
        joined += u' ';
    }
    return WordSet(joined);
}

std::vector<QString> WordSet::words() const
{
    std::vector<QString> result;
    if (!table)
        return result;
    for (const Slot& slot : table->buckets) {
        if (slot.length != 0)
            result.push_back(QString::fromUtf16(table->storage.data() + slot.offset, slot.length));
    }
    std::sort(result.begin(), result.end());
    return result;
}

}
