// SPDX-License-Identifier: GPL-3.0-or-later
// The algorithm of the engine as it would stand in a paper: one sample at a time, one bin at a time, nothing shared, nothing
// skipped. Slow and short. What docs/engine.md says in words is here in code, and the engine is held to it.
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <vector>

namespace tarvelline::test
{
using Bin = std::complex<float>;

/** Windows, weights and thresholds. N is the frame length, K = N / 2 the number of bins. */
struct ReferenceTables
{
    ReferenceTables (std::size_t n, float scale, float rate)
        : wide (n + 1), narrow (n + 1), threshold (n / 2), lowWeight (n / 2), smoothing (n / 2)
    {
        const auto binsPerHz = static_cast<float> (n) / rate;
        const auto bin = [=] (float hertz) { return static_cast<std::size_t> (binsPerHz * hertz); };
        const auto falling = std::min (bin (400.0f * scale), n / 2 - 1), full = bin (500.0f), end = bin (800.0f);
        peakStart = static_cast<std::size_t> (binsPerHz * scale * 1500.0f);

        for (std::size_t j = 0; j < n; ++j)
            wide[j] = static_cast<float> (std::sin (std::numbers::pi * double (j) / double (n - 1)));

        for (std::size_t j = 0; j < n / 4; ++j)
            narrow[n / 2 - n / 8 + j] =
                static_cast<float> (std::sin (std::numbers::pi * double (j) / double (n / 4 - 1)));

        auto wideGain = 0.0, narrowGain = 0.0; // both overlap-add to the same level

        for (std::size_t j = 0; j < n; ++j)
        {
            wideGain += double (wide[j]) * double (wide[j]);
            narrowGain += double (wide[j]) * double (narrow[j]);
        }

        for (auto& entry : narrow)
            entry *= static_cast<float> (wideGain / narrowGain);

        for (std::size_t k = 0; k < n / 2; ++k)
        {
            const auto fall = static_cast<float> (k) / static_cast<float> (falling);
            const auto turn =
                std::numbers::pi_v<float> * (float (k) - float (full)) / float (std::max<std::size_t> (end - full, 1));
            threshold[k] = k < falling ? 1.5f - fall * 0.20000005f : 1.3f;
            lowWeight[k] = k < full ? 1.0f : k < end ? (std::cos (turn) + 1.0f) / 2.0f : 0.0f;
            smoothing[k] = std::exp (-std::numbers::pi_v<float> / 2.0f * (0.2f + 0.65f * float (k) / float (n / 2)));
        }
    }

    std::vector<float> wide, narrow, threshold, lowWeight, smoothing;
    std::size_t peakStart;
};

class ReferenceEngine
{
public:
    ReferenceEngine (std::size_t frameSize, float scale, float rate)
        : n (frameSize), tables (n, scale, rate), ratioHistory (n, 1.0f), sum (n / 2), locks (n / 2),
          channels (2, Channel (n))
    {
        updateGeometry (1.0f);
    }

    void setRatios (float pitch, float formants)
    {
        requestedRatio = pitch >= 1.0e-10f ? std::min (pitch, 96.0f) : 1.0e-10f;
        formantRatio = formants >= 0.0f ? formants : 0.001f;
    }

    /** One sample a channel in, one out, N samples late. */
    void process (const float* in, float* out, std::size_t count)
    {
        channels.resize (count, Channel (n));
        ratioHistory[position] = requestedRatio;

        for (std::size_t c = 0; c < count; ++c)
        {
            const auto size = std::abs (in[c]);
            channels[c].input[position] = std::isnormal (size) && size <= 1.0e4f ? in[c] : 0.0f;
            out[c] = channels[c].output[position];
        }

        position = (position + 1) % n;

        if (++sinceAnalysis >= analysisSpan / 8)
        {
            sinceAnalysis = 0;
            analyse();
        }

        if (++sinceSynthesis >= synthesisSpan / 8)
        {
            sinceSynthesis = 0;

            for (auto& channel : channels)
                synthesise (channel);

            if (requestedRatio != appliedRatio)
                updateGeometry (requestedRatio);
        }
    }

private:
    struct Channel
    {
        explicit Channel (std::size_t n)
            : input (n), output (n), magnitude (n / 2), shaped (n / 2), advance (n / 2), last (n / 2), running (n / 2)
        {
        }

        std::vector<float> input, output;        // rings
        std::vector<float> magnitude, shaped;    // of the last analysis frame; with its envelope moved
        std::vector<Bin> advance, last, running; // unit phasors
    };

    static float between (const std::vector<float>& frame, float t, std::size_t from = 0)
    {
        const auto i = static_cast<std::size_t> (t);
        const auto here = frame[(from + i) % frame.size()], next = frame[(from + i + 1) % frame.size()];
        return here + (next - here) * (t - static_cast<float> (i));
    }

    /** sum of x[j] exp (-+2 pi i j k / N), by halving. */
    static std::vector<std::complex<double>> fourier (const std::vector<std::complex<double>>& x, double sign)
    {
        if (x.size() == 1)
            return x;

        std::vector<std::complex<double>> parts[2], result (x.size());

        for (std::size_t j = 0; j < x.size(); ++j)
            parts[j % 2].push_back (x[j]);

        const auto even = fourier (parts[0], sign), odd = fourier (parts[1], sign);

        for (std::size_t k = 0; k < even.size(); ++k)
        {
            const auto turned =
                odd[k] * std::polar (1.0, sign * 2.0 * std::numbers::pi * double (k) / double (x.size()));
            result[k] = even[k] + turned;
            result[k + even.size()] = even[k] - turned;
        }

        return result;
    }

    /** Bin 0 holds the Nyquist term as well: real signals leave its imaginary part free. All turned by 45 degrees. */
    std::vector<Bin> spectrumOf (const std::vector<float>& frame) const
    {
        const auto x = fourier ({ frame.begin(), frame.end() }, -1.0);
        std::vector<Bin> bins (n / 2);

        for (std::size_t k = 0; k < n / 2; ++k)
            bins[k] = Bin (x[k] * std::complex (1.0, 1.0));

        bins[0] = { float (x[0].real()), float (x[n / 2].real()) };
        return bins;
    }

    /** N times the frame, and a 0 to interpolate into. */
    std::vector<float> frameOf (const std::vector<Bin>& bins) const
    {
        std::vector<std::complex<double>> x (n);
        x[0] = double (bins[0].real());
        x[n / 2] = double (bins[0].imag());

        for (std::size_t k = 1; k < n / 2; ++k)
        {
            x[k] = std::complex<double> (bins[k]) / std::complex (1.0, 1.0);
            x[n - k] = std::conj (x[k]);
        }

        std::vector<float> frame;

        for (const auto value : fourier (x, 1.0))
            frame.push_back (float (value.real()));

        frame.push_back (0.0f);
        return frame;
    }

    void analyse()
    {
        std::vector<std::vector<Bin>> spectra;

        for (auto& channel : channels)
            spectra.push_back (spectrumOf (readInput (channel)));

        findOnsets (spectra);
        spreadResets();

        for (std::size_t c = 0; c < channels.size(); ++c)
            advancePhases (channels[c], spectra[c]);

        if (formantRatio != 1.0f)
            for (auto& channel : channels)
                moveEnvelope (channel);

        appliedFormantRatio = formantRatio;
    }

    std::vector<float> readInput (const Channel& channel) const
    {
        std::vector<float> frame (n);

        for (std::size_t j = 0; j < n; ++j)
        {
            const auto t = static_cast<float> (j) * (appliedRatio < 1.0f ? ratioHistory[(position + j) % n] : 1.0f);
            frame[j] = t < static_cast<float> (n) ? between (channel.input, t, position) * tables.wide[j] : 0.0f;
            frame[j] += j % 2 == 1 ? 1.0e-10f : -1.0e-10f;
        }

        return frame;
    }

    void findOnsets (const std::vector<std::vector<Bin>>& spectra)
    {
        for (std::size_t k = 0; k < activeBins; ++k)
        {
            auto total = 0.0f;

            for (std::size_t c = 0; c < channels.size(); ++c)
                total += channels[c].magnitude[k] = std::sqrt (std::norm (spectra[c][k]) + 1.0e-10f);

            const auto steady = sum[k] >= 1.0e-8f && total / (sum[k] + 1.0e-10f) <= tables.threshold[k];
            locks[k] = steady ? locks[k] + 1 : 0;
            sum[k] = total;
        }
    }

    /** An onset on a peak resets the flanks of the peak. Low down a peak must stand out further, and only its upper flank is. */
    void spreadResets()
    {
        const auto& s = sum;

        for (std::size_t k = 2; k + 2 < activeBins; ++k)
        {
            const auto low = k < tables.peakStart;
            const auto isPeak =
                s[k] > s[k - 1] && s[k] > s[k + 1] && (! low || (s[k - 1] > s[k - 2] && s[k + 1] > s[k + 2]));

            if (locks[k] != 0 || ! isPeak)
                continue;

            for (auto j = k; ! low && j > tables.peakStart && s[j] > s[j - 1]; --j)
                locks[j - 1] = 0;

            for (auto j = k + 1; j + 1 < activeBins && s[j - 1] > s[j]; ++j)
                locks[j] = 0;
        }
    }

    void advancePhases (Channel& channel, const std::vector<Bin>& spectrum)
    {
        for (std::size_t k = 0; k < n / 2; ++k)
        {
            const auto active = k < activeBins;
            const auto phasor = active ? spectrum[k] / (channel.magnitude[k] + 1.0e-10f) : Bin (1.0f);
            locks[k] = active ? locks[k] : 0;
            channel.advance[k] = locks[k] != 0 ? phasor * std::conj (channel.last[k]) : phasor;
            channel.last[k] = phasor;

            if (locks[k] == 255)
            {
                channel.advance[k] = atLengthOne (channel.advance[k]);
                locks[k] = 1;
            }
        }
    }

    static Bin atLengthOne (Bin z) { return z / (std::sqrt (std::norm (z) + 1.0e-10f) + 1.0e-10f); }

    void moveEnvelope (Channel& channel) const
    {
        auto envelope = channel.magnitude;
        const auto smooth = [&] (std::size_t k, float& y)
        {
            y = (y - envelope[k]) * tables.smoothing[k] + 1.0e-10f + envelope[k];
            return y;
        };

        for (int round = 0; round < 2; ++round)
        {
            auto down = 0.0f, up = 0.0f;

            for (auto k = n / 2; k-- > 0;)
                envelope[k] = smooth (k, down);

            for (std::size_t k = 0; k < n / 2; ++k)
                envelope[k] = std::max (smooth (k, up), 0.01f);
        }

        envelope.push_back (0.001f);

        for (std::size_t k = 0; k < n / 2; ++k)
        {
            const auto t = static_cast<float> (k) * formantRatio;
            channel.shaped[k] =
                channel.magnitude[k] / envelope[k] * (t < float (n / 2) ? between (envelope, t) : 0.01f);
        }
    }

    void synthesise (Channel& channel)
    {
        const auto& magnitude = appliedFormantRatio != 1.0f ? channel.shaped : channel.magnitude;
        std::vector<Bin> low (n / 2), high (n / 2);

        for (std::size_t k = 0; k < activeBins; ++k)
        {
            auto& phasor = channel.running[k];
            phasor = locks[k] != 0 ? phasor * channel.advance[k] : channel.advance[k];

            if (locks[k] == 254)
                phasor = atLengthOne (phasor);

            low[k] = 0.26f / float (n) * magnitude[k] * tables.lowWeight[k] * phasor;
            high[k] = 0.26f / float (n) * magnitude[k] * (1.0f - tables.lowWeight[k]) * phasor;
        }

        overlapAdd (channel, frameOf (low), frameOf (high));
    }

    void overlapAdd (Channel& channel, const std::vector<float>& low, const std::vector<float>& high) const
    {
        auto window = 0.0f; // a running sum, and where it is read makes one entry's difference

        for (std::size_t j = 0; j < synthesisSpan; ++j, window += float (n) / float (synthesisSpan))
        {
            const auto stretched = appliedRatio < 1.0f;
            const auto ratio = ratioHistory[(position + (stretched ? j : n - synthesisSpan + j)) % n];
            const auto t = static_cast<float> (j) * ratio;
            const auto inside = t < static_cast<float> (n);
            const auto entry = static_cast<std::size_t> (window);
            auto& place = channel.output[(position + j) % n];
            const auto lowSample = ! inside ? 0.0f : stretched ? low[j] : between (low, t);
            const auto highSample = stretched ? high[j] : inside ? between (high, t) : 0.0f;
            place = (j < synthesisSpan - synthesisSpan / 8 ? place : 0.0f) + lowSample * tables.wide[entry]
                    + highSample * tables.narrow[entry];
        }
    }

    void updateGeometry (float ratio)
    {
        const auto before = synthesisSpan;
        const auto share = ratio < 1.0f ? ratio : 1.0f / ratio;
        const auto span = std::max<std::size_t> (static_cast<std::size_t> (float (n) * share), 250);
        analysisSpan = ratio < 1.0f ? span : n;
        synthesisSpan = ratio < 1.0f ? n : span;
        activeBins = static_cast<std::size_t> (float (n / 2) * share);
        appliedRatio = ratio;

        for (auto& channel : channels)
            for (auto j = std::min (before, synthesisSpan); j < std::max (before, synthesisSpan); ++j)
                channel.output[(position + j) % n] = 0.0f;
    }

    std::size_t n;
    ReferenceTables tables;
    std::size_t analysisSpan = 0, synthesisSpan = 0, activeBins = 0;
    float requestedRatio = 1.0f, appliedRatio = 1.0f, formantRatio = 1.0f, appliedFormantRatio = 1.0f;
    std::size_t position = 0, sinceAnalysis = 0, sinceSynthesis = 0;
    std::vector<float> ratioHistory, sum; // a ring; magnitudes over channels in the last analysis frame
    std::vector<int> locks;               // frames for which a bin has stayed steady; 0: its phase starts afresh
    std::vector<Channel> channels;
};
} // namespace tarvelline::test
