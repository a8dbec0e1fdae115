#include "Base/BackgroundWork.h"

#include <utility>

namespace {

thread_local const BackgroundWork* current = nullptr;

} // namespace

BackgroundWork::BackgroundWork(std::function<bool()> wanted) : isWanted(std::move(wanted))
{
    current = this;
}

BackgroundWork::~BackgroundWork()
{
    current = nullptr;
}

const BackgroundWork* BackgroundWork::ofThread()
{
    return current;
}
