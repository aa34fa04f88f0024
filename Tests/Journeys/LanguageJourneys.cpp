#include "PrivateHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

std::string const oneEvent = calendarFile(event("u1", "Tea", ":20260311T090000Z", ":20260311T093000Z"));

// A home of someone who reads Spanish. Nothing asks whether the machine has generated such a locale.
class SpanishJourneys : public testing::Test {
protected:
    SpanishJourneys() { home.environment["LANG"] = "es_ES.UTF-8"; }

    PrivateHome home;
};

TEST_F(SpanishJourneys, theSetUpSaysWhatItDid) {
    auto const own = (home.folder() / "data/Quillora/Calendars/quillora-native-calendar").string();
    auto const output = home.outputOf({"setup", "--yes", "--keychain", "file"});
    EXPECT_THAT(output,
                testing::StartsWith(
                    "Creado el calendario propio de Quillora: " + own +
                    "\n"
                    "La clave de los registros se guarda en un fichero que solo tú puedes leer. Eso los "
                    "protege de otros usuarios de este equipo, pero no de los programas que ejecutas ni "
                    "de quien se haga con su disco o con una copia de seguridad\n"
                    "Registrado «Calendarios de este equipo» («"));
    EXPECT_THAT(output,
                testing::EndsWith(
                    "») como «eventKit»\n"
                    "Acceso a los calendarios: concedido\n"
                    "Añade calendarios con «quillora sources add DIR»; mira tu día con «quillora day»\n"));
}

TEST_F(SpanishJourneys, theQuestionsTakeASpanishYes) {
    home.write(home.folder() / ".calendars" / "casa" / "te.ics", oneEvent);
    auto const result = home.quillora({"setup"}, ProgramRun::Output::terminal, "Sí\ns\ns\n");
    EXPECT_EQ(result.exitCode, 0) << result.output;
    EXPECT_THAT(result.output, HasSubstr("¿Puede leer y cambiar tus calendarios? [sí/no] "));
    EXPECT_THAT(result.output, HasSubstr("¿Guardarla en un fichero? [s/n] "));
    EXPECT_THAT(result.output, HasSubstr("¿Mostrarlos? [s/n] "));
    EXPECT_THAT(result.output, HasSubstr("Añadida la fuente «.calendars»"));
    EXPECT_THAT(result.output, HasSubstr("Acceso a los calendarios: concedido"));
}

TEST_F(SpanishJourneys, theDayIsSpanishFromTheWeekdayToTheCount) {
    home.setUp();
    std::string events = event("d", "Fiesta", ";VALUE=DATE:20260311", ";VALUE=DATE:20260312");
    for (auto const* hour : {"08", "09", "10", "11"})
        events += event(hour, "Reunión", ":20260311T" + std::string(hour) + "0000Z",
                        ":20260311T" + std::string(hour) + "3000Z");
    home.write(home.calendars() / "casa" / "dia.ics", calendarFile(events));
    auto const day = home.outputOf({"day", "--at", "2026-03-11T08:00", "--family", "medium"});
    EXPECT_THAT(day, HasSubstr("Miércoles 11\n"));
    EXPECT_THAT(day, HasSubstr("+1 más\n"));
    EXPECT_THAT(home.outputOf({"day", "--at", "2026-03-11T08:00"}), HasSubstr("Todo el día\n"));
    EXPECT_THAT(home.outputOf({"day", "--at", "2026-04-01T08:00"}), HasSubstr("Sin eventos\n"));
    EXPECT_THAT(home.outputOf({"next"}), HasSubstr(" (1 día después)\n"));
    EXPECT_THAT(home.outputOf({"today"}), HasSubstr(" (hoy)\n"));
}

TEST_F(SpanishJourneys, errorsSayWhatToDo) {
    auto const wrong = home.quillora({"dya"});
    EXPECT_EQ(wrong.exitCode, 2);
    EXPECT_EQ(wrong.errors, "quillora: no existe la orden «dya»; véase «quillora --help»\n");
    EXPECT_EQ(home.quillora({"day", "--family", "huge"}).errors,
              "quillora: --family admite small, medium o large, no «huge»\n");
    EXPECT_THAT(home.quillora({"day"}).errors, HasSubstr("los calendarios de este equipo aún no están "));
}

TEST_F(SpanishJourneys, whatTheCalendarStoreCouldNotReadIsToldInSpanish) {
    home.setUp();
    home.write(home.calendars() / "casa" / "sin.ics",
               calendarFile("BEGIN:VEVENT\r\nUID:u1\r\nEND:VEVENT\r\n"));
    EXPECT_THAT(home.quillora({"day"}).errors, HasSubstr("sin.ics:4: el evento no tiene DTSTART\n"));
    home.write(home.configuration() / "calendar-store.json", "{");
    EXPECT_THAT(home.quillora({"sources", "list"}).errors,
                HasSubstr("la lista de carpetas de calendarios está dañada"));
    EXPECT_THAT(home.quillora({"day", "--png", "/proc/day.png"}).errors, HasSubstr("no se pudo escribir"));
}

// What a person's settings make of one day: the weekday is their locale's, texts and numbers are ours.
struct Settings {
    char const* name;
    std::map<std::string, std::string> environment;
    std::string header;
    std::string allDay;
    std::string more;
};

void PrintTo(Settings const& settings, std::ostream* stream) {
    *stream << settings.name;
}

class SettingsJourneys : public testing::TestWithParam<Settings> {};

TEST_P(SettingsJourneys, aDayHasItsWeekdayItsNumbersAndItsTexts) {
    PrivateHome home;
    home.setUp();
    std::string events = event("d", "Feast", ";VALUE=DATE:20260311", ";VALUE=DATE:20260312");
    for (int number = 0; number < 9; ++number)
        events += event("u" + std::to_string(number), "Tea", ":20260311T080000Z", ":20260311T091500Z");
    home.write(home.calendars() / "home" / "day.ics", calendarFile(events));
    home.environment.erase("LANG");
    for (auto const& [name, value] : GetParam().environment)
        home.environment[name] = value;

    auto const day = home.outputOf({"day", "--at", "2026-03-11T08:00", "--family", "large"});
    EXPECT_THAT(day, testing::StartsWith(GetParam().header + "\n"));
    EXPECT_THAT(day, HasSubstr("\n" + GetParam().allDay + "\n"));
    EXPECT_THAT(day, HasSubstr("▌ 09:00 a.m.  Tea  1h 15m\n"));
    EXPECT_THAT(day, testing::EndsWith("  " + GetParam().more + "\n"));
    // What programs read is the same for everyone.
    auto const json = home.outputOf({"day", "--json", "--at", "2026-03-11T08:00"});
    EXPECT_THAT(json, HasSubstr(R"("date":"2026-03-11T07:00:00Z")"));
    EXPECT_THAT(json, HasSubstr(R"("metDuration":4500)"));
    // And a picture can be drawn with it, whichever way its script runs.
    EXPECT_EQ(home.outputOf({"day", "--png", "-", "--at", "2026-03-11T08:00"}).substr(1, 3), "PNG");
}

INSTANTIATE_TEST_SUITE_P(
    Languages, SettingsJourneys,
    testing::Values(Settings{"none", {}, "Wednesday 11", "All day", "+1 more"},
                    Settings{"plain", {{"LANG", "C"}}, "Wednesday 11", "All day", "+1 more"},
                    Settings{"spanish", {{"LANG", "es_ES.UTF-8"}}, "Miércoles 11", "Todo el día", "+1 más"},
                    Settings{"mexican", {{"LANG", "es_MX.UTF-8"}}, "Miércoles 11", "Todo el día", "+1 más"},
                    Settings{"everythingSpanish",
                             {{"LC_ALL", "es_ES.UTF-8"}, {"LANG", "de_DE.UTF-8"}},
                             "Miércoles 11",
                             "Todo el día",
                             "+1 más"},
                    Settings{"arabic", {{"LANG", "ar_EG.UTF-8"}}, "الأربعاء 11", "All day", "+1 more"},
                    Settings{"thai", {{"LANG", "th_TH.UTF-8"}}, "วันพุธ 11", "All day", "+1 more"},
                    Settings{"persian", {{"LANG", "fa_IR.UTF-8"}}, "چهارشنبه 11", "All day", "+1 more"},
                    Settings{"turkish", {{"LANG", "tr_TR.UTF-8"}}, "Çarşamba 11", "All day", "+1 more"},
                    Settings{"german", {{"LANG", "de_DE.UTF-8"}}, "Mittwoch 11", "All day", "+1 more"},
                    Settings{"japanese", {{"LANG", "ja_JP.UTF-8"}}, "水曜日 11", "All day", "+1 more"},
                    Settings{"hebrew", {{"LANG", "he_IL.UTF-8"}}, "יום רביעי 11", "All day", "+1 more"},
                    Settings{"japaneseTimes",
                             {{"LANG", "es_ES.UTF-8"}, {"LC_TIME", "ja_JP.UTF-8"}},
                             "水曜日 11",
                             "Todo el día",
                             "+1 más"},
                    Settings{"spanishMessages",
                             {{"LANG", "tr_TR.UTF-8"}, {"LC_MESSAGES", "es_ES.UTF-8"}},
                             "Çarşamba 11",
                             "Todo el día",
                             "+1 más"},
                    Settings{"spanishList",
                             {{"LANG", "de_DE.UTF-8"}, {"LANGUAGE", "fi:es:en"}},
                             "Mittwoch 11",
                             "Todo el día",
                             "+1 más"},
                    Settings{"otherNumbers",
                             {{"LANG", "C.UTF-8"}, {"LC_NUMERIC", "ar_EG.UTF-8"}},
                             "Wednesday 11",
                             "All day",
                             "+1 more"}),
    [](auto const& row) { return std::string(row.param.name); });

TEST(LanguageJourneys, theListOfLanguagesDecidesAndEnglishIsTheLastResort) {
    PrivateHome home;
    auto const heading = [&](std::string const& list, std::string const& language) {
        home.environment["LANGUAGE"] = list;
        home.environment["LANG"] = language;
        auto const help = home.outputOf({"--help"});
        return help.substr(help.find("\n\n") + 2, help.find(':', help.find("\n\n")) - help.find("\n\n") - 2);
    };
    EXPECT_EQ(heading("", "es_MX.UTF-8"), "Uso");
    EXPECT_EQ(heading("es", "C.UTF-8"), "Uso");
    EXPECT_EQ(heading("en:es", "es_ES.UTF-8"), "Usage");
    EXPECT_EQ(heading("fi:es", "fi_FI.UTF-8"), "Uso");
    EXPECT_EQ(heading("", "fi_FI.UTF-8"), "Usage");
    EXPECT_EQ(heading("", "tr_TR.UTF-8"), "Usage");
}

// The program as it is installed: bin/ and share/quillora/ below a prefix.
class InstalledJourneys : public testing::Test {
protected:
    InstalledJourneys() {
        home.environment["LANG"] = "es_ES.UTF-8";
        home.setUp();
        home.write(home.calendars() / "casa" / "te.ics",
                   calendarFile("BEGIN:VEVENT\r\nUID:u1\r\nDTSTART:20260311T090000Z\r\nEND:VEVENT\r\n"));
        copyProgram(prefix);
        fs::create_directories(bundles);
        fs::copy(QUILLORA_BUILD_DIR "/share/quillora", bundles, fs::copy_options::recursive);
    }

    [[nodiscard]] ProgramResult quillora(std::vector<std::string> words) const {
        return run({.path = (prefix / "bin" / "quillora").string(),
                    .arguments = std::move(words),
                    .environment = home.environment,
                    .directory = home.folder().string()});
    }
    [[nodiscard]] ProgramResult day() const { return quillora({"day", "--at", "2026-03-11T08:00"}); }

    PrivateHome home;
    fs::path prefix = home.folder() / "prefix";
    fs::path bundles = prefix / "share" / "quillora";
};

TEST_F(InstalledJourneys, theBundlesAreFoundBelowThePrefix) {
    EXPECT_THAT(day().output, HasSubstr("Sin título"));
}

TEST_F(InstalledJourneys, aPackageWithoutItsBundleEndsTheProgram) {
    fs::remove_all(bundles / "Meetings_Meetings.bundle");
    auto const result = day();
    EXPECT_EQ(result.signal, 6);
    EXPECT_EQ(result.errors, "unable to find bundle named Meetings_Meetings\n");
}

TEST_F(InstalledJourneys, theOverrideComesBeforeThePrefix) {
    auto const table = fs::path("Meetings_Meetings.bundle") / "es.lproj" / "Localizable.strings";
    home.write(home.folder() / "path" / table, "\"eventkit-meet-untitled\" = \"Por la ruta\";");
    home.write(home.folder() / "url" / table, "\"eventkit-meet-untitled\" = \"Por la dirección\";");
    home.environment["PACKAGE_RESOURCE_BUNDLE_URL"] = (home.folder() / "url").string();
    EXPECT_THAT(day().output, HasSubstr("Por la dirección"));
    home.environment["PACKAGE_RESOURCE_BUNDLE_PATH"] = (home.folder() / "path").string();
    EXPECT_THAT(day().output, HasSubstr("Por la ruta"));
    // What the override lacks is looked for in the other places, and nobody looks at the second variable.
    home.environment["PACKAGE_RESOURCE_BUNDLE_PATH"] = (home.folder() / "nowhere").string();
    EXPECT_THAT(day().output, HasSubstr("Sin título"));
}

TEST_F(InstalledJourneys, withoutAnyBundleItsOwnWordsAreEnglish) {
    fs::remove_all(bundles);
    EXPECT_THAT(quillora({"--help"}).output, HasSubstr("Usage:"));
    EXPECT_EQ(quillora({"access", "status"}).output, "Calendar access: granted\n");
}

} // namespace
