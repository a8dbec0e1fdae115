#pragma once

#include <chrono>
#include <functional>

/// Runs `call` in a thread of its own and waits for it: a driver waits for a silent server without an end, and nothing
/// but the end of the process ends that wait. True when the call has come back; what it raises is raised here. False
/// after `patience`: the thread is then left to itself, so `call` has to own all that it touches.
bool callDriver(std::chrono::milliseconds patience, std::function<void()> call);
