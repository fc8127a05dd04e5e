#pragma once

#include <QString>
#include <QStringView>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace velmo::highlighter {

// An immutable set of words looked up straight from slices of UTF-16 code, with no string
// built per lookup: the scanner hashes a word while it reads it and asks with that hash.
// Copies share one table.
class WordSet {
public:
    WordSet() = default;
    // Words separated by blanks, tabs and line feeds.
    explicit WordSet(QStringView words);
    explicit WordSet(const char* words) : WordSet(QString::fromUtf8(words)) {}

    // FNV-1a over the code units; the scanner computes it incrementally with `step`.
    static constexpr std::uint32_t seed = 2166136261u;
    [[nodiscard]] static constexpr std::uint32_t step(std::uint32_t hash, char16_t unit)
    {
        return (hash ^ unit) * 16777619u;
    }
    [[nodiscard]] static std::uint32_t hashOf(QStringView word);

    [[nodiscard]] bool contains(QStringView word) const { return contains(word, hashOf(word)); }
    [[nodiscard]] bool contains(QStringView word, std::uint32_t hash) const;

    [[nodiscard]] qsizetype size() const { return table ? table->count : 0; }
    [[nodiscard]] bool isEmpty() const { return size() == 0; }
    // The longest word; longer slices are rejected before hashing matters.
    [[nodiscard]] qsizetype maxLength() const { return table ? table->maxLength : 0; }
    // The same words in ASCII lower case; shares this table when nothing changes.
    [[nodiscard]] WordSet lowercased() const;
    [[nodiscard]] std::vector<QString> words() const;

private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t offset = 0;
        std::uint32_t length = 0; // 0: empty slot
    };
    struct Table {
        std::u16string storage;
        std::vector<Slot> buckets; // power of two, at most half full
        qsizetype count = 0;
        qsizetype maxLength = 0;
        bool hasUpper = false;
    };

    static bool find(const Table& table, QStringView word, std::uint32_t hash);
    static void insert(Table& table, QStringView word);
    static void rehash(Table& table, std::size_t slotCount);

    std::shared_ptr<const Table> table;
};

}
