#include "Platform/Clock/FixedClock.h"
#include "Platform/ObjectDatabase/InMemoryObjectDatabaseEngine.h"
#include "Platform/ObjectDatabase/SealedObjectDatabaseEngine.h"
#include "Tests/ObjectDatabase/DatabaseFixtures.h"
#include "Tests/Platform/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <ostream>
#include <stdexcept>

namespace {

using namespace DatabaseFixtures;
using Platform::ObjectDatabase;
using Platform::ObjectDatabaseConfiguration;
using Platform::ObjectDatabaseEngine;
using Platform::ObjectDatabaseError;
using Platform::ObjectTransaction;
using Platform::PersistedObject;
using Kind = ObjectDatabaseError::Kind;

/// One engine, and the place for its databases.
class World {
public:
    virtual ~World() = default;
    virtual ObjectDatabaseEngine& engine() = 0;
    virtual std::filesystem::path place() = 0;
};

class FakeWorld final : public World {
public:
    ObjectDatabaseEngine& engine() override { return fake; }
    std::filesystem::path place() override { return "/data/Quillora/Tests.realm"; }

private:
    Platform::InMemoryObjectDatabaseEngine fake;
};

class SealedWorld final : public World {
public:
    ObjectDatabaseEngine& engine() override { return sealed; }
    std::filesystem::path place() override { return dataHome.path() / "Quillora" / "Tests.realm"; }

private:
    TemporaryFolder dataHome;
    Platform::SealedObjectDatabaseEngine sealed{
        dataHome.path(),
        std::make_shared<Platform::FixedClock>(Foundation::Date{.secondsSince1970 = 1763726400})};
};

struct Implementation {
    std::string name;
    std::function<std::unique_ptr<World>()> make;
};

void PrintTo(Implementation const& implementation, std::ostream* out) {
    *out << implementation.name;
}

class ObjectDatabaseContractTests : public testing::TestWithParam<Implementation> {
protected:
    std::unique_ptr<World> world = GetParam().make();
    ObjectDatabaseEngine& engine = world->engine();
    ObjectDatabaseConfiguration configuration = at(world->place());

    std::shared_ptr<ObjectDatabase> opened() { return opened(configuration); }
    std::shared_ptr<ObjectDatabase> opened(ObjectDatabaseConfiguration const& chosen) {
        auto database = engine.open(chosen);
        if (!database) throw std::runtime_error(database.error().localizedDescription);
        return *database;
    }
    ObjectDatabaseError refusal(ObjectDatabaseConfiguration const& chosen) {
        auto const database = engine.open(chosen);
        if (database) throw std::runtime_error("the database opened");
        return database.error();
    }
    std::vector<PersistedObject> people() { return opened()->objects("Person").value(); }
};

} // namespace

TEST_P(ObjectDatabaseContractTests, aNewDatabaseIsEmpty) {
    auto const database = opened();
    EXPECT_TRUE(database->objects("Person").value().empty());
    EXPECT_FALSE(database->object("Person", "a").value().has_value());
}

TEST_P(ObjectDatabaseContractTests, keepsWhatWasWritten) {
    ASSERT_TRUE(opened()->write(adding({person("a", "Ada", false)})).has_value());
    EXPECT_EQ(opened()->object("Person", "a").value(), person("a", "Ada", false));
}

TEST_P(ObjectDatabaseContractTests, anOpenDatabaseSeesItsOwnWriting) {
    auto const database = opened();
    ASSERT_TRUE(database->write(adding({person("a", "Ada")})).has_value());
    EXPECT_EQ(database->objects("Person").value(), std::vector{person("a", "Ada")});
}

TEST_P(ObjectDatabaseContractTests, keepsEveryTextAsItIs) {
    std::vector<PersistedObject> const texts{
        person("", ""),
        person("nul", std::string("a\0b", 3)),
        person("accents", "Español, 日本語, 👩‍👩‍👧"),
        person("quotes", R"('; DROP TABLE object; --")"),
        person("invalid", "\xff\xfe"),
        person(" blank ", "\n\t"),
    };
    ASSERT_TRUE(opened()->write(adding(texts)).has_value());
    EXPECT_EQ(people(), texts);
}

TEST_P(ObjectDatabaseContractTests, keepsEveryInstantToTheBit) {
    std::vector<PersistedObject> const instants{
        person("a", "", true, 0.1 + 0.2),
        person("b", "", true, -62135769600.0),
        person("c", "", true, std::numeric_limits<double>::infinity()),
        person("d", "", true, std::numeric_limits<double>::denorm_min()),
    };
    ASSERT_TRUE(opened()->write(adding(instants)).has_value());
    EXPECT_EQ(people(), instants);
    ASSERT_TRUE(opened()->write(adding({person("e", "", true, std::nan(""))})).has_value());
    auto const kept = opened()->object("Person", "e").value();
    EXPECT_TRUE(std::isnan(kept->property<Foundation::Date>("registeredAt")->secondsSince1970));
}

TEST_P(ObjectDatabaseContractTests, listsInTheOrderOfInsertion) {
    ASSERT_TRUE(opened()->write(adding({person("z", "first"), person("a", "second")})).has_value());
    ASSERT_TRUE(opened()->write(adding({person("m", "third")})).has_value());
    ASSERT_TRUE(opened()->write(adding({person("z", "changed")})).has_value());
    EXPECT_EQ(people(), (std::vector{person("z", "changed"), person("a", "second"), person("m", "third")}));
}

TEST_P(ObjectDatabaseContractTests, whatIsAddedAgainAfterDeletionComesLast) {
    ASSERT_TRUE(opened()->write(adding({person("z", "first"), person("a", "second")})).has_value());
    ASSERT_TRUE(opened()
                    ->write([](ObjectTransaction& transaction) {
                        transaction.remove("Person", "z");
                        transaction.add(person("z", "again"));
                    })
                    .has_value());
    EXPECT_EQ(people(), (std::vector{person("a", "second"), person("z", "again")}));
}

TEST_P(ObjectDatabaseContractTests, anUpdateLeavesThePropertiesThatItDoesNotName) {
    ASSERT_TRUE(opened()->write(adding({person("a", "Ada")})).has_value());
    PersistedObject const partial{.typeName = "Person",
                                  .primaryKey = "a",
                                  .properties = {{.name = "isEnabled", .value = false},
                                                 {.name = "nickname", .value = std::string("The Countess")}}};
    ASSERT_TRUE(opened()->write(adding({partial})).has_value());
    auto expected = person("a", "Ada", false);
    expected.properties.push_back({.name = "nickname", .value = std::string("The Countess")});
    EXPECT_EQ(people(), std::vector{expected});
}

TEST_P(ObjectDatabaseContractTests, aPropertyMayChangeItsType) {
    ASSERT_TRUE(opened()->write(adding({person("a", "Ada")})).has_value());
    PersistedObject const changed{
        .typeName = "Person", .primaryKey = "a", .properties = {{.name = "name", .value = true}}};
    ASSERT_TRUE(opened()->write(adding({changed})).has_value());
    auto const kept = opened()->object("Person", "a").value();
    EXPECT_EQ(kept->property<std::string>("name"), nullptr);
    ASSERT_NE(kept->property<bool>("name"), nullptr);
    EXPECT_TRUE(*kept->property<bool>("name"));
}

TEST_P(ObjectDatabaseContractTests, keepsAnObjectWithoutProperties) {
    PersistedObject const bare{.typeName = "Mark", .primaryKey = "x", .properties = {}};
    ASSERT_TRUE(opened()->write(adding({bare})).has_value());
    EXPECT_EQ(opened()->objects("Mark").value(), std::vector{bare});
}

TEST_P(ObjectDatabaseContractTests, tellsObjectsApartByTypeToo) {
    auto pet = person("a", "Rex");
    pet.typeName = "Pet";
    ASSERT_TRUE(opened()->write(adding({person("a", "Ada"), pet})).has_value());
    ASSERT_TRUE(
        opened()->write([](ObjectTransaction& transaction) { transaction.remove("Pet", "a"); }).has_value());
    EXPECT_EQ(people(), std::vector{person("a", "Ada")});
    EXPECT_TRUE(opened()->objects("Pet").value().empty());
}

TEST_P(ObjectDatabaseContractTests, removingWhatIsNotThereIsNoError) {
    EXPECT_TRUE(opened()
                    ->write([](ObjectTransaction& transaction) { transaction.remove("Person", "a"); })
                    .has_value());
}

TEST_P(ObjectDatabaseContractTests, aTransactionSeesItsOwnChanges) {
    std::vector<PersistedObject> seen;
    ASSERT_TRUE(opened()
                    ->write([&](ObjectTransaction& transaction) {
                        transaction.add(person("a", "Ada"));
                        seen = transaction.objects("Person");
                    })
                    .has_value());
    EXPECT_EQ(seen, std::vector{person("a", "Ada")});
}

TEST_P(ObjectDatabaseContractTests, aTransactionThatThrowsChangesNothing) {
    ASSERT_TRUE(opened()->write(adding({person("a", "Ada")})).has_value());
    auto const database = opened();
    auto const outcome = database->write([](ObjectTransaction& transaction) {
        transaction.remove("Person", "a");
        transaction.add(person("b", "Bob"));
        throw std::runtime_error("no");
    });
    ASSERT_FALSE(outcome.has_value());
    EXPECT_EQ(outcome.error().kind, Kind::transactionRefused);
    EXPECT_EQ(outcome.error().localizedDescription, "the change was given up; nothing was written");
    EXPECT_EQ(database->objects("Person").value(), std::vector{person("a", "Ada")});
    EXPECT_EQ(people(), std::vector{person("a", "Ada")});
}

TEST_P(ObjectDatabaseContractTests, writesOnTopOfWhatOthersWrote) {
    auto const first = opened();
    auto const second = opened();
    ASSERT_TRUE(first->write(adding({person("a", "Ada")})).has_value());
    ASSERT_TRUE(second->write(adding({person("b", "Bob")})).has_value());
    EXPECT_EQ(people(), (std::vector{person("a", "Ada"), person("b", "Bob")}));
}

TEST_P(ObjectDatabaseContractTests, withoutALocationItDoesNotOpen) {
    auto const failure = refusal(at(std::nullopt));
    EXPECT_EQ(failure.kind, Kind::noLocation);
    EXPECT_EQ(failure.localizedDescription, "no location");
}

TEST_P(ObjectDatabaseContractTests, aKeyOfAnotherLengthDoesNotOpen) {
    for (std::size_t const size : {0U, 32U, 63U, 65U}) {
        configuration.encryptionKey = key(1, size);
        auto const failure = refusal(configuration);
        EXPECT_EQ(failure.kind, Kind::keyLength) << size;
        EXPECT_EQ(failure.localizedDescription, "the encryption key is not 64 bytes long");
    }
}

TEST_P(ObjectDatabaseContractTests, anotherKeyDoesNotOpenAndChangesNothing) {
    ASSERT_TRUE(opened()->write(adding({person("a", "Ada")})).has_value());
    auto other = configuration;
    other.encryptionKey = key(2);
    auto const failure = refusal(other);
    EXPECT_EQ(failure.kind, Kind::wrongKeyOrDamaged);
    EXPECT_EQ(failure.localizedDescription, "the file is damaged or was written with another key");
    EXPECT_EQ(people(), std::vector{person("a", "Ada")});
}

TEST_P(ObjectDatabaseContractTests, aLaterSchemaDoesNotOpenAndChangesNothing) {
    ASSERT_TRUE(opened(at(world->place(), 5))->write(adding({person("a", "Ada")})).has_value());
    auto const failure = refusal(at(world->place(), 4));
    EXPECT_EQ(failure.kind, Kind::schemaIsNewer);
    EXPECT_EQ(failure.localizedDescription, "the file was written by a later version of this program");
    EXPECT_EQ(opened(at(world->place(), 5))->objects("Person").value(), std::vector{person("a", "Ada")});
}

TEST_P(ObjectDatabaseContractTests, anEarlierSchemaIsMigratedOnce) {
    ASSERT_TRUE(opened()->write(adding({person("a", "Ada")})).has_value());
    std::vector<std::uint64_t> oldVersions;
    auto later = at(world->place(), 18446744073709551615U);
    later.migrationBlock = [&](ObjectTransaction& migration, std::uint64_t oldVersion) {
        oldVersions.push_back(oldVersion);
        for (auto const& object : migration.objects("Person")) {
            migration.remove("Person", object.primaryKey);
            migration.add(person("migrated " + object.primaryKey, "Ada"));
        }
    };
    EXPECT_EQ(opened(later)->objects("Person").value(), std::vector{person("migrated a", "Ada")});
    EXPECT_EQ(opened(later)->objects("Person").value(), std::vector{person("migrated a", "Ada")});
    EXPECT_EQ(oldVersions, std::vector<std::uint64_t>{1});
    EXPECT_EQ(refusal(configuration).kind, Kind::schemaIsNewer);
}

TEST_P(ObjectDatabaseContractTests, aMigrationThatThrowsDoesNotOpenAndChangesNothing) {
    ASSERT_TRUE(opened()->write(adding({person("a", "Ada")})).has_value());
    auto later = at(world->place(), 2);
    later.migrationBlock = [](ObjectTransaction& migration, std::uint64_t) {
        migration.remove("Person", "a");
        throw std::runtime_error("no");
    };
    auto const failure = refusal(later);
    EXPECT_EQ(failure.kind, Kind::migrationFailed);
    EXPECT_EQ(failure.localizedDescription, "the file's schema could not be brought up to date");
    EXPECT_EQ(people(), std::vector{person("a", "Ada")});
}

TEST_P(ObjectDatabaseContractTests, openedForReadingItRefusesToWrite) {
    ASSERT_TRUE(opened()->write(adding({person("a", "Ada")})).has_value());
    configuration.readOnly = true;
    auto const outcome = opened()->write(adding({person("b", "Bob")}));
    ASSERT_FALSE(outcome.has_value());
    EXPECT_EQ(outcome.error().kind, Kind::readOnly);
    EXPECT_EQ(outcome.error().localizedDescription, "the database can only be read; nothing was written");
    EXPECT_EQ(people(), std::vector{person("a", "Ada")});
}

TEST_P(ObjectDatabaseContractTests, afterDeletionItIsNewAgain) {
    ASSERT_TRUE(opened()->write(adding({person("a", "Ada")})).has_value());
    EXPECT_EQ(engine.deleteFiles(configuration), true);
    EXPECT_EQ(engine.deleteFiles(configuration), false);
    auto other = configuration;
    other.encryptionKey = key(2);
    EXPECT_TRUE(opened(other)->objects("Person").value().empty());
}

TEST_P(ObjectDatabaseContractTests, namesADefaultFileWhoseFolderIsThePlace) {
    auto const file = engine.defaultFileURL();
    ASSERT_TRUE(file.has_value());
    EXPECT_EQ(file->filename(), "default.realm");
    EXPECT_EQ(file->parent_path(), world->place().parent_path());
}

INSTANTIATE_TEST_SUITE_P(
    Every, ObjectDatabaseContractTests,
    testing::Values(Implementation{.name = "Fake", .make = [] { return std::make_unique<FakeWorld>(); }},
                    Implementation{.name = "Sealed", .make = [] { return std::make_unique<SealedWorld>(); }}),
    [](auto const& implementation) { return implementation.param.name; });
