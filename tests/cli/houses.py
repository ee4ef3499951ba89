"""Backups of houses for tests of what is shown of them."""
import json


def line(*values):
    return bytes(values).ljust(16, b"\0").hex()


def backup(memory, events, begun="2024-03-04 10:20:30"):
    return json.dumps({"format": "velk-backup", "version": 1, "begun": begun, "link": "<x>&", "complete": True,
                       "memory": {"V": memory, "H": {}, "H+": events}, "modules": []})


def full_house():
    """A hundred links of 25 sources, a switch time in each block, events in each hour, names to be escaped."""
    memory, events = {}, {}
    for output in range(3, 61):
        memory[f"{output:02x}00"] = line(0, 5 if output % 2 else 3)
        memory[f"{output:02x}40"] = (b"<Bath & \"Spa\"\0\x1b\x81" if output == 3 else b"Output name %04d" % output).hex()
    for source in range(61, 86):
        memory[f"{source:02x}10"] = line(*[0] * 15, 128 + source - 58)
        memory[f"{source:02x}20"] = line(0x12, 128 + source - 57, 0x34, 128 + source - 56, 0, 128 + source - 33, 1)
        memory[f"{source:02x}f0"] = line(*[0] * 14, 0xF0 + source % 4)
    for block in range(128):
        minute, hour = block * 7 % 60, block % 24
        memory[f"{128 + block:02x}c0"] = line(*[0] * 8, 127 if block % 5 else 31, minute // 10 * 16 + minute % 10,
                                              hour // 10 * 16 + hour % 10, 3 + block % 12, 255, 2)
    for day in range(7):
        for hour in range(24):
            events[f"{day * 36 + hour // 10 * 16 + hour % 10:02x}00"] = line(
                0, 0x30, 3 + hour % 6, 255, 2, 0x30, 0x15, 3 + day, 0, 2, 0x59, 0, 3 + hour % 4, 100, 2, 255)
    return backup(memory, events)


def odd_house():
    """Bytes that are no events, no switch time and no mode, and a date that is none."""
    return backup({"0500": line(0, 200), "80c0": line(*[0] * 8, 127, 170, 170, 5, 255, 255)},
                  {"1800": line(0xAA, 0xBB, 3, 255, 2, 255)}, "\0<b>")
