// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/HartleyTransform.h"

#include <bit>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace tarvelline
{
namespace
{
constexpr float sqrt2 = std::numbers::sqrt2_v<float>;

/** Calls visit (q) for each radix-4 pass after the first pass: q is the length of the four transforms it combines. */
template <typename Visitor>
void forEachPass (int length, bool oddLog, Visitor&& visit)
{
    for (int quarter = oddLog ? 8 : 4; quarter < length; quarter *= 4)
        visit (static_cast<std::ptrdiff_t> (quarter));
}

/** The element pairs at offsets i and q - i of one of the four sub-transforms, turned by an angle. */
struct Rotated
{
    Rotated (float cosine, float sine, float x, float mirrored) noexcept
        : straight (cosine * x + sine * mirrored), crossed (cosine * mirrored - sine * x)
    {
    }

    float straight, crossed;
};
} // namespace

void HartleyTransform::init (int transformLength)
{
    assert (transformLength >= 4 && transformLength <= 65536
            && std::has_single_bit (static_cast<unsigned> (transformLength)));
    release();
    length = transformLength;
    oddLog = (std::countr_zero (static_cast<unsigned> (length)) & 1) != 0;

    // A counter that carries from the top bit down: `reversed` is the bit reversal of `index`.
    for (unsigned index = 1, reversed = 0, half = static_cast<unsigned> (length) / 2; index < 2 * half; ++index)
    {
        auto bit = half;

        while (((reversed ^= bit) & bit) == 0)
            bit >>= 1;

        if (index > reversed)
            swapPairs.emplace_back (static_cast<std::uint16_t> (index), static_cast<std::uint16_t> (reversed));
    }

    forEachPass (length, oddLog,
                 [this] (std::ptrdiff_t quarter)
                 {
                     const auto step = static_cast<float> (std::numbers::pi / static_cast<double> (2 * quarter));

                     for (std::ptrdiff_t i = 1; i < quarter / 2; ++i)
                     {
                         const auto angle = static_cast<float> (i) * step;
                         twiddles.push_back ({ std::cos (angle), std::sin (angle), std::cos (2.0f * angle),
                                               std::sin (2.0f * angle), std::cos (3.0f * angle),
                                               std::sin (3.0f * angle) });
                     }
                 });
}

void HartleyTransform::release()
{
    length = 0;
    swapPairs = {};
    twiddles = {};
}

void HartleyTransform::transform (float* data) const noexcept
{
    swapBitReversed (data);

    if (oddLog)
        firstPassRadix8 (data);
    else
        firstPassRadix4 (data);

    // Four transforms of q values, of the inputs 4n, 4n + 2, 4n + 1 and 4n + 3, become one of 4q. Sub-transform r enters
    // turned by r times the angle of its bin; the bins i and q - i need the same eight values and are made together.
    const auto* twiddle = twiddles.data();

    forEachPass (length, oddLog,
                 [&] (std::ptrdiff_t q)
                 {
                     for (float *group = data, *const end = data + length; group != end; group += 4 * q)
                     {
                         const auto combine =
                             [group, q] (std::ptrdiff_t i, float even, float odd, float crossedEven, float crossedOdd)
                         {
                             group[i] = even + odd;
                             group[i + q] = crossedEven + crossedOdd;
                             group[i + 2 * q] = even - odd;
                             group[i + 3 * q] = crossedEven - crossedOdd;
                         };

                         const auto a = group[0], b = group[q], c = group[2 * q], d = group[3 * q];
                         combine (0, a + b, c + d, a - b, c - d);

                         const auto half =
                             q / 2; // here the angle is 45 degrees: the odd sub-transforms meet themselves
                         const auto e = group[half], f = group[half + q];
                         combine (half, e + f, sqrt2 * group[half + 2 * q], e - f, sqrt2 * group[half + 3 * q]);

                         for (std::ptrdiff_t i = 1, j = q - 1; i < j; ++i, --j)
                         {
                             const auto& w = twiddle[i - 1];
                             const auto x = group[i], mirrored = group[j];
                             const Rotated second (w.cos2, w.sin2, group[i + q], group[j + q]);
                             const Rotated first (w.cos1, w.sin1, group[i + 2 * q], group[j + 2 * q]);
                             const Rotated third (w.cos3, w.sin3, group[i + 3 * q], group[j + 3 * q]);

                             combine (i, x + second.straight, first.straight + third.straight, x - second.straight,
                                      first.crossed - third.crossed);
                             combine (j, mirrored - second.crossed, first.straight - third.straight,
                                      mirrored + second.crossed, -(first.crossed + third.crossed));
                         }
                     }

                     twiddle += q / 2 - 1;
                 });
}

void HartleyTransform::forward (float* data) const noexcept
{
    transform (data);
    reverseUpperHalf (data);
}

void HartleyTransform::inverse (float* data) const noexcept
{
    reverseUpperHalf (data);
    transform (data);
}

void HartleyTransform::swapBitReversed (float* data) const noexcept
{
    for (const auto& [first, second] : swapPairs)
        std::swap (data[first], data[second]);
}

void HartleyTransform::firstPassRadix4 (float* data) const noexcept
{
    for (auto* x = data; x != data + length; x += 4)
    {
        const auto sum01 = x[0] + x[1], difference01 = x[0] - x[1];
        const auto sum23 = x[2] + x[3], difference23 = x[2] - x[3];
        x[0] = sum01 + sum23;
        x[1] = difference01 + difference23;
        x[2] = sum01 - sum23;
        x[3] = difference01 - difference23;
    }
}

void HartleyTransform::firstPassRadix8 (float* data) const noexcept
{
    for (auto* x = data; x != data + length; x += 8)
    {
        const auto sum01 = x[0] + x[1], difference01 = x[0] - x[1];
        const auto sum23 = x[2] + x[3], difference23 = x[2] - x[3];
        const auto sum45 = x[4] + x[5], scaled45 = sqrt2 * (x[4] - x[5]);
        const auto sum67 = x[6] + x[7], scaled67 = sqrt2 * (x[6] - x[7]);
        x[0] = (sum01 + sum23) + (sum45 + sum67);
        x[1] = (difference01 + difference23) + scaled45;
        x[2] = (sum01 - sum23) + (sum45 - sum67);
        x[3] = (difference01 - difference23) + scaled67;
        x[4] = (sum01 + sum23) - (sum45 + sum67);
        x[5] = (difference01 + difference23) - scaled45;
        x[6] = (sum01 - sum23) - (sum45 - sum67);
        x[7] = (difference01 - difference23) - scaled67;
    }
}

void HartleyTransform::reverseUpperHalf (float* data) const noexcept
{
    for (auto *low = data + length / 2 + 1, *high = data + length - 1; low < high; ++low, --high)
        std::swap (*low, *high);
}
} // namespace tarvelline
