#include "Base/Fingerprint.h"

#include <random>

// Drawn before main(). A hash computed earlier, while static objects of other units are constructed, would use zeros,
// and its key would not be found again.
const RunningHash::Seed RunningHash::seed;

RunningHash::Seed::Seed()
{
    std::random_device random;
    // Odd and so never zero: a seed of zero would fold every block to zero.
    for (std::uint64_t* number : {&first, &second, &last})
        *number = std::uint64_t{random()} << 32 | random() | 1;
}
