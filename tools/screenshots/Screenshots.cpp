// SPDX-License-Identifier: GPL-3.0-or-later
// Writes the pictures of the window that README and the manual show: both sizes at three heights at rest, and one amid a
// gesture with the wheel under way, a chord held and a knob just turned; and the curves of the wheels' motion. Needs no
// display.
#include "editor/TarvellineAudioProcessorEditor.h"
#include "tools/screenshots/MotionFigure.h"

#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>
#include <vector>

namespace tarvelline
{
namespace
{
constexpr double sampleRate = 44100.0;
constexpr int blockSize = 512;

/** Long enough for the follow dial, which polls every 20 ms, to have seen the wheel. */
constexpr int settleMilliseconds = 120;

struct Picture
{
    const char* name;
    bool fullSize;
    int height;
    bool amidGesture;
};

constexpr Picture pictures[] = {
    { "half-small.png", false, 288, false }, { "half-medium.png", false, 400, false },
    { "half-large.png", false, 576, false }, { "full-small.png", true, 288, false },
    { "full-medium.png", true, 400, false }, { "full-large.png", true, 576, false },
    { "gesture.png", true, 576, true },
};

/** A processor, its window, and what is done to them before the picture is taken. */
class Scene
{
public:
    explicit Scene (const Picture& picture)
    {
        processor.uiHeight = picture.height;
        set (parameterId::toggleSize, picture.fullSize ? 1.0f : 0.0f);
        processor.prepareToPlay (sampleRate, blockSize);
        editor.reset (processor.createEditor());
        editor->setVisible (true);

        if (picture.amidGesture)
            startGesture();
    }

    juce::Image takePicture() { return editor->createComponentSnapshot (editor->getLocalBounds(), true, 1.0f); }

private:
    void set (const char* id, float normalised)
    {
        processor.parameters.getParameter (id)->setValueNotifyingHost (normalised);
    }

    void startGesture()
    {
        set (parameterId::midiOptions, 0.0f);
        set (parameterId::mainRange, 0.8f);
        set (parameterId::mainWheelPar, 0.5f + 7.0f / 24.0f);
        set (parameterId::timbWheelPar, 0.25f);
        set (parameterId::mixerPar, 0.8f);
        set (parameterId::mainInertiaPar, 0.64f);

        juce::MidiBuffer chord;

        for (const auto note : { 48, 55, 60, 64, 70 })
            chord.addEvent (juce::MidiMessage::noteOn (1, note, juce::uint8 { 100 }), 0);

        for (auto samples = 0; samples < 12000; samples += blockSize) // the wheels are still on their way
        {
            juce::AudioBuffer<float> silence (2, blockSize);
            silence.clear();
            processor.processBlock (silence, chord);
        }
    }

    TarvellineAudioProcessor processor;
    std::unique_ptr<juce::AudioProcessorEditor> editor;
};

void write (const juce::Image& image, const juce::File& file)
{
    file.deleteFile();
    juce::FileOutputStream stream (file);

    if (! stream.openedOk() || ! juce::PNGImageFormat().writeImageToStream (image, stream))
    {
        std::cerr << "screenshots: cannot write " << file.getFullPathName() << '\n';
        std::exit (2);
    }
}

void takeAll (const juce::File& folder)
{
    std::vector<std::unique_ptr<Scene>> scenes;

    for (const auto& picture : pictures)
        scenes.push_back (std::make_unique<Scene> (picture));

    juce::Timer::callAfterDelay (settleMilliseconds,
                                 [&]
                                 {
                                     for (size_t i = 0; i < scenes.size(); ++i)
                                         write (scenes[i]->takePicture(), folder.getChildFile (pictures[i].name));

                                     juce::MessageManager::getInstance()->stopDispatchLoop();
                                 });
    juce::MessageManager::getInstance()->runDispatchLoop();
}
} // namespace
} // namespace tarvelline

int main (int argc, char** argv)
{
    if (argc != 2)
    {
        std::cerr << "usage: tarvelline_screenshots FOLDER\n";
        return 2;
    }

    const juce::ScopedJuceInitialiser_GUI framework;
    const auto folder = juce::File::getCurrentWorkingDirectory().getChildFile (argv[1]);
    folder.createDirectory();
    tarvelline::takeAll (folder);
    tarvelline::write (tarvelline::drawMotion(), folder.getChildFile ("motion.png"));
}
