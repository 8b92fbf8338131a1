// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/transform/HartleyTransform.h"
#include "tests/support/InstructionSets.h"
#include "tests/support/Meters.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <numbers>
#include <stdexcept>
#include <tuple>

namespace tarvelline::test
{
/** A length, and the instruction set that transforms it: each compiles the passes anew, with other widths and shuffles. */
class Hartley : public testing::TestWithParam<std::tuple<int, std::string>>
{
protected:
    const int length = std::get<0> (GetParam());
    OnInstructionSet held { std::get<1> (GetParam()) };
};

INSTANTIATE_TEST_SUITE_P (Lengths, Hartley,
                          testing::Combine (testing::Values (2048, 4096, 8192), testing::ValuesIn (instructionSets())),
                          [] (const auto& row)
                          { return std::to_string (std::get<0> (row.param)) + "_" + std::get<1> (row.param); });

// A round trip cannot see a reversed kernel (cos - sin) or a reordering left out on both sides: each undoes itself.
// Noise against the definition can; the lengths take every number of passes, with the one of radix 2 and without it.
// The way back catches an inverse that reorders before instead of after, or is scaled: the engine's gain counts on N.
TEST_P (Hartley, PairsAreTheFourierCoefficientsAndInverseUndoesThem)
{
    const auto input = whiteNoise (length);
    const auto size = input.size(), half = size / 2;
    std::vector<std::complex<double>> turns (size);

    for (std::size_t i = 0; i < size; ++i)
        turns[i] = std::polar (1.0, -2.0 * std::numbers::pi * static_cast<double> (i) / static_cast<double> (size));

    const auto coefficient = [&] (std::size_t k)
    {
        std::complex<double> sum;

        for (std::size_t n = 0; n < size; ++n)
            sum += turns[n * k % size] * static_cast<double> (input[n]);

        return sum;
    };

    const HartleyTransform transform (length);
    auto data = input;
    transform.forward (data.data());
    Samples pairs, expected; // (Re - Im, Re + Im)

    for (std::size_t k = 0; k < half; k += 7) // a sample of the bins
    {
        const auto c = coefficient (k);
        const auto second = k == 0 ? coefficient (half).real() : c.real() + c.imag(); // bin 0 is real: Nyquist's place
        expected.insert (expected.end(), { static_cast<float> (c.real() - c.imag()), static_cast<float> (second) });
        pairs.insert (pairs.end(), { data[k], data[half + k] });
    }

    EXPECT_GT (signalToDifferenceDb (pairs, expected), 120.0); // measured: 137 dB

    transform.inverse (data.data());

    for (auto& sample : data)
        sample /= static_cast<float> (length);

    EXPECT_GT (signalToDifferenceDb (data, input), 120.0); // measured: 134 to 137 dB
}

// A few bins come back another way, on which bins above 32 meet those below, and Nyquist's term has no bin.
TEST_P (Hartley, FewBinsComeBackAsAmongAll)
{
    const auto noise = whiteNoise (length);
    const HartleyTransform transform (length);

    for (const auto bins : { 1, 20, 38, 64 })
    {
        auto few = noise, all = noise;
        transform.inverse (few.data(), bins);

        for (auto half = all.begin(); half != all.end(); half += length / 2)
            std::fill (half + bins, half + length / 2, 0.0f);

        transform.inverse (all.data());
        EXPECT_GT (signalToDifferenceDb (few, all), 120.0) << bins; // measured: 136 dB
    }
}

// A length beyond the scratch, which wrote past the stack where assertions are off.
TEST (HartleyLengths, AnyOtherIsRefused)
{
    for (const auto length : { -2048, 0, 1, 1024, 3000, 16384 })
        EXPECT_THROW (HartleyTransform { length }, std::invalid_argument) << length;
}
} // namespace tarvelline::test
