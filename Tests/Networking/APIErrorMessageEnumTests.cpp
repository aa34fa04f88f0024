#include "Networking/APIErrorMessageEnum.h"

#include <gtest/gtest.h>

namespace {

using Networking::APIError;

struct Row {
    std::string name;
    APIError error;
    std::string text;
};

class APIErrorMessageEnumTests : public testing::TestWithParam<Row> {};

TEST_P(APIErrorMessageEnumTests, describesTheErrorByteForByte) {
    EXPECT_EQ(Networking::APIErrorMessageEnum::describe(GetParam().error, "evento no encontrado"),
              GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Cases, APIErrorMessageEnumTests,
                         testing::Values(Row{"forbidden", APIError::forbidden("no"), "no"},
                                         Row{"badRequest", APIError::badRequest("URL inválida"),
                                             "URL inválida"},
                                         Row{"transport", APIError::transport("cancelled"), "cancelled"},
                                         Row{"decoding", APIError::decoding("x"), "x"},
                                         Row{"server", APIError::server(500), "error del servidor (500)"},
                                         Row{"unauthorized", APIError::unauthorized(), "no autorizado"},
                                         Row{"notFound", APIError::notFound(), "evento no encontrado"}),
                         [](auto const& row) { return row.param.name; });

TEST(APIErrorTests, errorsAreEqualOnlyWithTheSameCaseAndPayload) {
    EXPECT_EQ(APIError::forbidden("a"), APIError::forbidden("a"));
    EXPECT_NE(APIError::forbidden("a"), APIError::forbidden("b"));
    EXPECT_NE(APIError::forbidden("a"), APIError::badRequest("a"));
    EXPECT_NE(APIError::server(500), APIError::server(302));
}

} // namespace
