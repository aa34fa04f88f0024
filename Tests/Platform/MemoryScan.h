#pragma once

#include "Platform/Files/FileDescriptor.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <span>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

/// Looks for a secret in the whole memory of this process.
class MemoryScan {
public:
    /// Keeps the opposite of the secret's first bytes, so that it is no copy itself.
    explicit MemoryScan(std::span<std::byte const> secret) {
        for (std::size_t index = 0; index < std::min<std::size_t>(secret.size(), 16); ++index)
            opposite.push_back(~secret[index]);
    }

    struct Found {
        int inCoreDumps = 0;      ///< Where a core dump would contain it.
        int outsideCoreDumps = 0; ///< In pages that none contains.
    };

    [[nodiscard]] Found find() const {
        Found found;
        Platform::FileDescriptor const memory(::open("/proc/self/mem", O_RDONLY | O_CLOEXEC));
        // Pages of its own, which are left out: what is read stands in them for a moment.
        void* const place =
            ::mmap(nullptr, windowSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        std::span const window(static_cast<std::byte*>(place), windowSize);
        for (auto const& mapping : mappings()) {
            auto const own = reinterpret_cast<std::uintptr_t>(place);
            if (mapping.start <= own && own < mapping.end) continue;
            int const count = countIn(memory.get(), mapping, window);
            (mapping.isDumped ? found.inCoreDumps : found.outsideCoreDumps) += count;
        }
        ::munmap(place, windowSize);
        return found;
    }

private:
    static constexpr std::size_t windowSize = 1 << 20;

    struct Mapping {
        std::uintptr_t start;
        std::uintptr_t end;
        bool isDumped;
    };

    // All that can be written to; not the shadow memory of a sanitizer, which is huge and holds no data.
    static std::vector<Mapping> mappings() {
        constexpr std::uintptr_t huge = std::uintptr_t{1} << 30;
        std::vector<Mapping> all;
        std::ifstream stream("/proc/self/smaps");
        bool isWanted = false;
        for (std::string line; std::getline(stream, line);) {
            Mapping mapping{.start = 0, .end = 0, .isDumped = true};
            char access[5] = "";
            if (std::sscanf(line.c_str(), "%lx-%lx %4s ", &mapping.start, &mapping.end, access) == 3) {
                isWanted = std::strncmp(access, "rw", 2) == 0 && mapping.end - mapping.start < huge;
                if (isWanted) all.push_back(mapping);
            } else if (isWanted && line.starts_with("VmFlags:")) {
                all.back().isDumped = (line + " ").find(" dd ") == std::string::npos;
            }
        }
        return all;
    }

    [[nodiscard]] int countIn(int memory, Mapping const& mapping, std::span<std::byte> window) const {
        int count = 0;
        for (auto place = mapping.start; place < mapping.end; place += windowSize - opposite.size()) {
            auto const size = std::min<std::size_t>(window.size(), mapping.end - place);
            auto const length = ::pread(memory, window.data(), size, static_cast<off_t>(place));
            if (length > 0) count += countIn(window.first(static_cast<std::size_t>(length)));
            ::explicit_bzero(window.data(), window.size());
        }
        return count;
    }

    [[nodiscard]] int countIn(std::span<std::byte const> bytes) const {
        int count = 0;
        auto const first = std::to_integer<int>(~opposite.front());
        auto const* place = bytes.data();
        auto const* const end = place + bytes.size() - std::min(bytes.size(), opposite.size() - 1);
        while (place < end) {
            place = static_cast<std::byte const*>(
                std::memchr(place, first, static_cast<std::size_t>(end - place)));
            if (place == nullptr) break;
            bool isSame = true;
            for (std::size_t index = 0; isSame && index < opposite.size(); ++index)
                isSame = place[index] == ~opposite[index];
            count += isSame ? 1 : 0;
            ++place;
        }
        return count;
    }

    std::vector<std::byte> opposite;
};
