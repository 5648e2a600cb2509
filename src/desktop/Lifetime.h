// SPDX-License-Identifier: GPL-3.0-or-later
// Callbacks for the web engine, which calls those that still wait while its page is destroyed. By then the widget
// around it is none of its class any more, which a QPointer does not tell.
#pragma once

#include <memory>
#include <utility>

namespace tomelet::desktop {

/// The last member of a class that gives such callbacks away, so that it is the first to go.
class Lifetime
{
public:
    /// The callback as long as the object lives, nothing afterwards. To be called on the object's thread.
    template <typename Callback>
    [[nodiscard]] auto guard(Callback callback) const
    {
        return [alive = std::weak_ptr(m_token), callback = std::move(callback)](const auto &...arguments) {
            if (!alive.expired()) callback(arguments...);
        };
    }

private:
    std::shared_ptr<bool> m_token = std::make_shared<bool>();
};

} // namespace tomelet::desktop
