#include "Meetings/Alarms/AlarmMessageApplication.h"
#include "Meetings/Alarms/AlarmMessageDomain.h"
#include "Meetings/Alarms/AlarmMessageDomainError.h"
#include "Meetings/Alarms/AlarmMessageTemplateError.h"
#include "Meetings/Alarms/LocalAlarmMessageTemplateRepositoryImpl.h"

#include "Platform/Defaults/InMemoryUserDefaults.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace Meetings {
namespace {

constexpr char const* key = "Meetings.AlarmMessageTemplateDatabase.template";

template <typename Error, typename Action>
Error errorOf(Action const& action) {
    try {
        action();
    } catch (Error const& error) {
        return error;
    }
    throw std::logic_error("nothing was thrown");
}

TEST(AlarmMessageDomainTests, anEmptyTemplateAndOneWithThePlaceholderAreValid) {
    for (auto const* text : {"", "{event}", "Ahora: {event}.", "{event} and {event}", "{{event}}"})
        EXPECT_NO_THROW(AlarmMessageDomain::validate(text)) << text;
}

TEST(AlarmMessageDomainTests, aTemplateWithoutThePlaceholderIsRefused) {
    AlarmMessageDomainError const refusal(AlarmMessageDomainError::Case::missingEventPlaceholder);
    for (auto const* text : {" ", "Now", "{Event}", "{ event }", "event", "{event", "{}"}) {
        EXPECT_EQ(errorOf<AlarmMessageDomainError>([&] { AlarmMessageDomain::validate(text); }), refusal)
            << text;
    }
    EXPECT_STREQ(refusal.what(), "The message does not say where the meet's name belongs. Nothing was "
                                 "stored; write {event} in that place.");
}

TEST(AlarmMessageDomainTests, everyPlaceholderIsReplacedLiterally) {
    struct Row {
        char const* text;
        char const* name;
        char const* rendered;
    };
    for (auto const& row : {
             Row{.text = "Ahora {event}, ¡vamos!",
                 .name = "Team sync",
                 .rendered = "Ahora Team sync, ¡vamos!"},
             Row{.text = "{event}{event}", .name = "A", .rendered = "AA"},
             Row{.text = "{Event} {event}", .name = "A", .rendered = "{Event} A"},
             Row{.text = "{{event}}", .name = "A", .rendered = "{A}"},
             Row{.text = "[{event}]", .name = "", .rendered = "[]"},
             Row{.text = "<{event}>", .name = "{event}", .rendered = "<{event}>"},
             Row{.text = "{event}", .name = "a$1\\b", .rendered = "a$1\\b"},
             Row{.text = "none", .name = "A", .rendered = "none"},
             Row{.text = "", .name = "A", .rendered = ""},
         }) {
        EXPECT_EQ(AlarmMessageDomain::render(row.text, row.name), row.rendered);
    }
}

TEST(AlarmMessageTemplateEntityTests, isOneTextThatIsEmptyAtFirst) {
    EXPECT_EQ(AlarmMessageTemplateEntity{}.amtText, "");
    EXPECT_EQ(AlarmMessageTemplateEntity{.amtText = "a"}, AlarmMessageTemplateEntity{.amtText = "a"});
    EXPECT_NE(AlarmMessageTemplateEntity{.amtText = "a"}, AlarmMessageTemplateEntity{.amtText = "b"});
}

class AlarmMessageTests : public testing::Test {
protected:
    std::shared_ptr<Platform::InMemoryUserDefaults> defaults =
        std::make_shared<Platform::InMemoryUserDefaults>();
    AlarmMessageTemplateDatabase database{defaults};
    std::shared_ptr<LocalAlarmMessageTemplateRepositoryImpl> repository =
        std::make_shared<LocalAlarmMessageTemplateRepositoryImpl>(database);
    AlarmMessageApplication application{repository};
};

TEST_F(AlarmMessageTests, withNothingStoredTheTemplateIsEmpty) {
    EXPECT_EQ(database.get(), AlarmMessageTemplateEntity{.amtText = ""});
    EXPECT_EQ(repository->get(), AlarmMessageTemplateEntity{.amtText = ""});
    EXPECT_EQ(application.getTemplate(), "");
}

TEST_F(AlarmMessageTests, theTemplateIsStoredAsJSONData) {
    struct Row {
        char const* text;
        char const* document;
    };
    for (auto const& row : {Row{.text = "", .document = R"({"amtText":""})"},
                            Row{.text = "a/\"{event}\"\n", .document = R"({"amtText":"a\/\"{event}\"\n"})"},
                            Row{.text = "¡{event}!", .document = R"({"amtText":"¡{event}!"})"}}) {
        repository->save({.amtText = row.text});
        EXPECT_EQ(defaults->data(key), row.document);
        EXPECT_EQ(repository->get().amtText, row.text);
    }
}

TEST_F(AlarmMessageTests, whatIsNoTemplateIsADecodingErrorAndReadsAsEmptyInTheUseCase) {
    for (auto const* document : {"", "{", "[]", "\"a\"", "{}", R"({"amtText":null})", R"({"amtText":3})",
                                 R"({"AmtText":"a"})", "{\"amtText\":\"\xFF\"}"}) {
        ASSERT_EQ(defaults->setData(key, document), std::error_code());
        auto const error = errorOf<AlarmMessageTemplateError>([&] { static_cast<void>(repository->get()); });
        EXPECT_EQ(error.code(), AlarmMessageTemplateError::Case::decodingFailed) << document;
        EXPECT_EQ(application.getTemplate(), "") << document;
        EXPECT_EQ(application.renderedText("Team sync", "usual"), "usual") << document;
    }
}

TEST_F(AlarmMessageTests, aValueOfAnotherTypeIsNoTemplate) {
    ASSERT_EQ(defaults->setString(key, R"({"amtText":"a {event}"})"), std::error_code());
    EXPECT_EQ(database.get(), AlarmMessageTemplateEntity{.amtText = ""});
}

TEST_F(AlarmMessageTests, aTextThatIsNotUTF8IsAnEncodingErrorAndTheFormerStands) {
    application.saveTemplate("Now {event}");
    auto const error = errorOf<AlarmMessageTemplateError>([&] { application.saveTemplate("{event}\xFF"); });
    EXPECT_EQ(error, AlarmMessageTemplateError(AlarmMessageTemplateError::Case::encodingFailed, ""));
    EXPECT_STREQ(error.what(), "The message is not valid UTF-8. Nothing was stored; write it anew.");
    EXPECT_EQ(application.getTemplate(), "Now {event}");
}

TEST_F(AlarmMessageTests, settingsThatCannotBeWrittenAreTold) {
    defaults->failsAfter(0);
    auto const error = errorOf<AlarmMessageTemplateError>([&] { application.saveTemplate("{event}"); });
    EXPECT_EQ(error.code(), AlarmMessageTemplateError::Case::notStored);
    EXPECT_STREQ(error.what(), "The settings could not be written (No space left on device). The former "
                               "message stands.");
}

TEST_F(AlarmMessageTests, theSavedTemplateAnnouncesTheMeet) {
    application.saveTemplate("Ya empieza {event}, ¡corre!");
    EXPECT_EQ(application.getTemplate(), "Ya empieza {event}, ¡corre!");
    EXPECT_EQ(application.renderedText("Team sync", "usual"), "Ya empieza Team sync, ¡corre!");
}

TEST_F(AlarmMessageTests, aRefusedTemplateIsNotWritten) {
    application.saveTemplate("Now {event}");
    EXPECT_EQ(errorOf<AlarmMessageDomainError>([&] { application.saveTemplate("Now"); }).code(),
              AlarmMessageDomainError::Case::missingEventPlaceholder);
    EXPECT_EQ(application.getTemplate(), "Now {event}");
}

TEST_F(AlarmMessageTests, anEmptyTemplateIsTakenAndMeansTheUsualSentence) {
    application.saveTemplate("Now {event}");
    application.saveTemplate("");
    EXPECT_EQ(defaults->data(key), R"({"amtText":""})");
    EXPECT_EQ(application.renderedText("Team sync", "You have a Team sync."), "You have a Team sync.");
}

} // namespace
} // namespace Meetings
