#include "Platform/Resources/Bundle.h"
#include "Platform/Resources/BundleColorProvider.h"
#include "Platform/Resources/BundleLookup.h"
#include "Platform/Resources/BundleTextProvider.h"
#include "Platform/Resources/TableColorProvider.h"
#include "Platform/Resources/TableTextProvider.h"

#include "Tests/Platform/OrdinaryUser.h"
#include "Tests/Platform/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace Platform;
using Foundation::Environment;
using std::filesystem::path;
using Paths = std::vector<path>;

constexpr char marker = 0;

// A bundle with one English text.
void placeBundle(TemporaryFolder const& folder, path const& bundle, std::string const& text) {
    folder.place(bundle / "en.lproj" / "Localizable.strings", "\"k\" = \"" + text + "\";");
}

TEST(BundleTests, theFirstLanguageThatHasTheTextWins) {
    TemporaryFolder const folder;
    folder.place("es_MX.lproj/Localizable.strings", "\"only\" = \"mexicano\";");
    folder.place("es.lproj/Localizable.strings", "\"only\" = \"español\"; \"both\" = \"ambos\";");
    folder.place("en.lproj/Localizable.strings", "\"both\" = \"both\"; \"english\" = \"English\";");
    auto const bundle = Bundle::open(folder.path(), {"es_MX", "es"}).value();

    EXPECT_EQ(bundle.text("only"), "mexicano");
    EXPECT_EQ(bundle.text("both"), "ambos");
    EXPECT_EQ(bundle.text("english"), "English");
    EXPECT_EQ(bundle.text("missing"), "missing");
    EXPECT_TRUE(bundle.problems().empty());
}

TEST(BundleTests, englishTakesThePlaceThatTheUserGaveIt) {
    TemporaryFolder const folder;
    folder.place("es.lproj/Localizable.strings", "\"k\" = \"texto\";");
    folder.place("en.lproj/Localizable.strings", "\"k\" = \"text\";");
    EXPECT_EQ(Bundle::open(folder.path(), {"en", "es"}).value().text("k"), "text");
}

TEST(BundleTests, aTextThatGoesWithANumberHasTheFormsOfItsLanguage) {
    TemporaryFolder const folder;
    folder.place("en.lproj/Localizable.strings",
                 R"("d.one" = "day"; "d.other" = "days"; "e.other" = "all";)");
    folder.place("pl.lproj/Localizable.strings",
                 R"("d.one" = "dzień"; "d.few" = "dni"; "d.other" = "dnia";)");
    auto const polish = Bundle::open(folder.path(), {"pl_PL", "pl"}).value();
    EXPECT_EQ(polish.findCounted("d", 1), "dzień");
    EXPECT_EQ(polish.findCounted("d", 3), "dni");
    EXPECT_EQ(polish.findCounted("d", 5), "dnia"); // "many" is not there, so the other form serves.
    EXPECT_EQ(polish.findCounted("e", 1), "all");
    EXPECT_EQ(polish.findCounted("f", 1), std::nullopt);
    auto const english = Bundle::open(folder.path(), {"en"}).value();
    EXPECT_EQ(english.findCounted("d", 1), "day");
    EXPECT_EQ(english.findCounted("d", 0), "days");
    EXPECT_EQ(english.find("d"), std::nullopt);
}

TEST(BundleTests, aFolderMaySpellItsRegionWithAHyphen) {
    TemporaryFolder const folder;
    folder.place("pt-BR.lproj/Localizable.strings", "\"k\" = \"texto\";");
    EXPECT_EQ(Bundle::open(folder.path(), {"pt_BR"}).value().text("k"), "texto");
}

TEST(BundleTests, anEmptyFolderOpensAndAFileDoesNot) {
    TemporaryFolder const folder;
    EXPECT_EQ(Bundle::open(folder.path(), {"es"}).value().text("key"), "key");
    EXPECT_FALSE(Bundle::open(folder.place("file.bundle", ""), {}).has_value());
    EXPECT_FALSE(Bundle::open(folder.path() / "missing", {}).has_value());
}

TEST(BundleTests, problemsNameFileAndLine) {
    TemporaryFolder const folder;
    auto const file = folder.place("en.lproj/Localizable.strings", "\"a\" = \"1\";\nbroken;\n");
    auto const bundle = Bundle::open(folder.path(), {}).value();
    EXPECT_EQ(bundle.text("a"), "1");
    EXPECT_EQ(bundle.problems(),
              (std::vector<std::string>{file.string() + ":2: a key in quotes is missing; entry skipped"}));
}

TEST(BundleTests, namedColoursStandBesideTheTexts) {
    TemporaryFolder const folder;
    folder.place("Colors.json", R"({"C": {"light": "#FFFFFF", "dark": "#000000"}})");
    auto const bundle = Bundle::open(folder.path(), {"es"}).value();
    EXPECT_EQ(bundle.color("C", ColorScheme::light), (ColorsFile::Color{1, 1, 1}));
    EXPECT_EQ(bundle.color("C", ColorScheme::dark), (ColorsFile::Color{0, 0, 0}));
    EXPECT_EQ(bundle.color("D", ColorScheme::light), std::nullopt);
    EXPECT_TRUE(bundle.problems().empty());
}

TEST(BundleTests, withoutAFileOfColoursThereAreNoneAndNothingIsWrong) {
    TemporaryFolder const folder;
    std::filesystem::create_directory(folder.path() / "Colors.json");
    auto const bundle = Bundle::open(folder.path(), {}).value();
    EXPECT_EQ(bundle.color("C", ColorScheme::light), std::nullopt);
    EXPECT_TRUE(bundle.problems().empty());
}

TEST(BundleTests, problemsOfColoursNameTheFile) {
    TemporaryFolder const folder;
    auto const file = folder.place("Colors.json", "{");
    EXPECT_EQ(Bundle::open(folder.path(), {}).value().problems(),
              (std::vector<std::string>{file.string() + ": not a JSON object; no colour is read"}));
}

TEST(BundleTests, aFileThatIsTooLargeOrCannotBeReadIsLeftOut) {
    TemporaryFolder const folder;
    // Files full of holes: read whole, they would fill the memory.
    constexpr std::uintmax_t fourGigabytes = std::uintmax_t{4} << 30;
    auto const colors = folder.place("Colors.json", "{}");
    auto const spanish = folder.place("es.lproj/Localizable.strings", "\"k\" = \"texto\";");
    auto const english = folder.place("en.lproj/Localizable.strings", "\"k\" = \"text\";");
    std::filesystem::resize_file(colors, fourGigabytes);
    std::filesystem::permissions(spanish, std::filesystem::perms::none);
    OrdinaryUser const user(folder.path());
    auto const bundle = Bundle::open(folder.path(), {"es"}).value();
    EXPECT_EQ(bundle.text("k"), "text");
    EXPECT_EQ(bundle.color("C", ColorScheme::light), std::nullopt);
    EXPECT_EQ(bundle.problems(),
              (std::vector<std::string>{spanish.string() + ": cannot be read; left out",
                                        colors.string() + ": larger than 1 MiB; left out"}));
}

TEST(BundleTests, theLargestTableIsReadAndOneByteMoreIsTooMuch) {
    TemporaryFolder const folder;
    std::string table = "\"k\" = \"text\";";
    table.resize(Bundle::largestTable, '\n');
    folder.place("en.lproj/Localizable.strings", table);
    EXPECT_EQ(Bundle::open(folder.path(), {}).value().text("k"), "text");
    folder.place("en.lproj/Localizable.strings", table + "\n");
    EXPECT_EQ(Bundle::open(folder.path(), {}).value().text("k"), "k");
}

TEST(BundleLookupTests, theOverrideComesBeforeThePlacesInTheirOrder) {
    BundlePlaces const places{.mainResources = "/share", .packageResources = "/lib", .mainFolder = "/bin"};
    EXPECT_EQ(BundleLookup::candidates(Environment(), places), (Paths{"/share", "/lib", "/bin"}));
    EXPECT_EQ(BundleLookup::candidates(Environment({{"PACKAGE_RESOURCE_BUNDLE_PATH", "/o"}}), places),
              (Paths{"/o", "/share", "/lib", "/bin"}));
    EXPECT_EQ(BundleLookup::candidates(Environment({{"PACKAGE_RESOURCE_BUNDLE_URL", "/u"}}), places),
              (Paths{"/u", "/share", "/lib", "/bin"}));
    EXPECT_EQ(BundleLookup::candidates(Environment({{"PACKAGE_RESOURCE_BUNDLE_PATH", "/nowhere"},
                                                    {"PACKAGE_RESOURCE_BUNDLE_URL", "/u"}}),
                                       places),
              (Paths{"/nowhere", "/share", "/lib", "/bin"}));
}

TEST(BundleLookupTests, unknownPlacesAreSkipped) {
    EXPECT_EQ(BundleLookup::candidates(
                  Environment(),
                  {.mainResources = std::nullopt, .packageResources = "/lib", .mainFolder = std::nullopt}),
              (Paths{"/lib"}));
}

TEST(BundleLookupTests, theOverrideIsAPathFromTheCurrentFolder) {
    BundlePlaces const nowhere{
        .mainResources = std::nullopt, .packageResources = std::nullopt, .mainFolder = std::nullopt};
    auto const current = std::filesystem::current_path();
    auto const candidates = [&](std::string const& text) {
        return BundleLookup::candidates(Environment({{"PACKAGE_RESOURCE_BUNDLE_PATH", text}}), nowhere);
    };
    EXPECT_EQ(candidates(""), (Paths{current}));
    EXPECT_EQ(candidates("a/b"), (Paths{current / "a/b"}));
    EXPECT_EQ(candidates("file:///o"), (Paths{current / "file:///o"}));
}

TEST(BundleLookupTests, theFirstFolderThatHasTheBundleWins) {
    TemporaryFolder const folder;
    placeBundle(folder, "override/Meetings_Meetings.bundle", "override");
    placeBundle(folder, "share/Meetings_Meetings.bundle", "share");
    placeBundle(folder, "bin/Meetings_Meetings.bundle", "bin");
    BundlePlaces const places{.mainResources = folder.path() / "share",
                              .packageResources = std::nullopt,
                              .mainFolder = folder.path() / "bin"};
    auto const text = [&](Environment const& environment) {
        return BundleLookup::packageBundle("Meetings_Meetings", environment, places, {}).text("k");
    };
    EXPECT_EQ(text(Environment()), "share");
    EXPECT_EQ(text(Environment({{"PACKAGE_RESOURCE_BUNDLE_PATH", folder.path() / "override"}})), "override");
    EXPECT_EQ(text(Environment({{"PACKAGE_RESOURCE_BUNDLE_URL", folder.path() / "override"}})), "override");
    EXPECT_EQ(text(Environment({{"PACKAGE_RESOURCE_BUNDLE_PATH", "/nowhere"},
                                {"PACKAGE_RESOURCE_BUNDLE_URL", folder.path() / "override"}})),
              "share");
}

TEST(BundleLookupTests, aFileOfTheBundlesNameIsPassedOver) {
    TemporaryFolder const folder;
    folder.place("share/Meetings_Meetings.bundle", "a file");
    placeBundle(folder, "bin/Meetings_Meetings.bundle", "bin");
    BundlePlaces const places{.mainResources = folder.path() / "share",
                              .packageResources = std::nullopt,
                              .mainFolder = folder.path() / "bin"};
    EXPECT_EQ(BundleLookup::packageBundle("Meetings_Meetings", Environment(), places, {}).text("k"), "bin");
}

TEST(BundleLookupTests, thePlacesOfAProcessSurroundItsExecutable) {
    auto const places = BundlePlaces::ofProcess(&marker);
    auto const executable = std::filesystem::read_symlink("/proc/self/exe");
    EXPECT_EQ(places.mainFolder, executable.parent_path());
    EXPECT_EQ(places.mainResources, executable.parent_path().parent_path() / "share" / "quillora");
    EXPECT_EQ(places.packageResources, executable.parent_path());
    EXPECT_EQ(BundlePlaces::ofProcess(nullptr).packageResources, std::nullopt);
}

TEST(BundleLookupTests, aPartOfAProgramHasThePlacesOfTheProgram) {
    auto const program = BundlePlaces::ofExecutableIn("/a prefix/bin");
    EXPECT_EQ(program.mainResources, "/a prefix/share/quillora");
    EXPECT_EQ(program.mainFolder, "/a prefix/bin");
    EXPECT_EQ(BundlePlaces::ofExecutableIn("/a prefix/libexec/quillora"), program);
}

TEST(BundleLookupTests, onlyTheirOwnFolderMakesAProgramAPart) {
    EXPECT_EQ(BundlePlaces::ofExecutableIn("/opt/libexec").mainFolder, "/opt/libexec");
    EXPECT_EQ(BundlePlaces::ofExecutableIn("/opt/quillora").mainResources, "/opt/share/quillora");
    EXPECT_EQ(BundlePlaces::ofExecutableIn("/opt/libexec/other").mainFolder, "/opt/libexec/other");
}

TEST(BundleLookupDeathTests, withoutABundleTheProcessEnds) {
    TemporaryFolder const folder;
    BundlePlaces const places{
        .mainResources = folder.path(), .packageResources = std::nullopt, .mainFolder = std::nullopt};
    EXPECT_EXIT(BundleLookup::packageBundle("Meetings_Meetings", Environment(), places, {}),
                testing::KilledBySignal(SIGABRT), "^unable to find bundle named Meetings_Meetings\n$");
    EXPECT_EXIT(
        (void)BundleTextProvider("CalendarProviders_CalendarProviders", Environment(), places, {}).text("k"),
        testing::KilledBySignal(SIGABRT),
        "^unable to find bundle named CalendarProviders_CalendarProviders\n$");
}

TEST(BundleTextProviderTests, theBundleIsLookedUpOnceOnFirstUse) {
    TemporaryFolder const folder;
    BundlePlaces const places{
        .mainResources = folder.path(), .packageResources = std::nullopt, .mainFolder = std::nullopt};
    BundleTextProvider const provider("P", Environment(), places, {"es"});
    placeBundle(folder, "P.bundle", "made after the provider");
    EXPECT_EQ(provider.text("k"), "made after the provider");

    std::filesystem::remove_all(folder.path() / "P.bundle");
    EXPECT_EQ(provider.text("k"), "made after the provider");
    EXPECT_EQ(provider.bundle().folder(), folder.path() / "P.bundle");
}

TEST(BundleColorProviderTests, theColoursAreThoseOfTheBundleThatTheTextsComeFrom) {
    TemporaryFolder const folder;
    BundlePlaces const places{
        .mainResources = folder.path(), .packageResources = std::nullopt, .mainFolder = std::nullopt};
    auto const texts =
        std::make_shared<BundleTextProvider>("P", Environment(), places, std::vector<std::string>());
    BundleColorProvider const provider(texts);
    folder.place("P.bundle/Colors.json", R"({"C": {"light": "#FFFFFF", "dark": "#000000"}})");
    EXPECT_EQ(provider.color("C", ColorScheme::dark), (ColorsFile::Color{0, 0, 0}));

    std::filesystem::remove_all(folder.path() / "P.bundle");
    EXPECT_EQ(provider.color("C", ColorScheme::light), (ColorsFile::Color{1, 1, 1}));
    EXPECT_EQ(texts->bundle().folder(), folder.path() / "P.bundle");
}

TEST(BundleLookupDeathTests, theFirstColourOfAMissingBundleEndsTheProcess) {
    TemporaryFolder const folder;
    BundlePlaces const places{
        .mainResources = folder.path(), .packageResources = std::nullopt, .mainFolder = std::nullopt};
    BundleColorProvider const provider(
        std::make_shared<BundleTextProvider>("P", Environment(), places, std::vector<std::string>()));
    EXPECT_EXIT((void)provider.color("C", ColorScheme::light), testing::KilledBySignal(SIGABRT),
                "^unable to find bundle named P\n$");
}

TEST(TableColorProviderTests, aColourThatIsNotInTheTableIsAbsent) {
    TableColorProvider const provider({{{"C", ColorScheme::dark}, {0.25, 0.5, 1}}});
    EXPECT_EQ(provider.color("C", ColorScheme::dark), (ColorsFile::Color{0.25, 0.5, 1}));
    EXPECT_EQ(provider.color("C", ColorScheme::light), std::nullopt);
    EXPECT_EQ(provider.color("D", ColorScheme::dark), std::nullopt);
}

TEST(TableTextProviderTests, aMissingTextIsItsKey) {
    TableTextProvider const provider({{"k", "text"}});
    EXPECT_EQ(provider.text("k"), "text");
    EXPECT_EQ(provider.text("other"), "other");
}

} // namespace
