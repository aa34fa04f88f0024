#include "Applications/Companion/CommandTable.h"
#include "Applications/Companion/Help.h"
#include "Applications/Companion/Texts.h"
#include "Applications/Composition/ProgramTexts.h"
#include "Foundation/Locale.h"
#include "Foundation/Text.h"
#include "Platform/Resources/StringsFile.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Composition::ProgramTexts;

constexpr char marker = 0;
constexpr std::string_view english = R"("hello" = "Hello, %1$@"; "only" = "English"; "day.one" = "%1$@ day";
                                        "day.other" = "%1$@ days of %2$@";)";

// Every table of a program, with the language it is in.
std::vector<std::pair<std::string, fs::path>> programTables() {
    std::vector<std::pair<std::string, fs::path>> tables;
    for (auto const& program : fs::directory_iterator(fs::path(QUILLORA_SOURCE_DIR) / "Applications")) {
        if (!fs::is_directory(program.path() / "Resources")) continue;
        for (auto const& folder : fs::directory_iterator(program.path() / "Resources"))
            if (folder.path().extension() == ".lproj")
                tables.emplace_back(folder.path().stem().string(), folder.path() / "Localizable.strings");
    }
    return tables;
}

Platform::StringsFile tableAt(fs::path const& path) {
    std::ifstream stream(path, std::ios::binary);
    return Platform::StringsFile::parse(std::string(std::istreambuf_iterator<char>(stream), {}));
}

TEST(ProgramTextsTests, withoutABundleItSpeaksEnglish) {
    ProgramTexts texts("No_Such_Bundle", &marker, english);
    for (bool const isTold : {false, true}) {
        if (isTold) texts.useLanguages({"es"});
        EXPECT_EQ(texts.text("hello", "Ann"), "Hello, Ann");
        EXPECT_EQ(texts.counted("day", 1, "May"), "1 day");
        EXPECT_EQ(texts.counted("day", 2, "May"), "2 days of May");
        EXPECT_EQ(texts.text("no such key"), "no such key");
    }
}

TEST(ProgramTextsTests, theBundleBesideTheProgramHasItsLanguages) {
    ProgramTexts texts("Companion_Companion", &marker, english);
    EXPECT_EQ(texts.text("hidden-mark"), "hidden-mark");
    texts.useLanguages({"es_MX", "es", "en"});
    EXPECT_EQ(texts.text("hidden-mark"), "oculto");
    EXPECT_EQ(texts.text("only"), "English"); // What the bundle lacks comes from the program.
    texts.useLanguages({"fr", "en"});
    EXPECT_EQ(texts.text("hidden-mark"), "hidden");
    EXPECT_TRUE(texts.problems().empty());
}

TEST(ProgramTablesTests, everyTableIsWholeAndHasTheFormsThatItsLanguageNeeds) {
    auto const tables = programTables();
    EXPECT_GE(tables.size(), 6U);
    for (auto const& [language, path] : tables) {
        auto const table = tableAt(path);
        EXPECT_TRUE(table.problems.empty()) << path << ": " << table.problems.front().reason;
        for (auto const& [key, text] : table.texts) {
            if (!key.ends_with(".other")) continue;
            // The counts that a person meets; millions have a form of their own in some languages.
            for (std::int64_t count = 0; count <= 200; ++count) {
                auto const form = key.substr(0, key.size() - std::string(".other").size()) + "." +
                                  Foundation::Locale{.identifier = language}.pluralCategory(count);
                EXPECT_TRUE(table.texts.contains(form)) << path << ": \"" << form << "\" for " << count;
            }
        }
    }
}

// The texts of one process are set once; each test here has a process of its own.
class SpanishTextsTests : public testing::Test {
protected:
    void SetUp() override { Companion::Texts::useLanguages({"es", "en"}); }
    void TearDown() override { Companion::Texts::useLanguages({"en"}); }
};

TEST_F(SpanishTextsTests, numbersHaveTheirForms) {
    using Companion::Texts::dayShown;
    EXPECT_EQ(dayShown("Jueves", "2026-03-12", 0, 10), "Jueves 2026-03-12 (hoy)");
    EXPECT_EQ(dayShown("Jueves", "2026-03-12", 1, 10), "Jueves 2026-03-12 (1 día después)");
    EXPECT_EQ(dayShown("Jueves", "2026-03-12", -1, 10), "Jueves 2026-03-12 (1 día antes)");
    EXPECT_EQ(dayShown("Jueves", "2026-03-12", -4, 10), "Jueves 2026-03-12 (4 días antes)");
    EXPECT_EQ(dayShown("Jueves", "2026-03-12", 10, 10),
              "Jueves 2026-03-12 (10 días después, hasta donde llega)");
    EXPECT_EQ(Companion::Texts::moreProblems(1), "1 más como este; QUILLORA_LOG=error los muestra todos");
    EXPECT_EQ(Companion::Texts::moreProblems(2), "2 más como estos; QUILLORA_LOG=error los muestra todos");
}

TEST_F(SpanishTextsTests, whatWasTypedIsQuotedAndAlternativesAreJoined) {
    EXPECT_EQ(Companion::Texts::unknownChoice("--family", "x\x1b[1m", {"small", "medium", "large"}),
              "--family admite small, medium o large, no «x\uFFFD[1m»");
    EXPECT_EQ(Companion::Texts::missingSubcommand("access", {"grant"}),
              "access necesita una orden: grant; véase «quillora access --help»");
}

TEST_F(SpanishTextsTests, aYesCountsInSpanishAndInEnglish) {
    for (auto const* yes : {"s", "S", "sí", "SÍ", "si", "y", "yes", "Yes"})
        EXPECT_EQ(Companion::Texts::yesOrNo(yes), true) << yes;
    for (auto const* no : {"n", "N", "no", "NO"})
        EXPECT_EQ(Companion::Texts::yesOrNo(no), false) << no;
    for (auto const* neither : {"", " ", "y yes", "quizás", "\xFF"})
        EXPECT_EQ(Companion::Texts::yesOrNo(neither), std::nullopt) << neither;
}

TEST_F(SpanishTextsTests, whatOtherPartsSayIsTranslatedWithWhatItQuotes) {
    using Companion::Texts::told;
    EXPECT_EQ(told("/c/a.ics:12: the event has no DTSTART"), "/c/a.ics:12: el evento no tiene DTSTART");
    EXPECT_EQ(told("/c/a.ics:7: DTSTART \"xx\" is not a date or time of the years 1 to 9999"),
              "/c/a.ics:7: DTSTART «xx» no es una fecha u hora de los años 1 a 9999");
    EXPECT_EQ(told("/c/a.ics:7: DURATION \"P\" is not a duration"),
              "/c/a.ics:7: DURATION «P» no es una duración");
    EXPECT_EQ(told("/c/a.ics:7: RRULE \"FREQ=X\" cannot be followed: its FREQ is not usable"),
              "/c/a.ics:7: RRULE «FREQ=X» no se puede seguir: su FREQ no se puede usar");
    EXPECT_EQ(told("/c/a.ics: it could not be read: it is larger than 64 MiB"),
              "/c/a.ics: no se pudo leer: ocupa más de 64 MiB");
    EXPECT_EQ(
        told("/c: the list of calendar folders could not be read (Permission denied), so none of them is "
             "shown; nothing was added."),
        "/c: no se pudo leer la lista de carpetas de calendarios (Permiso denegado), así que no se muestra "
        "ninguna; no se añadió nada.");
    EXPECT_EQ(told("Something that nobody translated"), "Something that nobody translated");
    EXPECT_EQ(told(""), "");
    EXPECT_EQ(told("\xFF"), "\uFFFD");
    EXPECT_EQ(Companion::Texts::cannotWrite("/x", "No space left on device"),
              "no se pudo escribir /x, que queda como estaba: No queda espacio en el dispositivo");
}

TEST(EnglishTextsTests, whatOtherPartsSayStaysInEnglish) {
    for (auto const* message : {"/c/a.ics:12: the event has no DTSTART", "Permission denied", "a: b"})
        EXPECT_EQ(Companion::Texts::told(message), message);
}

TEST(SystemErrorTests, theTableSaysThemAsTheSystemDoes) {
    struct Row {
        int error;
        char const* key;
    };
    for (auto const& row : {
             Row{EACCES, "errno-permission-denied"},
             Row{EPERM, "errno-operation-not-permitted"},
             Row{ENOENT, "errno-no-such-file"},
             Row{EEXIST, "errno-file-exists"},
             Row{ENOTDIR, "errno-not-a-directory"},
             Row{EISDIR, "errno-is-a-directory"},
             Row{ENOSPC, "errno-no-space"},
             Row{EDQUOT, "errno-quota"},
             Row{EROFS, "errno-read-only"},
             Row{EFBIG, "errno-too-large"},
             Row{EIO, "errno-input-output"},
             Row{EPIPE, "errno-broken-pipe"},
             Row{ELOOP, "errno-links"},
             Row{ENAMETOOLONG, "errno-name-too-long"},
             Row{EMFILE, "errno-open-files"},
             Row{EAGAIN, "errno-not-available"},
             Row{EBUSY, "errno-busy"},
             Row{ENOMEM, "errno-memory"},
             Row{EBADF, "errno-bad-descriptor"},
         }) {
        auto const table = tableAt(fs::path(QUILLORA_SOURCE_DIR) /
                                   "Applications/Composition/Resources/en.lproj/Localizable.strings");
        EXPECT_EQ(table.find(row.key), std::error_code(row.error, std::generic_category()).message());
    }
}

TEST_F(SpanishTextsTests, everyPageOfHelpKeepsWithinEightyColumns) {
    std::vector<std::string> pages = {Companion::helpText(nullptr)};
    for (auto const& command : Companion::commandTable())
        pages.push_back(Companion::helpText(&command));
    EXPECT_NE(pages.front().find("Órdenes:"), std::string::npos);
    for (auto const& page : pages) {
        std::istringstream lines(page);
        for (std::string line; std::getline(lines, line);)
            EXPECT_LE(Foundation::Text::terminalWidth(line), 80U) << line;
    }
}

TEST(EnglishTextsTests, aYesCountsInAnyCase) {
    for (auto const* yes : {"y", "Y", "yes", "YES"})
        EXPECT_EQ(Companion::Texts::yesOrNo(yes), true) << yes;
    EXPECT_EQ(Companion::Texts::yesOrNo("s"), std::nullopt);
    EXPECT_EQ(Companion::Texts::yesOrNo("n"), false);
}

} // namespace
