// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <functional>
#include <memory>
#include <utility>

/// The one thread on which the library does what would keep the forms' thread too long.
namespace Worker {

/// Does a deed, which must not throw, after those that were posted before. What has not begun when
/// the program ends is not done.
void post(std::function<void()> deed);

/// Destroys a value there: that of a million rows takes long.
template <typename T> void destroy(T value)
{
    post([held = std::make_shared<T>(std::move(value))] {});
}

} // namespace Worker
