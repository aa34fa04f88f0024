#include "Foundation/Base64.h"

#include <gtest/gtest.h>

#include <string>

namespace Foundation {
namespace {

TEST(Base64Tests, theExamplesOfTheStandardAreWrittenAndRead) {
    struct Row {
        char const* bytes;
        char const* text;
    };
    for (auto const& row :
         {Row{.bytes = "", .text = ""}, Row{.bytes = "f", .text = "Zg=="}, Row{.bytes = "fo", .text = "Zm8="},
          Row{.bytes = "foo", .text = "Zm9v"}, Row{.bytes = "foobar", .text = "Zm9vYmFy"}}) {
        EXPECT_EQ(base64(row.bytes), row.text);
        EXPECT_EQ(bytesFromBase64(row.text), row.bytes);
    }
}

TEST(Base64Tests, everyByteComesBack) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    EXPECT_EQ(bytesFromBase64(base64(bytes)), bytes);
}

TEST(Base64Tests, whatIsNotExactlyBase64IsNothing) {
    for (auto const* text : {"Zg", "Zg=", "Z", "Zm9v\n", " Zm9v", "Zm9v!", "Zh==", "Zm-_"})
        EXPECT_EQ(bytesFromBase64(text), std::nullopt) << text;
    EXPECT_EQ(bytesFromBase64(std::string("Zm9v\0", 5)), std::nullopt);
}

} // namespace
} // namespace Foundation
