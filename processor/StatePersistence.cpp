// SPDX-License-Identifier: GPL-3.0-or-later
// The saved state: one XML element, its attributes the editor's height and every parameter's normalised value, wrapped in
// the framework's binary envelope (magic, text length, text, zero byte).
#include "processor/TarvellineAudioProcessor.h"

#include <algorithm>
#include <iomanip>
#include <limits>
#include <locale>
#include <sstream>
#include <string_view>

namespace tarvelline
{
namespace
{
constexpr auto stateTag = "TARVELLINEVERSION"; // identity and version mark of the format
constexpr auto heightAttribute = "uiHeight";
constexpr int envelopeMagic = 0x21324356; // "VC2!"
constexpr size_t lengthOffset = 4;        // bytes
constexpr size_t textOffset = 8;          // bytes
constexpr size_t envelopeSize = 9;        // bytes around the text
constexpr int valueDecimals = 20;         // enough to give every float back exactly

/** Written by hand: the framework's own writer adds an XML declaration that the format does not have. */
void writeEnvelope (const juce::XmlElement& xml, juce::MemoryBlock& destination)
{
    {
        juce::MemoryOutputStream out (destination, false);
        out.writeInt (envelopeMagic);
        out.writeInt (0); // the length, below
        xml.writeTo (out, juce::XmlElement::TextFormat().singleLine().withoutHeader());
        out.writeByte (0);
    }

    const auto length =
        juce::ByteOrder::swapIfBigEndian (static_cast<juce::uint32> (destination.getSize() - envelopeSize));
    destination.copyFrom (&length, static_cast<int> (lengthOffset), sizeof (length));
}

/** The text in the envelope, up to a zero byte; none if the block is too short for one. */
std::string_view textOf (const void* data, int sizeInBytes)
{
    if (sizeInBytes < static_cast<int> (envelopeSize))
        return {};

    const auto* bytes = static_cast<const char*> (data);
    const auto storedLength = static_cast<size_t> (juce::ByteOrder::littleEndianInt (bytes + lengthOffset));
    const auto block =
        std::string_view (bytes + textOffset, std::min (storedLength, static_cast<size_t> (sizeInBytes) - textOffset));
    return block.substr (0, block.find ('\0'));
}

/** Whether the framework's parser may see the text. It takes one that ends between two attributes for a whole element (a
    block cut off there would be restored in part), reads past the end of what is not UTF-8, runs out of stack over many
    elements inside each other, and follows the entities of a document type. */
bool isFitForParser (std::string_view text)
{
    constexpr int mostTags = 100; // a state is one; this many can be nested on any stack
    const auto last = text.find_last_not_of (" \t\r\n");

    return last != text.npos && text[last] == '>' && text.find ("<!DOCTYPE") == text.npos
           && std::count (text.begin(), text.end(), '<') <= mostTags
           && juce::CharPointer_UTF8::isValidString (text.data(), static_cast<int> (text.size()));
}

/** Digits and a point, whatever the locale of the process. */
juce::String textOfValue (double value)
{
    std::ostringstream text;
    text.imbue (std::locale::classic());
    text << std::fixed << std::setprecision (valueDecimals) << value;
    return text.str();
}

/** What the attribute's text begins with as a number, however large; 0 if that is none, which "nan" and "inf" are not either. */
float readValue (const juce::XmlElement& xml, juce::StringRef attribute)
{
    constexpr double largest = std::numeric_limits<float>::max();
    std::istringstream text (xml.getStringAttribute (attribute).toStdString());
    text.imbue (std::locale::classic());
    double value = 0.0;
    text >> value; // the framework's own reading overflows in a long exponent
    return static_cast<float> (std::clamp (value, -largest, largest));
}
} // namespace

void TarvellineAudioProcessor::getStateInformation (juce::MemoryBlock& destData)
{
    juce::XmlElement xml (stateTag);
    xml.setAttribute (heightAttribute, uiHeight.get());

    for (const auto* parameter : getParameters())
        if (const auto* withId = dynamic_cast<const juce::AudioProcessorParameterWithID*> (parameter))
            xml.setAttribute (withId->paramID, textOfValue (withId->getValue()));

    writeEnvelope (xml, destData);
}

void TarvellineAudioProcessor::setStateInformation (const void* data, int sizeInBytes)
{
    if (! isFitForParser (textOf (data, sizeInBytes)))
        return;

    const auto xml = getXmlFromBinary (data, sizeInBytes);

    if (xml == nullptr || xml->getTagName() != stateTag)
        return;

    uiHeight = xml->getIntAttribute (heightAttribute);

    for (auto* parameter : getParameters())
    {
        if (auto* withId = dynamic_cast<juce::AudioProcessorParameterWithID*> (parameter))
        {
            const auto value =
                xml->hasAttribute (withId->paramID) ? readValue (*xml, withId->paramID) : withId->getValue();
            withId->setValue (value);
            withId->sendValueChangedMessageToListeners (value);
        }
    }

    refreshWheelSettings();
}
} // namespace tarvelline
