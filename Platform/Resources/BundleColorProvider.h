#pragma once

#include "Platform/Resources/BundleTextProvider.h"
#include "Platform/Resources/ColorProvider.h"

#include <memory>
#include <utility>

namespace Platform {

/// The named colours of the bundle whose texts are asked for beside them: it is looked up once for both. May
/// be used from any thread.
class BundleColorProvider final : public ColorProvider {
public:
    explicit BundleColorProvider(std::shared_ptr<BundleTextProvider const> texts) : texts(std::move(texts)) {}

    [[nodiscard]] std::optional<std::array<double, 3>> color(std::string_view name,
                                                             ColorScheme scheme) const override {
        return texts->bundle().color(name, scheme);
    }

private:
    std::shared_ptr<BundleTextProvider const> texts;
};

} // namespace Platform
