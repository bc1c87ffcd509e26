#include "platform/linux/SystemRandom.h"

#include <chrono>
#include <cmath>

namespace tarvo {

void SystemRandom::Randomize() {
    engine_.seed(
        static_cast<std::mt19937::result_type>(std::chrono::steady_clock::now().time_since_epoch().count() ^
                                               std::chrono::system_clock::now().time_since_epoch().count()));
}

float SystemRandom::Rnd() {
    // Drawn in double precision; a value that rounds up to 1 as a float stays just below it.
    const auto n = static_cast<float>(std::uniform_real_distribution<double>(0.0, 1.0)(engine_));
    return n < 1.0f ? n : std::nextafter(1.0f, 0.0f);
}

} // namespace tarvo
