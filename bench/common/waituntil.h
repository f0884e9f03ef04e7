#pragma once

#include <functional>

// Runs the event loop until done() holds (checked every 20 ms), the timeout passes or a stop is
// requested; whether done() held.
bool waitUntil(const std::function<bool()> &done, int timeoutMs, const std::function<bool()> &stopRequested);
