#include "Highlighter/SyntaxLanguageCatalog.h"

#include <QSet>
#include <gtest/gtest.h>

namespace velmo::highlighter {
namespace {

TEST(SyntaxLanguageCatalog, FenceInfoStringsFindTheirLanguage)
{
    const struct {
        const char16_t* info;
        const char* id;
    } cases[] = {
        {u"python", "python"},    {u"  Python  ", "python"},   {u"py", "python"},
        {u"js", "javascript"},    {u"ts", "typescript"},       {u"sh", "shell"},
        {u"bash", "shell"},       {u"zsh", "shell"},           {u"yml", "yaml"},
        {u"c++", "cpp"},          {u"objc", "objectivec"},     {u"rs", "rust"},
        {u"kt", "kotlin"},        {u"rb", "ruby"},             {u"golang", "go"},
        {u"Dockerfile", "dockerfile"}, {u"make", "makefile"},  {u"tex", "latex"},
        {u"md", "markdown"},      {u"proto", "protobuf"},      {u"tf", "terraform"},
        {u"ps1", "powershell"},   {u"hs", "haskell"},          {u"ex", "elixir"},
        {u"erl", "erlang"},       {u"c", "c"},                 {u"r", "r"},
        {u"v", "v"},              {u"asm", "asm"},
        {u"python title=\"a.py\"", "python"}, {u"rust,ignore", "rust"},
        {u"js{.line-numbers}", "javascript"}, {u"{.python}", "python"},
        {u"{r setup, echo=FALSE}", "r"},      {u"{", "plain"},
        {u"", "plain"},           {u"klingon", "plain"},       {u"   ", "plain"},
    };
    for (const auto& item : cases) {
        SCOPED_TRACE(QString::fromUtf16(item.info).toStdString());
        EXPECT_EQ(SyntaxLanguageCatalog::language(QString::fromUtf16(item.info)).id.toStdString(),
                  item.id);
    }
    EXPECT_EQ(SyntaxLanguageCatalog::language(QStringView()).id, u"plain");
}

TEST(SyntaxLanguageCatalog, TablesAgree)
{
    const auto& all = SyntaxLanguageCatalog::all();
    EXPECT_EQ(all.size(), 66u);
    QSet<QString> ids;
    for (const SyntaxLanguage& language : all) {
        SCOPED_TRACE(language.id.toStdString());
        EXPECT_FALSE(language.displayName.isEmpty());
        EXPECT_FALSE(ids.contains(language.id));
        ids.insert(language.id);
        EXPECT_EQ(SyntaxLanguageCatalog::named(language.id.toUpper()), &language);
        EXPECT_TRUE(SyntaxLanguageCatalog::identifiers().contains(language.id));
        // Lists of a language that ignores case are stored folded, or they never match.
        if (!language.caseSensitive) {
            EXPECT_EQ(language.keywords.words(), language.keywords.lowercased().words());
        }
    }
    for (auto it = SyntaxLanguageCatalog::aliases().cbegin();
         it != SyntaxLanguageCatalog::aliases().cend(); ++it) {
        SCOPED_TRACE(it.key().toStdString());
        EXPECT_TRUE(ids.contains(it.value()));
        EXPECT_FALSE(ids.contains(it.key())) << "an alias hides an id";
        EXPECT_EQ(it.key(), it.key().toLower());
    }
    EXPECT_TRUE(std::is_sorted(SyntaxLanguageCatalog::identifiers().begin(),
                               SyntaxLanguageCatalog::identifiers().end()));
    EXPECT_EQ(SyntaxLanguageCatalog::named(u"nope"), nullptr);
}

TEST(SyntaxLanguageCatalog, AccessorsMatchTheirRows)
{
    // The accessors index the table by position; a row out of place would shift them all.
    const std::pair<const SyntaxLanguage&, const char*> rows[] = {
        {SyntaxLanguageCatalog::plain(), "plain"},
        {SyntaxLanguageCatalog::python(), "python"},
        {SyntaxLanguageCatalog::clang(), "c"},
        {SyntaxLanguageCatalog::objectiveC(), "objectivec"},
        {SyntaxLanguageCatalog::rlang(), "r"},
        {SyntaxLanguageCatalog::diff(), "diff"},
        {SyntaxLanguageCatalog::markdown(), "markdown"},
        {SyntaxLanguageCatalog::assembly(), "asm"},
        {SyntaxLanguageCatalog::arduino(), "arduino"},
        {SyntaxLanguageCatalog::vlang(), "v"},
    };
    for (const auto& [language, id] : rows)
        EXPECT_EQ(language.id.toStdString(), id);
}

}
}
