#include "DoctorReport.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace JSON = Foundation::JSON;

namespace {

std::string textIn(JSON::Value const& object, std::string_view name) {
    auto const* member = object.member(name);
    return member == nullptr ? "" : JSON::text(*member).value_or("");
}

} // namespace

DoctorReport DoctorReport::of(PrivateHome const& home) {
    auto const before = home.snapshot();
    auto const result = home.quillora({"doctor", "--json"});
    EXPECT_EQ(home.snapshot(), before);
    return from(result);
}

DoctorReport DoctorReport::from(ProgramResult const& result) {
    DoctorReport report;
    auto const document = JSON::parse(result.output);
    EXPECT_TRUE(document.has_value()) << result.output << result.errors;
    if (!document) return report;
    EXPECT_EQ(JSON::integer(*document->member("version")), 1);
    for (auto const& check : std::get<JSON::Array>(document->member("checks")->storage)) {
        report.checks.push_back({.check = textIn(check, "check"),
                                 .health = textIn(check, "health"),
                                 .text = textIn(check, "text"),
                                 .mend = textIn(check, "mend")});
    }
    auto const count = std::ranges::count(report.checks, "broken", &Check::health);
    EXPECT_EQ(result.exitCode, count == 0 ? 0 : 1);
    EXPECT_EQ(JSON::boolean(*document->member("healthy")), count == 0);
    EXPECT_EQ(result.errors, count == 0 ? ""
                                        : "quillora: broken: " + std::to_string(count) +
                                              "; the line below each names what mends it\n");
    for (auto const& check : report.checks) {
        EXPECT_NE(check.text, "") << check.check;
        if (check.health == "broken") {
            EXPECT_NE(check.mend, "") << check.check;
        }
    }
    return report;
}

DoctorReport::Check DoctorReport::worst(std::string const& name) const {
    for (auto const* health : {"broken", "note", "works"})
        for (auto const& check : checks)
            if (check.check == name && check.health == health) return check;
    return {};
}

std::vector<std::string> DoctorReport::broken() const {
    std::vector<std::string> names;
    for (auto const& check : checks)
        if (check.health == "broken" && (names.empty() || names.back() != check.check))
            names.push_back(check.check);
    return names;
}
