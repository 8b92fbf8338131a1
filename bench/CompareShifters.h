// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tarvelline::bench
{
inline constexpr int channels = 2;

/** A pitch shifter that takes stereo blocks as a host hands them over. */
class Shifter
{
public:
    virtual ~Shifter() = default;
    virtual void process (const float* const* in, float* const* out, int frames) = 0;
};

/** A program to compare, and how to start it for one shift. */
struct Program
{
    std::string name;
    std::function<std::unique_ptr<Shifter> (double rate, double semitones)> start;
};

/** This program, then its peers. */
std::vector<Program> programs();

/** This program in voice mode, with a note held for each shift.
    @param timbre  semitones by which the timbre is moved against the pitch; 0 leaves it out of use */
std::unique_ptr<Shifter> startVoices (double rate, const std::vector<int>& semitones, double timbre);

/** What a shifter costs. */
struct Cost
{
    double cpuPerSecond = 0.0; // CPU seconds for a second of audio
    double worstBlock = 0.0;   // share of its deadline that the slowest block takes
};

/** Plays a second of audio twice: as a whole for the cost, then block by block for the worst one. */
Cost measure (Shifter&, double rate, int blockSize);

/** Prints the table of all programs over shifts. */
void compareShifters();

/** Prints the table of transforms over lengths, on every instruction set of the machine. */
void compareTransforms();

/** Writes cost.csv and cost.png into a directory: this program over voices, shift (with the timbre moved and without), sample
    rate and block size. */
void sweepCosts (const std::string& directory);

double median (std::vector<double>);
} // namespace tarvelline::bench
