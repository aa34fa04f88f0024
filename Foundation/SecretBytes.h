#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>

namespace Foundation {

/// Bytes that must not leak: held in pages of their own that no core dump contains and, as far as the system
/// allows, no swap either, and wiped when the last copy goes. Unchangeable; copies share the same pages.
class SecretBytes {
public:
    /// No bytes.
    SecretBytes() = default;

    /// Takes a copy. Wiping the original is the caller's part.
    explicit SecretBytes(std::span<std::byte const> bytes);

    /// `size` bytes that `fill` writes in place, so that no other memory ever holds them.
    static SecretBytes filledBy(std::size_t size, std::function<void(std::span<std::byte>)> const& fill);

    [[nodiscard]] std::span<std::byte const> bytes() const;
    [[nodiscard]] std::size_t size() const { return bytes().size(); }

    /// Takes as long for unequal bytes as for equal ones.
    friend bool operator==(SecretBytes const& left, SecretBytes const& right);

private:
    class Pages;

    explicit SecretBytes(std::shared_ptr<Pages const> pages) : pages(std::move(pages)) {}

    std::shared_ptr<Pages const> pages;
};

} // namespace Foundation
