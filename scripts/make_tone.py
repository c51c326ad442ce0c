#!/usr/bin/env python3
"""Writes half a second of a stereo tone, 16 bits at 48 kHz: make_tone.py FILE"""

import math
import struct
import sys
import wave

RATE = 48000

with wave.open(sys.argv[1], "wb") as tone:
    tone.setnchannels(2)
    tone.setsampwidth(2)
    tone.setframerate(RATE)
    for i in range(RATE // 2):
        sample = round(12000 * math.sin(2 * math.pi * 440 * i / RATE))
        tone.writeframesraw(struct.pack("<hh", sample, -sample))
