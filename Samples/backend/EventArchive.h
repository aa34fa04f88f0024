#pragma once

#include "Foundation/JSON.h"

#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Backend {

/// One stored event: its identifier and the record that clients see, keys in order.
struct StoredEvent {
    std::string identifier;
    Foundation::JSON::Object record;
};

/// The events of the service, kept in a JSON file that is rewritten whole at each change. Without a file
/// they live as long as this object.
class EventArchive {
public:
    /// Reads the file; one that does not exist is an empty archive. The error says what is wrong with it.
    static std::expected<EventArchive, std::string> open(std::optional<std::filesystem::path> file);

    [[nodiscard]] std::vector<StoredEvent> const& events() const { return stored; }
    [[nodiscard]] StoredEvent const* find(std::string_view identifier) const;

    /// Adds or replaces. False when the file could not be written: then nothing has changed.
    bool put(StoredEvent event);

    /// False as above. An unknown identifier is no error.
    bool remove(std::string_view identifier);

private:
    explicit EventArchive(std::optional<std::filesystem::path> file) : file(std::move(file)) {}

    bool replaceWith(std::vector<StoredEvent> next);

    std::optional<std::filesystem::path> file;
    std::vector<StoredEvent> stored;
};

} // namespace Backend
