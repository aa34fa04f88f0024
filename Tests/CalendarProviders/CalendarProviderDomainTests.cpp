#include "CalendarProviders/CalendarProviderDomain.h"
#include "Tests/CalendarProviders/ProviderFixtures.h"

#include <gtest/gtest.h>

#include <array>

namespace CalendarProviders {
namespace {

using namespace Fixtures;

struct BlankText {
    char const* name;
    char const* text;
};

constexpr auto blankTexts = std::to_array<BlankText>({
    {"nothing", ""},
    {"blanks", "   "},
    {"TAB and line breaks", "\t\r\n"},
    {"a no-break space", "\u00a0"},
    {"an ideographic space", "\u3000"},
    {"a zero-width space", "\u200b"},
    {"a line separator", "\u2028"},
});

TEST(CalendarProviderDomainTests, aProviderWithIdAndEmailIsValid) {
    expectPlainSuccess(CalendarProviderDomain::validate(provider("a")));
}

TEST(CalendarProviderDomainTests, aBlankIdIsRefused) {
    for (auto const& blank : blankTexts) {
        SCOPED_TRACE(blank.name);
        expectFailure(CalendarProviderDomain::validate(provider(blank.text)),
                      {.domain = "The provider id cannot be empty"});
    }
}

TEST(CalendarProviderDomainTests, aBlankEmailIsRefused) {
    for (auto const& blank : blankTexts) {
        SCOPED_TRACE(blank.name);
        auto candidate = provider("a");
        candidate.capEmail = blank.text;
        expectFailure(CalendarProviderDomain::validate(candidate),
                      {.domain = "The provider email cannot be empty"});
    }
}

TEST(CalendarProviderDomainTests, theIdIsExaminedBeforeTheEmail) {
    auto candidate = provider("   ");
    candidate.capEmail = "";
    expectFailure(CalendarProviderDomain::validate(candidate), {.domain = "The provider id cannot be empty"});
}

TEST(CalendarProviderDomainTests, nameAndDescriptionAreNotExamined) {
    auto candidate = provider("a");
    candidate.capDisplayName = "";
    candidate.capDescription = "";
    candidate.capEmail = "no address at all";
    expectPlainSuccess(CalendarProviderDomain::validate(candidate));
}

TEST(CalendarProviderDomainTests, aByteOrderMarkIsNotBlank) {
    expectPlainSuccess(CalendarProviderDomain::validate(provider("\ufeff")));
}

TEST(CalendarProviderDomainTests, theFirstOfAKindCanBeRegistered) {
    expectPlainSuccess(CalendarProviderDomain::canRegister(provider("a"), {}));
}

TEST(CalendarProviderDomainTests, aSecondOfTheKindIsRefusedWhateverItsId) {
    expectFailure(CalendarProviderDomain::canRegister(provider("b"), {provider("a")}),
                  {.domain = "A provider of type eventKit is already registered"});
    expectFailure(CalendarProviderDomain::canRegister(provider("a"), {provider("a")}),
                  {.domain = "A provider of type eventKit is already registered"});
}

TEST(CalendarProviderDomainTests, aDisabledOneCountsAsRegistered) {
    expectFailure(CalendarProviderDomain::canRegister(provider("b"), {provider("a", false)}),
                  {.domain = "A provider of type eventKit is already registered"});
}

} // namespace
} // namespace CalendarProviders
