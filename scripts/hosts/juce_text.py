# SPDX-License-Identifier: GPL-3.0-or-later
"""What JUCE's stand-alone program leaves in its settings file."""
import xml.etree.ElementTree as ElementTree

DIGITS = ".ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+"  # of JUCE's text form of bytes


def decoded(text):
    """Each digit stands for six bits, the lowest first."""
    length, digits = text.split(".", 1)
    bits = sum(DIGITS.index(digit) << 6 * place for place, digit in enumerate(digits))
    return bits.to_bytes(int(length) + 1, "little")[:int(length)]


def saved_state(settings):
    values = {value.get("name"): value.get("val") for value in ElementTree.parse(settings).getroot()}
    return decoded(values["filterState"])
