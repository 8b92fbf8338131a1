// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/Workers.h"

#include "render/options/Errors.h"
#include "render/running/Terminal.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <thread>
#include <utility>

namespace tarvelline::render
{
namespace
{
/** The runs under way. One thread for each takes its output, so that none waits for another's. */
class Batch
{
public:
    Batch (int count, const std::function<juce::StringArray (int)>& toTell)
        : argumentsFor (toTell), outcomes (static_cast<std::size_t> (count))
    {
    }

    /** Runs one after the other while there are any left. */
    void work()
    {
        std::unique_lock lock (guard);

        while (! stopping && next < outcomes.size())
        {
            auto& outcome = outcomes[next];

            try
            {
                const auto process = std::make_shared<Process> (argumentsFor (static_cast<int> (next++)));
                running.push_back (process);
                lock.unlock();
                outcome = process->wait();
                lock.lock();
                running.erase (std::find (running.begin(), running.end(), process));
            }
            catch (const UserError& error)
            {
                outcome = { exitFailed, error.what() };
            }

            ++over;
            change.notify_one();
        }
    }

    /** @returns the number of runs that are over, after a moment or a change */
    std::size_t waitForChange()
    {
        std::unique_lock lock (guard);
        change.wait_for (lock, std::chrono::milliseconds (100)); // until an interruption is looked for again
        return over;
    }

    void stop()
    {
        const std::lock_guard lock (guard);
        stopping = true;

        for (const auto& process : running)
            process->stop();
    }

    bool isOver()
    {
        const std::lock_guard lock (guard);
        return running.empty() && (stopping || over == outcomes.size());
    }

    std::vector<Outcome> takeOutcomes() { return std::move (outcomes); }

private:
    const std::function<juce::StringArray (int)>& argumentsFor;
    std::mutex guard; // of all below
    std::condition_variable change;
    std::vector<Outcome> outcomes;
    std::vector<std::shared_ptr<Process>> running;
    std::size_t next = 0, over = 0;
    bool stopping = false;
};
} // namespace

std::vector<Outcome> runWorkers (int count, int jobs, const std::function<juce::StringArray (int)>& argumentsFor,
                                 const std::function<void (int)>& finished)
{
    Batch batch (count, argumentsFor);
    std::vector<std::jthread> threads;

    threads.reserve (static_cast<std::size_t> (std::min (count, jobs)));

    for (int i = 0; i < std::min (count, jobs); ++i)
        threads.emplace_back ([&batch] { batch.work(); });

    for (bool stopped = false; ! batch.isOver();)
    {
        finished (static_cast<int> (batch.waitForChange()));

        if (interrupted() && ! std::exchange (stopped, true))
            batch.stop();
    }

    threads.clear();
    return batch.takeOutcomes();
}
} // namespace tarvelline::render
