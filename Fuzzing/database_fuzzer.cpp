// Any bytes are a database file, or what was sealed in one: opening it ends with a database or a refusal.

#include "Platform/ObjectDatabase/MemoryDatabase.h"
#include "Platform/ObjectDatabase/Seal.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <stdexcept>

namespace {

namespace Seal = Platform::Seal;
using Platform::MemoryDatabase;

void require(bool holds, char const* what) {
    if (holds) return;
    std::fprintf(stderr, "not so: %s\n", what);
    std::abort();
}

Foundation::SecretBytes const& key() {
    static auto const made = Foundation::SecretBytes::filledBy(Seal::keySize, [](auto) {});
    return made;
}

void readImage(std::span<std::byte const> image) {
    try {
        MemoryDatabase database(image);
        // An image whose tables contradict each other may answer oddly: only that it answers is promised.
        static_cast<void>(database.objects("CalendarProviderRealmModel"));
        database.begin();
        database.add({.typeName = "CalendarProviderRealmModel",
                      .primaryKey = "one",
                      .properties = {{.name = "capIsEnabled", .value = false}}});
        database.remove("CalendarProviderRealmModel", "two");
        database.commit();
        require(!database.image().empty(), "what was changed has an image");
    } catch (std::runtime_error const&) {
        // Refused; the bytes are no image, or a damaged one.
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0 || size > 65536) return 0;
    auto const bytes = std::as_bytes(std::span(data, size)).subspan(1);
    // The first byte chooses: a file as a stranger may leave it, or an image that someone with the key
    // sealed.
    if (data[0] % 2 == 0) {
        auto const image = Seal::open(bytes, key());
        if (image) readImage(*image);
    } else {
        auto const image = Seal::open(Seal::seal(bytes, key(), Seal::Freshness{}), key());
        require(image.has_value() && std::ranges::equal(*image, bytes), "what was sealed can be opened");
        readImage(*image);
    }
    return 0;
}
