#include "Base/BackgroundWork.h"

#include <utility>

namespace {

thread_local const BackgroundWork* current = nullptr;

} // namespace

BackgroundWork::BackgroundWork(std::function<bool()> wanted, Messages heard) :
    isWanted(std::move(wanted)), messages(std::move(heard))
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
