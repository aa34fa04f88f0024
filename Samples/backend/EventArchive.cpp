#include "Samples/backend/EventArchive.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace Backend {
namespace {

namespace JSON = Foundation::JSON;

bool write(std::filesystem::path const& file, std::string const& content) {
    auto aside = file;
    aside += ".tmp";
    {
        std::ofstream stream(aside, std::ios::binary | std::ios::trunc);
        stream << content;
        stream.flush();
        if (!stream) return false;
    }
    std::error_code failed;
    std::filesystem::rename(aside, file, failed);
    return !failed;
}

std::optional<StoredEvent> eventFrom(JSON::Value const& value) {
    auto const* record = std::get_if<JSON::Object>(&value.storage);
    auto const* identifier = value.member("evtId");
    if (record == nullptr || identifier == nullptr) return std::nullopt;
    auto text = JSON::text(*identifier);
    if (!text) return std::nullopt;
    return StoredEvent{.identifier = std::move(*text), .record = *record};
}

} // namespace

std::expected<EventArchive, std::string> EventArchive::open(std::optional<std::filesystem::path> file) {
    EventArchive archive(file);
    std::error_code unreadable;
    if (!file || !std::filesystem::exists(*file, unreadable)) return archive;

    std::ifstream stream(*file, std::ios::binary);
    std::string const content{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    auto const document = JSON::parse(content);
    auto const* list = document ? std::get_if<JSON::Array>(&document->storage) : nullptr;
    if (list == nullptr)
        return std::unexpected(file->string() + " is not a JSON list of events; it stays as it is");
    for (auto const& element : *list) {
        auto event = eventFrom(element);
        if (!event)
            return std::unexpected(file->string() + " holds an event without evtId; it stays as it is");
        archive.stored.push_back(std::move(*event));
    }
    return archive;
}

StoredEvent const* EventArchive::find(std::string_view identifier) const {
    auto const found = std::ranges::find(stored, identifier, &StoredEvent::identifier);
    return found == stored.end() ? nullptr : &*found;
}

bool EventArchive::put(StoredEvent event) {
    auto next = stored;
    auto const found = std::ranges::find(next, event.identifier, &StoredEvent::identifier);
    if (found == next.end()) {
        next.push_back(std::move(event));
    } else {
        *found = std::move(event);
    }
    return replaceWith(std::move(next));
}

bool EventArchive::remove(std::string_view identifier) {
    auto next = stored;
    std::erase_if(next, [&](StoredEvent const& event) { return event.identifier == identifier; });
    return replaceWith(std::move(next));
}

bool EventArchive::replaceWith(std::vector<StoredEvent> next) {
    if (file) {
        JSON::Array list;
        for (auto const& event : next)
            list.emplace_back(event.record);
        auto const content = JSON::serialize(list);
        if (!content || !write(*file, *content)) return false;
    }
    stored = std::move(next);
    return true;
}

} // namespace Backend
