#include "Platform/Clock/FixedClock.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/ObjectDatabase/Quarantine.h"
#include "Platform/ObjectDatabase/SealedObjectDatabaseEngine.h"
#include "Tests/ObjectDatabase/DatabaseFixtures.h"
#include "Tests/Platform/FaultScale.h"
#include "Tests/Platform/OrdinaryUser.h"
#include "Tests/Platform/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <fstream>
#include <iterator>
#include <system_error>
#include <thread>

namespace {

using namespace DatabaseFixtures;
using namespace std::chrono_literals;
using Platform::DatabaseLock;
using Platform::ObjectDatabaseError;
using Platform::PersistedObject;
using Platform::SealedObjectDatabaseEngine;
using Kind = ObjectDatabaseError::Kind;
using std::filesystem::path;

std::uint32_t modeOf(path const& file) {
    struct stat status{};
    ::lstat(file.c_str(), &status);
    return status.st_mode & 07777U;
}

std::string contentOf(path const& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// While it stands, the process may have no more of something than `limit`.
class Limit {
public:
    Limit(__rlimit_resource resource, rlim_t limit) : resource(resource) {
        ::getrlimit(resource, &before);
        rlimit const lowered{.rlim_cur = limit, .rlim_max = before.rlim_max};
        ::setrlimit(resource, &lowered);
    }
    ~Limit() { ::setrlimit(resource, &before); }
    Limit(Limit const&) = delete;
    Limit& operator=(Limit const&) = delete;

private:
    __rlimit_resource resource;
    rlimit before{};
};

class SealedObjectDatabaseTests : public testing::Test {
protected:
    TemporaryFolder dataHome;
    path folder = dataHome.path() / "Quillora";
    path file = folder / "Tests.realm";
    // 2025-11-21 12:00:00 UTC
    std::shared_ptr<Platform::FixedClock> clock =
        std::make_shared<Platform::FixedClock>(Foundation::Date{.secondsSince1970 = 1763726400});
    SealedObjectDatabaseEngine engine{dataHome.path(), clock, 40ms};

    std::expected<void, ObjectDatabaseError> write(std::vector<PersistedObject> objects) {
        auto const database = engine.open(at(file));
        if (!database) return std::unexpected(database.error());
        return (*database)->write(adding(std::move(objects)));
    }
    std::vector<PersistedObject> people() {
        auto const database = engine.open(at(file));
        if (!database) throw std::runtime_error(database.error().localizedDescription);
        return (*database)->objects("Person").value();
    }
    std::set<std::string> names() const {
        std::set<std::string> found;
        for (auto const& entry : std::filesystem::directory_iterator(folder))
            found.insert(entry.path().filename());
        return found;
    }
    void damage() { std::filesystem::resize_file(file, std::filesystem::file_size(file) - 1); }
};

} // namespace

TEST_F(SealedObjectDatabaseTests, waitsTenSecondsUnlessTold) {
    EXPECT_EQ(SealedObjectDatabaseEngine::usualPatience, 10s);
}

TEST_F(SealedObjectDatabaseTests, withoutADataHomeThereIsNoDefaultFile) {
    EXPECT_FALSE(SealedObjectDatabaseEngine(std::nullopt, clock).defaultFileURL().has_value());
}

TEST_F(SealedObjectDatabaseTests, keepsItsFilesForTheirOwnerAlone) {
    ASSERT_TRUE(write({person("a", "Ada")}).has_value());
    EXPECT_EQ(modeOf(folder), 0700U);
    EXPECT_EQ(names(), (std::set<std::string>{"Tests.realm", "Tests.realm.lock"}));
    EXPECT_EQ(modeOf(file), 0600U);
    EXPECT_EQ(modeOf(folder / "Tests.realm.lock"), 0600U);
}

TEST_F(SealedObjectDatabaseTests, aFileKeepsTheModeThatItHas) {
    ASSERT_TRUE(write({person("a", "Ada")}).has_value());
    ::chmod(file.c_str(), 0640);
    ASSERT_TRUE(write({person("b", "Bob")}).has_value());
    EXPECT_EQ(modeOf(file), 0640U);
}

TEST_F(SealedObjectDatabaseTests, noPlainTextIsInTheFile) {
    ASSERT_TRUE(write({person("a", "ada@example.org")}).has_value());
    auto const content = contentOf(file);
    for (auto const* word : {"ada@example.org", "Person", "registeredAt", "SQLite"}) {
        EXPECT_EQ(content.find(word), std::string::npos) << word;
    }
}

TEST_F(SealedObjectDatabaseTests, anEmptyFileIsANewDatabase) {
    std::filesystem::create_directory(folder);
    std::ofstream(file).close();
    EXPECT_TRUE(people().empty());
    EXPECT_GT(std::filesystem::file_size(file), 0U);
}

TEST_F(SealedObjectDatabaseTests, whatChangesNothingWritesNothing) {
    ASSERT_TRUE(write({person("a", "Ada")}).has_value());
    auto const before = contentOf(file);
    ASSERT_TRUE(write({person("a", "Ada")}).has_value());
    EXPECT_EQ(contentOf(file), before);
    ASSERT_TRUE(write({person("a", "Ada", false)}).has_value());
    EXPECT_NE(contentOf(file), before);
}

TEST_F(SealedObjectDatabaseTests, whatAKilledWriterLeftIsNoHindrance) {
    ASSERT_TRUE(write({person("a", "Ada")}).has_value());
    std::ofstream(folder / "Tests.realm.new") << "half a database";
    ASSERT_TRUE(write({person("b", "Bob")}).has_value());
    EXPECT_EQ(people().size(), 2U);
    EXPECT_FALSE(names().contains("Tests.realm.new"));
}

TEST_F(SealedObjectDatabaseTests, everyFlippedBitAndEveryCutOfTheFileIsFound) {
    std::vector<PersistedObject> many;
    for (int count = 0; count < 80; ++count)
        many.push_back(person(std::to_string(count), "Ada"));
    ASSERT_TRUE(write(many).has_value());
    auto const whole = contentOf(file);
    auto const flips = static_cast<std::size_t>(FaultScale::of(90'000));
    auto const cuts = static_cast<std::size_t>(FaultScale::of(10'000));
    ASSERT_GE(whole.size() * 8, flips);
    ASSERT_GT(whole.size(), cuts);
    Platform::FileDescriptor const written(::open(file.c_str(), O_WRONLY | O_CLOEXEC));
    auto const restore = [&](std::size_t from, std::size_t count) {
        auto const place = static_cast<off_t>(from);
        ASSERT_EQ(::pwrite(written.get(), whole.data() + from, count, place), static_cast<ssize_t>(count));
    };
    auto const isFound = [&] {
        auto const opened = engine.open(at(file));
        return !opened &&
               (opened.error().kind == Kind::wrongKeyOrDamaged || opened.error().kind == Kind::foreignFile);
    };
    for (std::size_t flip = 0; flip < flips; ++flip) {
        auto const bit = flip * (whole.size() * 8) / flips;
        auto const changed = static_cast<char>(whole[bit / 8] ^ (1 << (bit % 8)));
        ASSERT_EQ(::pwrite(written.get(), &changed, 1, static_cast<off_t>(bit / 8)), 1);
        ASSERT_TRUE(isFound()) << "bit " << bit;
        restore(bit / 8, 1);
    }
    // From one byte on: an empty file is a new database.
    for (std::size_t cut = 0; cut < cuts; ++cut) {
        auto const length = 1 + cut * (whole.size() - 1) / cuts;
        ASSERT_EQ(::ftruncate(written.get(), static_cast<off_t>(length)), 0);
        ASSERT_TRUE(isFound()) << length << " bytes";
        restore(length, whole.size() - length);
    }
    EXPECT_EQ(people().size(), 80U);
}

TEST_F(SealedObjectDatabaseTests, whatIsNoDatabaseDoesNotOpenAndGoesToQuarantine) {
    std::filesystem::create_directory(folder);
    struct Case {
        std::string name;
        std::function<void()> put;
    };
    std::vector<Case> const cases{
        {"a text", [&] { std::ofstream(file) << "a text"; }},
        {"a folder", [&] { std::filesystem::create_directory(file); }},
        {"a pipe", [&] { ::mkfifo(file.c_str(), 0600); }},
        {"a link", [&] { std::filesystem::create_symlink("elsewhere", file); }},
    };
    for (auto const& [name, put] : cases) {
        put();
        auto const opened = engine.open(at(file));
        ASSERT_FALSE(opened.has_value()) << name;
        EXPECT_EQ(opened.error().localizedDescription, "the file is not a database of this program") << name;
        EXPECT_EQ(engine.deleteFiles(at(file)), true) << name;
        EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(file))) << name;
    }
}

TEST_F(SealedObjectDatabaseTests, deletedFilesLieInQuarantineWhole) {
    ASSERT_TRUE(write({person("a", "Ada")}).has_value());
    auto const before = contentOf(file);
    std::ofstream(folder / "Tests.realm.note") << "note";
    std::ofstream(folder / "Tests.realm-wal") << "wal";
    std::ofstream(folder / "Tests.realmOther.realm") << "somebody else's";
    ASSERT_EQ(engine.deleteFiles(at(file)), true);
    EXPECT_EQ(names(),
              (std::set<std::string>{"Tests.realmOther.realm", "quarantined-20251121T120000Z-00-Tests.realm",
                                     "quarantined-20251121T120000Z-00-Tests.realm-wal",
                                     "quarantined-20251121T120000Z-00-Tests.realm.lock",
                                     "quarantined-20251121T120000Z-00-Tests.realm.note"}));
    auto const copies = Platform::Quarantine::copies(file);
    EXPECT_EQ(copies, std::vector{folder / "quarantined-20251121T120000Z-00-Tests.realm"});
    EXPECT_EQ(contentOf(copies.front()), before);
    auto again = at(copies.front());
    EXPECT_EQ(engine.open(again).value()->objects("Person").value(), std::vector{person("a", "Ada")});
}

TEST_F(SealedObjectDatabaseTests, theNewestThreeCopiesAreKept) {
    for (int day = 0; day < 5; ++day) {
        clock->set({.secondsSince1970 = 1763726400 + day * 86400.0});
        ASSERT_TRUE(write({person("a", "Ada")}).has_value());
        ASSERT_EQ(engine.deleteFiles(at(file)), true);
    }
    EXPECT_EQ(Platform::Quarantine::copies(file),
              (std::vector{folder / "quarantined-20251125T120000Z-00-Tests.realm",
                           folder / "quarantined-20251124T120000Z-00-Tests.realm",
                           folder / "quarantined-20251123T120000Z-00-Tests.realm"}));
}

TEST_F(SealedObjectDatabaseTests, copiesOfOneMomentAreToldApart) {
    for (int time = 0; time < 5; ++time) {
        ASSERT_TRUE(write({person("a", "Ada")}).has_value());
        ASSERT_EQ(engine.deleteFiles(at(file)), true);
    }
    auto const copies = Platform::Quarantine::copies(file);
    ASSERT_EQ(copies.size(), 3U);
    for (auto const& copy : copies)
        EXPECT_GT(std::filesystem::file_size(copy), 0U);
}

TEST_F(SealedObjectDatabaseTests, theLastCopyIsKeptThoughTheClockWentBack) {
    for (int day = 5; day > 0; --day) {
        clock->set({.secondsSince1970 = 1763726400 + day * 86400.0});
        ASSERT_TRUE(write({person(std::to_string(day), "Ada")}).has_value());
        ASSERT_EQ(engine.deleteFiles(at(file)), true);
    }
    auto const copies = Platform::Quarantine::copies(file);
    EXPECT_EQ(copies.size(), 3U);
    EXPECT_EQ(copies.back(), folder / "quarantined-20251122T120000Z-00-Tests.realm");
}

TEST_F(SealedObjectDatabaseTests, aFailedOpeningTakesAwayOnlyTheFileThatFailed) {
    ASSERT_TRUE(write({person("a", "Ada")}).has_value());
    damage();
    ASSERT_FALSE(engine.open(at(file)).has_value());
    // Another process, which saw the same damage, has already begun anew.
    SealedObjectDatabaseEngine other(dataHome.path(), clock);
    ASSERT_FALSE(other.open(at(file)).has_value());
    ASSERT_EQ(other.deleteFiles(at(file)), true);
    ASSERT_TRUE(other.open(at(file)).value()->write(adding({person("b", "Bob")})).has_value());

    EXPECT_EQ(engine.deleteFiles(at(file)), false);
    EXPECT_EQ(people(), std::vector{person("b", "Bob")});
}

TEST_F(SealedObjectDatabaseTests, aHeldLockHindersNoReader) {
    ASSERT_TRUE(write({person("a", "Ada")}).has_value());
    auto const held = DatabaseLock::take(folder / "Tests.realm.lock");
    ASSERT_TRUE(held.has_value());
    EXPECT_EQ(people(), std::vector{person("a", "Ada")});
}

TEST_F(SealedObjectDatabaseTests, aHeldLockIsNoReasonToGiveUpAFile) {
    ASSERT_TRUE(write({person("a", "Ada")}).has_value());
    auto const held = DatabaseLock::take(folder / "Tests.realm.lock");
    auto const written = write({person("b", "Bob")});
    ASSERT_FALSE(written.has_value());
    EXPECT_EQ(written.error().kind, Kind::busy);
    EXPECT_EQ(written.error().localizedDescription,
              "another program keeps the database locked; nothing was written");
    EXPECT_EQ(engine.deleteFiles(at(file)).error().localizedDescription,
              "the database files could not be moved aside: another program keeps the database locked");
    EXPECT_EQ(people(), std::vector{person("a", "Ada")});
}

TEST_F(SealedObjectDatabaseTests, aDatabaseThatCannotBeMadeJustNowOpensAndSaysSo) {
    std::filesystem::create_directory(folder);
    auto held = DatabaseLock::take(folder / "Tests.realm.lock");
    auto const database = engine.open(at(file));
    ASSERT_TRUE(database.has_value());
    EXPECT_EQ((*database)->objects("Person").error().kind, Kind::busy);
    EXPECT_EQ((*database)->object("Person", "a").error().kind, Kind::busy);
    EXPECT_EQ((*database)->write(adding({})).error().kind, Kind::busy);
    held = std::unexpected(std::error_code());
    EXPECT_TRUE(people().empty());
}

TEST_F(SealedObjectDatabaseTests, waitsForTheLock) {
    ASSERT_TRUE(write({person("a", "Ada")}).has_value());
    auto held = DatabaseLock::take(folder / "Tests.realm.lock");
    SealedObjectDatabaseEngine patient(dataHome.path(), clock, 30s);
    auto const database = patient.open(at(file)).value();
    std::thread releasing([&] { held = std::unexpected(std::error_code()); });
    auto const written = database->write(adding({person("b", "Bob")}));
    releasing.join();
    EXPECT_TRUE(written.has_value());
    EXPECT_EQ(people().size(), 2U);
}

TEST_F(SealedObjectDatabaseTests, aLockThatWasMovedAwayIsNoLock) {
    std::filesystem::create_directory(folder);
    auto const first = DatabaseLock::take(folder / "Tests.realm.lock");
    EXPECT_TRUE(first->isStillAt(folder / "Tests.realm.lock"));
    std::filesystem::rename(folder / "Tests.realm.lock", folder / "moved");
    EXPECT_FALSE(first->isStillAt(folder / "Tests.realm.lock"));
    auto const second = DatabaseLock::take(folder / "Tests.realm.lock");
    EXPECT_TRUE(second.has_value());
}

TEST_F(SealedObjectDatabaseTests, tooManyOpenFilesAreNoReasonToGiveUpAFile) {
    ASSERT_TRUE(write({person("a", "Ada")}).has_value());
    // A sanitizer opens a pipe when it meets a class for the first time, and then could not.
    ASSERT_NE(std::error_code(EMFILE, std::generic_category()), std::errc::not_supported);
    {
        Limit const none(RLIMIT_NOFILE, 0);
        auto const database = engine.open(at(file));
        ASSERT_TRUE(database.has_value());
        EXPECT_EQ((*database)->objects("Person").error().localizedDescription,
                  "the system could not carry it out: Too many open files");
    }
    EXPECT_EQ(people(), std::vector{person("a", "Ada")});
}

TEST_F(SealedObjectDatabaseTests, aFullDiskLeavesTheOldContent) {
    std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_TRUE(write({person("a", "Ada")}).has_value());
    for (rlim_t const limit : {0U, 1U, 100U, 4000U}) {
        Limit const full(RLIMIT_FSIZE, limit);
        auto const written = write({person("b", "Bob")});
        ASSERT_FALSE(written.has_value()) << limit;
        EXPECT_EQ(written.error().localizedDescription, "the system could not carry it out: File too large");
    }
    EXPECT_EQ(people(), std::vector{person("a", "Ada")});
    EXPECT_EQ(names(), (std::set<std::string>{"Tests.realm", "Tests.realm.lock"}));
}

TEST_F(SealedObjectDatabaseTests, aFullDiskIsNoFailureToOpen) {
    std::signal(SIGXFSZ, SIG_IGN);
    {
        Limit const full(RLIMIT_FSIZE, 100);
        auto const database = engine.open(at(file));
        ASSERT_TRUE(database.has_value());
        EXPECT_EQ((*database)->write(adding({})).error().localizedDescription,
                  "the system could not carry it out: File too large");
    }
    EXPECT_TRUE(people().empty());
}

TEST_F(SealedObjectDatabaseTests, aReadOnlyFolderCanBeReadFrom) {
    OrdinaryUser const user(dataHome.path());
    ASSERT_TRUE(write({person("a", "Ada")}).has_value());
    ::chmod(folder.c_str(), 0500);
    EXPECT_EQ(people(), std::vector{person("a", "Ada")});
    auto const written = write({person("b", "Bob")});
    ASSERT_FALSE(written.has_value());
    EXPECT_EQ(written.error().kind, Kind::readOnly);
    EXPECT_EQ(written.error().localizedDescription,
              "the database can only be read; nothing was written: Permission denied");
    EXPECT_EQ(engine.deleteFiles(at(file)).error().localizedDescription,
              "the database files could not be moved aside: Permission denied");
    ::chmod(folder.c_str(), 0700);
}

TEST_F(SealedObjectDatabaseTests, aReadOnlyHomeIsNoPlaceForANewDatabase) {
    OrdinaryUser const user(dataHome.path());
    ::chmod(dataHome.path().c_str(), 0500);
    auto const database = engine.open(at(file));
    ASSERT_FALSE(database.has_value());
    EXPECT_EQ(database.error().kind, Kind::unreadable);
    EXPECT_EQ(database.error().localizedDescription,
              "the file or its folder cannot be used: Permission denied");
    EXPECT_EQ(engine.deleteFiles(at(file)), false);
    ::chmod(dataHome.path().c_str(), 0700);
}

TEST_F(SealedObjectDatabaseTests, aFileThatMayNotBeReadDoesNotOpen) {
    OrdinaryUser const user(dataHome.path());
    ASSERT_TRUE(write({person("a", "Ada")}).has_value());
    ::chmod(file.c_str(), 0000);
    auto const database = engine.open(at(file));
    ASSERT_FALSE(database.has_value());
    EXPECT_EQ(database.error().localizedDescription,
              "the file or its folder cannot be used: Permission denied");
}

TEST_F(SealedObjectDatabaseTests, aMigrationThatCannotBeWrittenJustNowGivesNoFileUp) {
    OrdinaryUser const user(dataHome.path());
    ASSERT_TRUE(write({person("a", "Ada")}).has_value());
    ::chmod(folder.c_str(), 0500);
    auto const database = engine.open(at(file, 2));
    ASSERT_TRUE(database.has_value());
    EXPECT_EQ((*database)->objects("Person").error().kind, Kind::readOnly);
    ::chmod(folder.c_str(), 0700);
    EXPECT_EQ(people(), std::vector{person("a", "Ada")});
}

TEST_F(SealedObjectDatabaseTests, readingOnlyMakesAndMigratesNothing) {
    auto reading = at(file);
    reading.readOnly = true;
    EXPECT_EQ(engine.open(reading).error().kind, Kind::unreadable);
    EXPECT_FALSE(std::filesystem::exists(folder));
    ASSERT_TRUE(write({person("a", "Ada")}).has_value());
    reading.schemaVersion = 2;
    EXPECT_EQ(engine.open(reading).error().kind, Kind::migrationFailed);
}
