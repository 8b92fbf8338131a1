#!/usr/bin/env python3
"""Puts the sounds into a session that build.lua saved: Ardour's lua shell cannot import files, so the sources, their regions
and the range to export are written into the session's file. Also writes the notes, as a MIDI file for both programs.

usage: sounds.py SESSION_FOLDER GUITAR.wav PLAYED.wav KEYS.mid

PLAYED.wav becomes the guitar with two held tones in its middle, to measure a shift by: what a shift makes of a pluck depends on
where the engine's hops fall, by decibels, and that is no host's business.
"""
import array
import math
import pathlib
import shutil
import struct
import sys
import wave
import xml.etree.ElementTree as xml

SUPERCLOCK = 282240000  # Ardour's units of time a second
TICKS = 3840  # its units of musical time a second, at its 120 beats a minute
DIVISION = 480  # of the MIDI file, a beat
TAIL = 0.1  # seconds after the recording that are exported as well

# Two voices after each other, the first bent six semitones up and back, the second three down. Both stay above the input:
# below it what a bend makes of a held tone depends by a decibel on where the engine's hops fall, as what it makes of a pluck.
NOTES = [(0.0, 0xE0, 0, 64), (0.5, 0x90, 62, 100), (1.2, 0xE0, 0, 96), (2.0, 0xE0, 0, 64), (2.3, 0x80, 62, 0),
         (2.55, 0x90, 67, 100), (3.4, 0xE0, 0, 48), (4.4, 0x80, 67, 0)]
TONES = ((0.75, 2.35), (2.75, 4.45))  # seconds, from and to; each begins in silence, where the engine's phases start afresh
SILENCES = ((0.7, 0.75), (2.35, 2.75))
TONE_HERTZ, PARTIALS = 196.0, 6  # 16-bit levels fall with the partial's number
LOUDEST = 6000


def played(recording):
    rate, channels = recording.getframerate(), recording.getnchannels()
    samples = array.array("h", recording.readframes(recording.getnframes()))

    for (start, end), partials in [(tone, PARTIALS) for tone in TONES] + [(silence, 0) for silence in SILENCES]:
        for frame in range(int(start * rate), int(end * rate)):
            tone = sum(math.sin(2 * math.pi * n * TONE_HERTZ * frame / rate + n * n) / n for n in range(1, partials + 1))
            for channel in range(channels):
                samples[frame * channels + channel] = round(LOUDEST * tone)

    return samples.tobytes()


def variable_length(number):
    digits = [number & 0x7F]
    while number := number >> 7:
        digits.insert(0, number & 0x7F | 0x80)
    return bytes(digits)


def midi_file():
    track, now = b"\x00\xff\x51\x03" + (500000).to_bytes(3, "big"), 0
    for seconds, *message in NOTES:
        ticks = round(seconds * 2 * DIVISION)
        track += variable_length(ticks - now) + bytes(message)
        now = ticks
    track += b"\x00\xff\x2f\x00"
    return struct.pack(">4sIHHH4sI", b"MThd", 6, 0, 1, DIVISION, b"MTrk", len(track)) + track


def add_region(playlist, number, sources, unit, length):
    region = xml.SubElement(playlist, "Region", {
        "name": sources[0].get("name"), "id": number, "type": playlist.get("type"), "opaque": "1", "whole-file": "0",
        "start": f"{unit}0", "length": f"{unit}{length}@{unit}0", "channels": str(len(sources)),
        "fade-in-active": "0", "fade-out-active": "0"})

    for i, source in enumerate(sources):
        region.set(f"source-{i}", source.get("id"))
        region.set(f"master-source-{i}", source.get("id"))


def main(folder, guitar, recorded, keys):
    folder = pathlib.Path(folder)
    session = xml.parse(folder / "session.ardour")
    root = session.getroot()
    ids = (str(number) for number in range(int(root.get("id-counter")), sys.maxsize))
    pathlib.Path(keys).write_bytes(midi_file())

    with wave.open(guitar) as recording:
        seconds = recording.getnframes() / recording.getframerate()
        with wave.open(recorded, "wb") as output:
            output.setparams(recording.getparams())
            output.writeframes(played(recording))

    for playlist in root.find("Playlists"):
        kind = playlist.get("type")
        file, channels, unit, rate = {"audio": (recorded, 2, "a", SUPERCLOCK), "midi": (keys, 1, "b", TICKS)}[kind]
        name = pathlib.Path(file).name
        shutil.copy(file, folder / "interchange" / folder.name / f"{kind}files" / name)
        sources = [xml.SubElement(root.find("Sources"), "Source", {
            "name": name, "id": next(ids), "type": kind, "flags": "", "channel": str(channel), "origin": ""})
            for channel in range(channels)]

        if kind == "midi":  # Ardour joins bends by a line unless told otherwise
            xml.SubElement(sources[0], "InterpolationStyle", {"parameter": "midi-pitch-bender-0", "style": "Discrete"})

        add_region(playlist, next(ids), sources, unit, round(seconds * rate))

    xml.SubElement(root.find("Locations"), "Location", {
        "id": next(ids), "name": "session", "start": "a0", "end": f"a{round((seconds + TAIL) * SUPERCLOCK)}",
        "flags": "IsSessionRange"})
    root.set("id-counter", next(ids))
    session.write(folder / "session.ardour", encoding="UTF-8", xml_declaration=True)


main(*sys.argv[1:])
