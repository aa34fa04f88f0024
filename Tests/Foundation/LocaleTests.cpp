#include "Foundation/Locale.h"

#include "Foundation/Environment.h"

#include "Tests/Foundation/HostileLocale.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace Foundation;
using Variables = std::map<std::string, std::string, std::less<>>;

std::string formats(Variables variables) {
    return Locale::forFormats(Environment(std::move(variables))).identifier;
}

std::vector<std::string> languages(Variables variables) {
    return Locale::textLanguages(Environment(std::move(variables)));
}

TEST(FormatLocaleTests, theFirstVariableThatIsSetDecides) {
    useHostileLocale();
    EXPECT_EQ(formats({{"LC_ALL", "es_ES.UTF-8"}, {"LC_TIME", "de_DE"}, {"LANG", "fr_FR"}}), "es_ES");
    EXPECT_EQ(formats({{"LC_TIME", "de_DE.UTF-8"}, {"LANG", "fr_FR.UTF-8"}}), "de_DE");
    EXPECT_EQ(formats({{"LANG", "fr_CA.ISO-8859-1"}}), "fr_CA");
    EXPECT_EQ(formats({{"LC_ALL", ""}, {"LANG", "es"}}), "es");
    EXPECT_EQ(formats({{"LC_MESSAGES", "es_ES"}}), "en");
}

TEST(FormatLocaleTests, whatNamesNoKnownLocaleIsEnglish) {
    useHostileLocale();
    for (auto const* name : {"C", "C.UTF-8", "POSIX", "xx_YY", "qqq", "../../etc", "e", "\xFF\xFE"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(formats({{"LC_ALL", name}, {"LANG", "es_ES"}}), "en");
    }
    EXPECT_EQ(formats({}), "en");
}

TEST(FormatLocaleTests, modifiersThatNameAScriptAreKept) {
    EXPECT_EQ(formats({{"LANG", "sr_RS.UTF-8@latin"}}), "sr_Latn_RS");
    EXPECT_EQ(formats({{"LANG", "es_ES@euro"}}), "es_ES");
}

TEST(TextLanguageTests, theVariablesFollowEachOtherAndEnglishComesLast) {
    using List = std::vector<std::string>;
    EXPECT_EQ(languages({}), (List{"en"}));
    EXPECT_EQ(languages({{"LANG", "es_MX.UTF-8"}}), (List{"es_MX", "es", "en"}));
    EXPECT_EQ(languages({{"LANGUAGE", "ca:es_ES"}, {"LC_ALL", "fr_FR.UTF-8"}, {"LANG", "de_DE"}}),
              (List{"ca", "es_ES", "es", "fr_FR", "fr", "de_DE", "de", "en"}));
    EXPECT_EQ(languages({{"LC_MESSAGES", "es_ES"}, {"LANG", "en_GB.UTF-8"}}),
              (List{"es_ES", "es", "en_GB", "en"}));
    EXPECT_EQ(languages({{"LC_TIME", "es_ES"}}), (List{"en"}));
}

TEST(TextLanguageTests, theListWinsOverThePlainCLocale) {
    using List = std::vector<std::string>;
    EXPECT_EQ(languages({{"LC_ALL", "C"}, {"LANG", "es_ES"}}), (List{"en", "es_ES", "es"}));
    EXPECT_EQ(languages({{"LANGUAGE", "es"}, {"LC_ALL", "C"}}), (List{"es", "en"}));
    EXPECT_EQ(languages({{"LANGUAGE", "es"}, {"LANG", "POSIX"}}), (List{"es", "en"}));
    EXPECT_EQ(languages({{"LANGUAGE", "es"}, {"LANG", "C.UTF-8"}}), (List{"es", "en"}));
    EXPECT_EQ(languages({{"LANGUAGE", "es"}}), (List{"es", "en"}));
}

TEST(TextLanguageTests, unknownEntriesOfTheListArePassedOver) {
    using List = std::vector<std::string>;
    EXPECT_EQ(languages({{"LANGUAGE", "xx:::es:"}, {"LANG", "en_US.UTF-8"}}), (List{"es", "en_US", "en"}));
}

TEST(LocaleDirectionTests, theScriptDecides) {
    EXPECT_TRUE(Locale{.identifier = "ar_EG"}.isRightToLeft());
    EXPECT_TRUE(Locale{.identifier = "he"}.isRightToLeft());
    EXPECT_FALSE(Locale{.identifier = "es_ES"}.isRightToLeft());
}

TEST(PluralCategoryTests, eachLanguageHasItsOwnForms) {
    useHostileLocale();
    struct Row {
        char const* language;
        std::int64_t count;
        char const* category;
    };
    for (auto const& row : {
             Row{"en", 0, "other"},
             Row{"en", 1, "one"},
             Row{"en", 2, "other"},
             Row{"es", 1, "one"},
             Row{"es_MX", 10, "other"},
             Row{"pl", 3, "few"},
             Row{"pl", 5, "many"},
             Row{"ar", 0, "zero"},
             Row{"ar", 2, "two"},
             Row{"ja", 1, "other"},
             Row{"fr", 0, "one"},
             Row{"en", -1, "one"},
             Row{"en", INT64_MIN, "other"},
             Row{"nonsense", 1, "other"},
             Row{"", 1, "other"},
         }) {
        EXPECT_EQ(Locale{.identifier = row.language}.pluralCategory(row.count), row.category)
            << row.language << " " << row.count;
    }
}

} // namespace
