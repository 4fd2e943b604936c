#include "VekCore.h"

#include "base/LiveObjects.h"

#include <stdlib.h>
#include <time.h>

CVekRandomizer::CVekRandomizer()
{
    vek::CountBirth(vek::LiveClass::Randomizer);
    // Kept: every new randomizer seeds the runtime's one sequence again.
    srand(static_cast<unsigned int>(_time64(nullptr)));
}

CVekRandomizer::~CVekRandomizer()
{
    vek::CountEnd(vek::LiveClass::Randomizer);
}

float CVekRandomizer::GetRandomValue(float low, float high)
{
    static_assert(RAND_MAX == 32767);
    auto const part = static_cast<float>(rand() / 32767.0);
    float const range = high - low;
    float const offset = part * range;
    return low + offset;
}
